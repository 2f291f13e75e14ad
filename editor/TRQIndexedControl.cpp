#include "editor/TRQIndexedControl.h"

#include "editor/TRQLookAndFeel.h"
#include "editor/TRQSymbols.h"
#include "state/TRQAudioParameter.h"

#include <cmath>

TRQIndexedControl::TRQIndexedControl (int index, TRQAudioParameter& p, TRQParameterGestures& g)
    : TRQControl (index, p, g)
{
    inputMode = 2;
    wraps = true;
    usesGestures = false;
    if (row.innerFrame.width < 10.0f)
        outset = 2.0f;
}

int TRQIndexedControl::valueIndex() const
{
    return (int)std::lround (parameter.getRealValue() - row.min);
}

void TRQIndexedControl::rebuildDrawing()
{
    stateLists.clear();
    const int states = (int)std::lround (row.max - row.min) + 1;
    for (int v = 0; v < states; ++v)
        stateLists.push_back (drawing.paramStringList (parameterIndex, v,
                                                       static_cast<TRQLanguage::Language> (language), style));
    TRQControl::rebuildDrawing();
}

juce::Rectangle<float> TRQIndexedControl::outlineArea (const TRQDrawingList& list) const
{
    const auto inner = juce::Rectangle<float> (row.innerFrame.x, row.innerFrame.y, row.innerFrame.width,
                                               row.innerFrame.height);
    if (list.isEmpty())
        return inner;
    const auto b = list.elements.front().bounds;
    return juce::Rectangle<float> (b.getWidth(), b.getHeight()).withCentre (inner.getCentre());
}

bool TRQIndexedControl::isAnimating() const
{
    return TRQControl::isAnimating() || flash.isMoving (nowMs());
}

void TRQIndexedControl::drawControl (juce::Graphics& g)
{
    const int v = valueIndex();
    if (v >= 0 && v < (int)stateLists.size())
    {
        const auto& list = stateLists[(size_t)v];
        const auto area = outlineArea (list);
        juce::Graphics::ScopedSaveState save (g);
        g.addTransform (juce::AffineTransform::translation (area.getPosition()));
        list.paint (g);
    }
    const float f = flash.valueAt (nowMs());
    if (f > 0.0f && flashDirection != 0)
    {
        g.setColour (controlColour().withAlpha (f));
        g.setFont (symbolFont (12.0f));
        g.drawText (
            juce::String::charToString (flashDirection > 0 ? TRQSymbols::arrowUp : TRQSymbols::arrowDown),
            getLocalBounds().removeFromRight (14).toFloat(), juce::Justification::centred, false);
    }
}

void TRQIndexedControl::updateFocusRing()
{
    juce::Colour colour = controlColour();
    if (auto* lf = dynamic_cast<TRQLookAndFeel*> (&getLookAndFeel()))
        colour = lf->focusRingColour (colour);
    // Round the outline's own ink, 4 units out; the power switch's glyph is round, and
    // so is its ring.
    const int v = valueIndex();
    auto area = getLocalBounds().toFloat();
    if (v >= 0 && v < (int)stateLists.size() && !stateLists[(size_t)v].isEmpty())
    {
        const auto& list = stateLists[(size_t)v];
        area = list.getBounds() + outlineArea (list).getPosition();
    }
    area = area.expanded (4.0f).toNearestInt().toFloat();
    if (row.controlStyle == roundButtonStyle)
    {
        const float side = std::max (area.getWidth(), area.getHeight());
        setRing (juce::Rectangle<float> (side, side).withCentre (area.getCentre()), side * 0.5f, colour);
        return;
    }
    setRing (area, 4.0f, colour);
}

void TRQIndexedControl::mouseDown (const juce::MouseEvent& e)
{
    if (handleMouseDown (e))
        return;
    if (resetOnAlt (e))
        return;
    stepUp (e.mods, true);
}

void TRQIndexedControl::stepUp (juce::ModifierKeys mods, bool gesture)
{
    TRQControl::stepUp (mods, gesture);
    flashDirection = 1;
    flash.jumpTo (1.0f);
    flash.setTarget (0.0f, 125.0, nowMs());
    updateFocusRing();
}

void TRQIndexedControl::stepDown (juce::ModifierKeys mods, bool gesture)
{
    TRQControl::stepDown (mods, gesture);
    flashDirection = -1;
    flash.jumpTo (1.0f);
    flash.setTarget (0.0f, 125.0, nowMs());
    updateFocusRing();
}

void TRQIndexedControl::paintValue (juce::Graphics& g, juce::Rectangle<float> area) const
{
    const int v = valueIndex();
    if (v >= 0 && v < (int)stateLists.size())
        stateLists[(size_t)v].paintFitted (g, area);
}
