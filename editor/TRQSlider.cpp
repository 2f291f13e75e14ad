#include "editor/TRQSlider.h"

#include "editor/TRQLookAndFeel.h"
#include "editor/TRQValueLaw.h"
#include "state/ParameterRange.h"
#include "state/TRQAudioParameter.h"

#include <cmath>

TRQSlider::TRQSlider (int index, TRQAudioParameter& p, TRQParameterGestures& g, int mode)
    : TRQControl (index, p, g)
    , sliderMode (mode)
{
    inputMode = 1;
    wheelable = true;
    scrollEnabled = true;
    outset = (mode == 1 || mode == 2) ? 2.5f : 3.0f;
    thumbAcross = row.horizontal ? 44.0f : std::min (row.innerFrame.width - 8.0f, maxThumbAcross);
    thumbAnimation.jumpTo (getNormalisedValue());
}

void TRQSlider::rebuildDrawing()
{
    if (sliderMode != 2)
    {
        trackList = drawing.trackList (parameterIndex, style);
        findTrackLine();
    }
    TRQControl::rebuildDrawing();
}

void TRQSlider::findTrackLine()
{
    // The thumb rides on the ruler's long line, wherever the artwork put it in the
    // track's frame: the longest straight run along the slider's axis.
    float longest = 0.0f;
    for (const auto& element : trackList.elements)
    {
        juce::Path::Iterator it (element.path);
        juce::Point<float> last;
        while (it.next())
        {
            const juce::Point<float> p (it.x1, it.y1);
            if (it.elementType == juce::Path::Iterator::lineTo)
            {
                const float along = row.horizontal ? std::abs (p.x - last.x) : std::abs (p.y - last.y);
                const float across = row.horizontal ? std::abs (p.y - last.y) : std::abs (p.x - last.x);
                if (across < 0.01f && along > longest)
                {
                    longest = along;
                    trackLine = row.horizontal ? p.y : p.x;
                }
            }
            if (it.elementType != juce::Path::Iterator::closePath)
                last = p;
        }
    }
    // Half the track's length at least, or the artwork has no ruler to follow.
    hasTrackLine = longest > 0.5f * (row.horizontal ? row.innerFrame.width : row.innerFrame.height);
    if (hasTrackLine && !row.horizontal)
    {
        // Keep the thumb inside the control, so that its neighbours don't cut it. The
        // artwork sets the ruler's numbers just beyond this width.
        const float room = std::min (trackLine, row.frame.width - trackLine);
        thumbAcross = std::min (maxThumbAcross, 2.0f * room - 2.0f);
    }
}

juce::Point<float> TRQSlider::thumbCentreFor (float n) const
{
    const auto& t = row.innerFrame;
    if (row.horizontal)
        return {n * t.width + t.x, hasTrackLine ? trackLine : t.y + t.height * 0.5f};
    return {hasTrackLine ? trackLine : t.x + t.width * 0.5f, (1.0f - n) * t.height + t.y};
}

juce::Rectangle<float> TRQSlider::thumbBounds() const
{
    const auto centre = thumbCentreFor (thumbAnimation.valueAt (nowMs()));
    const float w = row.horizontal ? thumbAcross : thumbAcross;
    const float h = thumbThickness;
    return juce::Rectangle<float> (w, h).withCentre (centre);
}

float TRQSlider::trackLength() const
{
    return row.horizontal ? row.innerFrame.width : row.innerFrame.height;
}

float TRQSlider::axisPosition (juce::Point<float> p) const
{
    return row.horizontal ? p.x : p.y;
}

bool TRQSlider::isAnimating() const
{
    const double now = nowMs();
    return TRQControl::isAnimating() || thumbAnimation.isMoving (now) || pressAnimation.isMoving (now);
}

void TRQSlider::valueArrived (float n)
{
    thumbAnimation.setTarget (n, isDown ? 50.0 : 100.0, nowMs());
}

bool TRQSlider::isOverHoverTarget (juce::Point<float> position) const
{
    return thumbBounds().expanded (2.0f).contains (position);
}

void TRQSlider::refresh (bool force)
{
    TRQControl::refresh (force);
    const float position = thumbAnimation.valueAt (nowMs());
    if (position != lastEmittedPosition)
    {
        lastEmittedPosition = position;
        positionChanged.emit (position);
    }
}

void TRQSlider::updateFocusRing()
{
    juce::Colour colour = controlColour();
    if (auto* lf = dynamic_cast<TRQLookAndFeel*> (&getLookAndFeel()))
        colour = lf->focusRingColour (colour);
    setRing (thumbBounds(), 3.0f, colour);
}

void TRQSlider::mouseDown (const juce::MouseEvent& e)
{
    dragStartValue = getNormalisedValue();
    if (handleMouseDown (e))
        return;
    if (resetOnAlt (e))
        return;
    const auto pos = e.position;
    juce::Path thumb;
    thumb.addRoundedRectangle (thumbBounds(), 3.0f);
    if (!thumb.contains (pos) && (e.eventComponent == this || sliderMode == 0))
    {
        // A press on the track jumps the thumb under the mouse.
        const auto centre = thumbCentreFor (parameter.getValue());
        const int mode = TRQValueLaw::stepModeFor (e.mods);
        applyDragDelta (parameter.getValue(), pos - centre, mode);
        dragStartValue = parameter.getValue();
    }
    lastPos = pos;
    lastMousePosition = pos;
    pressAnimation.setTarget (1.0f, 125.0, nowMs());
    dirty = true;
}

void TRQSlider::mouseDrag (const juce::MouseEvent& e)
{
    if (!isDown)
        return;
    isDragging = true;
    const auto pos = e.position;
    lastMousePosition = pos;
    const auto delta = pos - lastPos;
    if (!TRQValueLaw::modifiersAre (e.mods, juce::ModifierKeys::ctrlModifier))
    {
        applyDragDelta (parameter.getValue(), delta, TRQValueLaw::stepModeFor (e.mods));
        lastPos = pos;
        return;
    }

    // Fine law: one step per three times the distance a step covers on the track.
    const float distance = row.horizontal ? delta.x : delta.y;
    if (std::abs (distance) <= 1.0f)
        return;
    const bool larger = row.horizontal ? distance > 0.0f : distance < 0.0f;
    const float v = userValue();
    const float s = TRQValueLaw::stepSize (parameterIndex, v, 0);
    const float probe = larger ? v + s : v - s;
    const float perStep =
        std::max (std::abs ((toNormalised (row.id, probe) - dragStartValue) * trackLength()), 1.0f);
    const float count = std::round (std::abs (distance) / (perStep * 3.0f));
    const float next = juce::jlimit (row.min, row.max, v + s * count * (larger ? 1.0f : -1.0f));
    if (next != v)
    {
        setUserValue (next, false);
        dragStartValue = parameter.getValue();
        lastPos = pos;
    }
}

void TRQSlider::mouseUp (const juce::MouseEvent& e)
{
    TRQControl::mouseUp (e);
    if (pressAnimation.getTarget() != 0.0f)
        pressAnimation.setTarget (0.0f, 250.0, nowMs());
}

juce::Colour TRQSlider::thumbFace (int style)
{
    return style == 1 ? juce::Colour (0xfff4f4f4) : juce::Colours::white;
}

juce::Colour TRQSlider::valueTextColour() const
{
    // The track list's second and third entries hold the value's colours, normal and
    // dimmed, chosen in the artwork to read on the thumb's face.
    const size_t entry = disabled ? 2 : 1;
    if (trackList.elements.size() > entry)
        return trackList.elements[entry].fill.colour;
    return disabled ? juce::Colours::grey : controlColour();
}

void TRQSlider::drawControl (juce::Graphics& g)
{
    if (sliderMode == 0)
        trackList.paint (g);

    const auto thumb = thumbBounds();
    const auto colour = controlColour();
    if (shadowCache.isNull() || shadowCache.getWidth() != (int)thumb.getWidth() + 16)
    {
        shadowCache =
            juce::Image (juce::Image::ARGB, (int)thumb.getWidth() + 16, (int)thumb.getHeight() + 16, true);
        juce::Graphics sg (shadowCache);
        juce::Path p;
        p.addRoundedRectangle (juce::Rectangle<float> (8.0f, 8.0f, thumb.getWidth(), thumb.getHeight()),
                               3.0f);
        juce::DropShadow (juce::Colours::black.withAlpha (0.35f), 6, {0, 1}).drawForPath (sg, p);
    }
    // Hover deepens the shadow and rings the thumb in the control's colour; a press
    // lifts it a little further off the track.
    const float hover = hoverAmount();
    const float press = pressAmount();
    const int shadowX = (int)std::round (thumb.getX()) - 8;
    const int shadowY = (int)std::round (thumb.getY()) - 8;
    g.drawImageAt (shadowCache, shadowX, shadowY);
    if (const float deeper = 0.6f * std::max (hover, press); deeper > 0.0f)
    {
        juce::Graphics::ScopedSaveState shadowState (g);
        g.setOpacity (deeper);
        g.drawImageAt (shadowCache, shadowX, shadowY + (int)std::round (press * 2.0f));
    }
    g.setColour (thumbFace (style).interpolatedWith (colour, 0.06f * press));
    g.fillRoundedRectangle (thumb, 3.0f);
    if (hover > 0.0f && !disabled)
    {
        g.setColour (colour.withAlpha (0.55f * hover));
        g.drawRoundedRectangle (thumb.reduced (0.5f), 3.0f, 1.0f + 0.5f * press);
    }

    const auto number = valueNumberText();
    const auto unit = valueUnitText();
    const auto numFont = numberFont (15.0f);
    const auto unitFont = symbolFont (13.0f);
    const float numW = numFont.getStringWidthFloat (number);
    const float unitW = unit.isEmpty() ? 0.0f : unitFont.getStringWidthFloat (unit) + 1.0f;
    float scaleX = 1.0f;
    if (numW + unitW > thumb.getWidth() - 4.0f)
        scaleX = (thumb.getWidth() - 4.0f) / (numW + unitW);
    const float x0 = thumb.getCentreX() - (numW + unitW) * scaleX * 0.5f;
    g.setColour (valueTextColour());
    juce::Graphics::ScopedSaveState save (g);
    g.addTransform (juce::AffineTransform::scale (scaleX, 1.0f, x0, thumb.getCentreY()));
    g.setFont (numFont);
    g.drawText (number, juce::Rectangle<float> (x0, thumb.getY(), numW, thumb.getHeight()),
                juce::Justification::centred, false);
    if (unit.isNotEmpty())
    {
        g.setFont (unitFont);
        g.drawText (unit, juce::Rectangle<float> (x0 + numW + 1.0f, thumb.getY(), unitW, thumb.getHeight()),
                    juce::Justification::centredLeft, false);
    }
}
