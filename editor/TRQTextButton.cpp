#include "editor/TRQTextButton.h"

#include "editor/TRQLookAndFeel.h"

namespace
{
double now()
{
    return juce::Time::getMillisecondCounterHiRes();
}
} // namespace

TRQTextButton::TRQTextButton (int buttonId, int count)
    : id (buttonId)
    , stateCount (std::max (1, count))
{
    labels.resize ((size_t)stateCount);
    fills.resize ((size_t)stateCount, juce::Colours::transparentBlack);
    setWantsKeyboardFocus (false);
}

TRQTextButton::~TRQTextButton()
{
    stopTimer();
}

void TRQTextButton::setState (int newState)
{
    newState = juce::jlimit (0, stateCount - 1, newState);
    if (newState != state)
        markForRepaint();
    state = newState;
    setEnabled (disabledStates.count (state) == 0);
}

TRQTextButton::Label& TRQTextButton::labelFor (int forState)
{
    return labels[(size_t)juce::jlimit (0, stateCount - 1, forState)];
}

void TRQTextButton::setLabel (int forState, const juce::String& text, const juce::Font& font)
{
    auto& label = labelFor (forState);
    label.text = text;
    label.font = font;
    layOut (label);
    markForRepaint();
}

void TRQTextButton::setGlyph (int forState, juce::juce_wchar glyph, float height)
{
    setLabel (forState, juce::String::charToString (glyph),
              juce::Font (TRQLookAndFeel::symbolFamily, "Regular", height));
}

void TRQTextButton::setDrawingLabel (int forState, TRQDrawingList list, juce::Point<float> origin)
{
    auto& label = labelFor (forState);
    label.outline = std::move (list);
    label.outlineOrigin = origin;
    markForRepaint();
}

juce::String TRQTextButton::getLabelText (int forState) const
{
    return labels[(size_t)juce::jlimit (0, stateCount - 1, forState)].text;
}

void TRQTextButton::setFill (int forState, juce::Colour colour)
{
    fills[(size_t)juce::jlimit (0, stateCount - 1, forState)] = colour;
    markForRepaint();
}

void TRQTextButton::setTextColour (juce::Colour colour)
{
    textColour = colour;
    for (auto& label : labels)
        layOut (label);
    markForRepaint();
}

void TRQTextButton::setDisabledStates (std::set<int> states)
{
    disabledStates = std::move (states);
    setEnabled (disabledStates.count (state) == 0);
    markForRepaint();
}

void TRQTextButton::setJustification (juce::Justification j)
{
    justification = j;
    for (auto& label : labels)
        layOut (label);
}

void TRQTextButton::layOut (Label& label)
{
    if (getWidth() <= 0 || label.text.isEmpty())
    {
        label.layout = {};
        return;
    }
    juce::AttributedString text;
    text.append (label.text, label.font, textColour);
    text.setJustification (justification);
    text.setWordWrap (juce::AttributedString::none);
    label.layout.createLayout (text, (float)juce::jmax (1, getWidth() - 8));
}

void TRQTextButton::resized()
{
    for (auto& label : labels)
        layOut (label);
}

void TRQTextButton::markForRepaint()
{
    needsRepaint = true;
    repaint();
}

void TRQTextButton::refresh (bool force)
{
    if (force || needsRepaint.exchange (false))
        repaint();
}

void TRQTextButton::paint (juce::Graphics& g)
{
    needsRepaint = false;
    const auto t = now();
    const float hoverAmount = hover.valueAt (t);
    const float pressAmount = press.valueAt (t);
    const bool enabled = isEffectivelyEnabled();
    auto area = getLocalBounds().toFloat().reduced (0.5f);
    const auto fill = fills[(size_t)state];
    if (drawBackground && !fill.isTransparent())
    {
        auto c = fill.brighter (0.25f * hoverAmount).darker (0.3f * pressAmount);
        g.setColour (enabled ? c : c.withMultipliedAlpha (0.4f));
        g.fillRoundedRectangle (area, radius);
    }
    else if (enabled && hoverAmount > 0.0f)
    {
        g.setColour (textColour.withAlpha (0.10f * hoverAmount + 0.08f * pressAmount));
        g.fillRoundedRectangle (area, radius);
    }
    if (drawOutline)
    {
        g.setColour (textColour.withMultipliedAlpha (enabled ? 0.6f : 0.25f));
        g.drawRoundedRectangle (area, radius, 1.0f);
    }
    auto& label = labels[(size_t)state];
    if (!label.outline.isEmpty())
    {
        juce::Graphics::ScopedSaveState saved (g);
        g.addTransform (juce::AffineTransform::translation (label.outlineOrigin));
        if (!enabled)
            g.beginTransparencyLayer (0.35f);
        label.outline.paint (g);
        if (!enabled)
            g.endTransparencyLayer();
    }
    if (label.layout.getNumLines() > 0)
    {
        juce::Graphics::ScopedSaveState saved (g);
        if (!enabled)
            g.setOpacity (0.35f);
        const float h = label.layout.getHeight();
        label.layout.draw (g, {4.0f, ((float)getHeight() - h) * 0.5f, (float)getWidth() - 8.0f, h});
    }
}

void TRQTextButton::animate (TRQAnimatedValue& value, float target)
{
    value.setTarget (target, 120.0, now());
    if (!isTimerRunning())
        startTimerHz (60);
    repaint();
}

void TRQTextButton::timerCallback()
{
    const auto t = now();
    repaint();
    if (!hover.isMoving (t) && !press.isMoving (t))
        stopTimer();
}

void TRQTextButton::mouseEnter (const juce::MouseEvent&)
{
    showTooltip (true);
    animate (hover, 1.0f);
}

void TRQTextButton::mouseExit (const juce::MouseEvent&)
{
    showTooltip (false);
    animate (hover, 0.0f);
    animate (press, 0.0f);
}

void TRQTextButton::mouseDown (const juce::MouseEvent& e)
{
    showTooltip (false);
    if (e.mods.isPopupMenu())
    {
        TRQComponent::mouseDown (e);
        return;
    }
    pressing = true;
    animate (press, 1.0f);
}

void TRQTextButton::mouseUp (const juce::MouseEvent& e)
{
    animate (press, 0.0f);
    const bool wasPressing = pressing;
    pressing = false;
    if (wasPressing && getLocalBounds().contains (e.getPosition()))
        click();
}

void TRQTextButton::click()
{
    if (!isEffectivelyEnabled())
        return;
    setState ((state + 1) % stateCount);
    clickedSignal.emit (id, state);
}
