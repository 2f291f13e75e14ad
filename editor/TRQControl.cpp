#include "editor/TRQControl.h"

#include "editor/TRQLookAndFeel.h"
#include "editor/TRQParameterGestures.h"
#include "editor/TRQSymbols.h"
#include "editor/TRQValueLaw.h"
#include "state/ParameterCatalogue.h"
#include "state/ParameterRange.h"
#include "state/ParameterText.h"
#include "state/TRQAudioParameter.h"

#include <cmath>

namespace
{
constexpr float wheelGain = 4.266667f;

juce::juce_wchar unitGlyph (const std::string& unit)
{
    if (unit == "dB/Oct")
        return TRQSymbols::unitDecibelPerOctave;
    if (unit == "kHz")
        return TRQSymbols::unitKilohertz;
    if (unit == "Hz")
        return TRQSymbols::unitHertz;
    if (unit == "dB")
        return TRQSymbols::unitDecibel;
    if (unit == "%")
        return TRQSymbols::unitPercent;
    if (unit == "s")
        return TRQSymbols::unitSecond;
    if (unit == "ms")
        return TRQSymbols::unitMillisecond;
    if (unit == "\xc2\xb0")
        return TRQSymbols::unitDegree;
    if (unit == "BPM")
        return TRQSymbols::unitBeatsPerMinute;
    if (unit == "x")
        return TRQSymbols::unitTimes;
    return 0;
}
} // namespace

TRQControl::TRQControl (int index, TRQAudioParameter& p, TRQParameterGestures& g)
    : parameterIndex (index)
    , parameter (p)
    , gestures (g)
    , row (ParameterCatalogue::row (static_cast<ParameterId> (index)))
    , drawing (TRQDrawing::get())
{
    hasLock = index != 0 && row.dependents.empty();
    // The tip names the parameter as the host does.
    setTooltip (juce::String (row.name));
    normalisedValue.store (toNormalised (row.id, p.getRealValue()));
    setWantsKeyboardFocus (true);
    setMouseClickGrabsKeyboardFocus (true);
    setRepaintsOnMouseActivity (false);
    setOpaque (false);
}

TRQControl::~TRQControl() = default;

double TRQControl::nowMs() const
{
    return juce::Time::getMillisecondCounterHiRes();
}

bool TRQControl::setNormalisedFromParameter (float normalised)
{
    if (normalisedValue.load() == normalised)
        return false;
    normalisedValue.store (normalised);
    dirty = true;
    valueArrived (normalised);
    return true;
}

void TRQControl::valueArrived (float) {}

bool TRQControl::isAnimating() const
{
    const double now = nowMs();
    return dimAnimation.isMoving (now) || hoverAnimation.isMoving (now) || valueText.isMoving (now);
}

bool TRQControl::isOverHoverTarget (juce::Point<float>) const
{
    return true;
}

void TRQControl::updateHover()
{
    // Also when the mouse stands still and the control moves under it.
    // isShowing() would ask the window system on every tick; the mouse events
    // already say whether the mouse is here.
    setHover (mouseInside && isEnabled() && isOverHoverTarget (lastMousePosition));
}

void TRQControl::setHover (bool over)
{
    const float target = over ? 1.0f : 0.0f;
    if (hoverAnimation.getTarget() != target)
        hoverAnimation.setTarget (target, over ? 125.0 : 250.0, nowMs());
}

void TRQControl::showTransientValue()
{
    valueText.show (nowMs());
    dirty = true;
}

void TRQControl::paintValue (juce::Graphics& g, juce::Rectangle<float> area) const
{
    const auto number = valueNumberText();
    const auto unit = valueUnitText();
    const auto numFont = numberFont (area.getHeight() * 0.8f);
    const auto unitFont = symbolFont (area.getHeight() * 0.7f);
    const float numW = numFont.getStringWidthFloat (number);
    const float unitW = unit.isEmpty() ? 0.0f : unitFont.getStringWidthFloat (unit) + 1.0f;
    const float x0 = area.getCentreX() - (numW + unitW) * 0.5f;
    g.setColour (disabled ? juce::Colours::grey : controlColour());
    g.setFont (numFont);
    g.drawText (number, juce::Rectangle<float> (x0, area.getY(), numW, area.getHeight()),
                juce::Justification::centred, false);
    if (unit.isNotEmpty())
    {
        g.setFont (unitFont);
        g.drawText (unit, juce::Rectangle<float> (x0 + numW + 1.0f, area.getY(), unitW, area.getHeight()),
                    juce::Justification::centredLeft, false);
    }
}

void TRQControl::refresh (bool force)
{
    if (labelChanged.exchange (false))
    {
        rebuildDrawing();
        dirty = true;
    }
    updateHover();
    valueText.advance (nowMs());
    // One more paint after an animation ends, so its last step is what stays.
    const bool animating = isAnimating();
    if (dirty || force || animating || wasAnimating)
        repaint();
    wasAnimating = animating;
    dirty = false;
}

void TRQControl::setDependencyDisabled (int dependency, bool isDisabled)
{
    if (dependency >= 0 && dependency < 21)
        dependencyFlags[(size_t)dependency].store (isDisabled);
    bool any = false;
    for (auto& flag : dependencyFlags)
        any = any || flag.load();
    if (any == disabled)
        return;
    disabled = any;
    dimAnimation.setTarget (disabled || inModal ? 1.0f : 0.0f, 250.0, nowMs());
    if (!locked.load())
        setEnabled (!disabled);
    dirty = true;
}

void TRQControl::setInModal (bool on)
{
    if (on == inModal)
        return;
    inModal = on;
    dimAnimation.setTarget (disabled || inModal ? 1.0f : 0.0f, 250.0, nowMs());
    dirty = true;
}

void TRQControl::setLanguageAndStyle (int newLanguage, int newStyle)
{
    languageAndStyle.store ((newLanguage << 8) | newStyle);
    language = newLanguage;
    style = newStyle;
    labelChanged.store (true);
    dirty = true;
}

void TRQControl::rebuildDrawing()
{
    labelList = drawing.paramLabelList (parameterIndex, static_cast<TRQLanguage::Language> (language), style);
}

void TRQControl::setLocked (bool isLocked)
{
    locked.store (isLocked && hasLock);
    dirty = true;
}

void TRQControl::setDoubleClickKeyEntry (bool on)
{
    doubleClickKeyEntry = on;
    setWantsKeyboardFocus (!on);
    setMouseClickGrabsKeyboardFocus (!on);
}

bool TRQControl::canStep (float, float, int)
{
    return true;
}

bool TRQControl::isOverActiveArea (juce::Point<int>)
{
    return true;
}

float TRQControl::userValue() const
{
    return parameter.getRealValue();
}

void TRQControl::gestureBegin()
{
    if (usesGestures)
        gestures.begin (parameterIndex);
}

void TRQControl::gestureEnd()
{
    if (usesGestures)
        gestures.end (parameterIndex);
}

void TRQControl::setUserValue (float real, bool gesture)
{
    if (gesture)
        gestures.begin (parameterIndex);
    float v = TRQValueLaw::snapToStep (parameterIndex, real, 0);
    if (v == 0.0f)
        v = 0.0f;
    v = juce::jlimit (row.min, row.max, v);
    gestures.setNormalised (parameterIndex, toNormalised (row.id, v));
    dirty = true;
    if (gesture)
        gestures.end (parameterIndex);
}

void TRQControl::setFromNormalised (float n, int mode)
{
    float v = fromNormalised (row.id, juce::jlimit (0.0f, 1.0f, n));
    v = TRQValueLaw::snapToStep (parameterIndex, v, mode);
    if (v == 0.0f)
        v = 0.0f; // never negative zero
    v = juce::jlimit (row.min, row.max, v);
    gestures.setNormalised (parameterIndex, toNormalised (row.id, v));
    dirty = true;
}

void TRQControl::applyDragDelta (float current, juce::Point<float> delta, int mode)
{
    const auto& track = row.innerFrame;
    float n = current;
    if (row.horizontal)
        n = current + delta.x / std::max (track.width, 1.0f);
    else
        n = current - delta.y / std::max (track.height, 1.0f);
    setFromNormalised (juce::jlimit (0.0f, 1.0f, n), mode);
}

void TRQControl::stepUp (juce::ModifierKeys mods, bool gesture)
{
    const int mode = TRQValueLaw::stepModeFor (mods);
    const float v = userValue();
    const float c = TRQValueLaw::stepUpFrom (parameterIndex, v, mode, wraps);
    if (!canStep (v, c, mode))
        return;
    setUserValue (juce::jlimit (row.min, row.max, c), gesture);
}

void TRQControl::stepDown (juce::ModifierKeys mods, bool gesture)
{
    const int mode = TRQValueLaw::stepModeFor (mods);
    const float v = userValue();
    const float c = TRQValueLaw::stepDownFrom (parameterIndex, v, mode, wraps);
    if (!canStep (v, c, mode))
        return;
    setUserValue (juce::jlimit (row.min, row.max, c), gesture);
}

void TRQControl::arrowKey (int direction, juce::ModifierKeys mods)
{
    if (direction == 0 || direction == 3)
        stepDown (mods, true);
    else
        stepUp (mods, true);
}

bool TRQControl::handleMouseDown (const juce::MouseEvent& e)
{
    tooltipWanted = false;
    showTooltip (false);
    if (e.mods.isPopupMenu())
    {
        if (e.eventComponent == this)
        {
            TRQComponent::mouseDown (e);
            return true;
        }
    }
    if (e.getNumberOfClicks() == 2 && doubleClickKeyEntry && inputMode == 1)
    {
        setWantsKeyboardFocus (true);
        grabKeyboardFocus();
        return true;
    }
    if (doubleClickKeyEntry && !hasKeyboardFocus (true))
        if (auto* focused = juce::Component::getCurrentlyFocusedComponent())
            focused->giveAwayKeyboardFocus();
    if (usesGestures)
        gestures.begin (parameterIndex);
    isDown = true;
    isDragging = false;
    downTimeMs = nowMs();
    return false;
}

bool TRQControl::resetOnAlt (const juce::MouseEvent& e)
{
    if (!TRQValueLaw::modifiersAre (e.mods, juce::ModifierKeys::altModifier))
        return false;
    // The press already opened a gesture when the control uses them: the reset
    // joins it, and the release closes it.
    if (!isDown)
        gestureBegin();
    gestures.setNormalised (parameterIndex, toNormalised (row.id, parameter.getPresetDefault()));
    if (!isDown)
        gestureEnd();
    dirty = true;
    return true;
}

void TRQControl::mouseDown (const juce::MouseEvent& e)
{
    if (handleMouseDown (e))
        return;
    resetOnAlt (e);
}

void TRQControl::mouseUp (const juce::MouseEvent&)
{
    if (!isDown)
        return;
    isDown = false;
    isDragging = false;
    if (usesGestures)
        gestures.end (parameterIndex);
    dirty = true;
}

void TRQControl::mouseMove (const juce::MouseEvent& e)
{
    showTooltip (tooltipWanted && isOverActiveArea (e.getPosition()));
    lastMousePosition = e.position;
    setHover (isEnabled() && isOverHoverTarget (e.position));
}

void TRQControl::mouseEnter (const juce::MouseEvent& e)
{
    tooltipWanted = true;
    mouseInside = true;
    lastMousePosition = e.position;
    setHover (isEnabled() && isOverHoverTarget (e.position));
}

void TRQControl::mouseExit (const juce::MouseEvent&)
{
    tooltipWanted = false;
    showTooltip (false);
    mouseInside = false;
    setHover (false);
}

void TRQControl::mouseWheelMove (const juce::MouseEvent& e, const juce::MouseWheelDetails& wheel)
{
    if (!scrollEnabled)
        return;
    if (!hasKeyboardFocus (true) && !doubleClickKeyEntry && getWantsKeyboardFocus())
        grabKeyboardFocus();
    const double now = nowMs();
    const double ms = now - lastWheelMs;
    if (ms <= 0.0 || isDown)
        return;
    lastWheelMs = now;

    const int mode = TRQValueLaw::stepModeFor (e.mods);
    float dy = wheel.isReversed ? -wheel.deltaY : wheel.deltaY;
    float dx = wheel.deltaX;
    if (wheel.isSmooth)
    {
        dx *= 0.5f;
        dy *= 0.5f;
    }
    const float f = mode == 0 ? 0.25f : 1.0f;
    dx *= f * wheelGain;
    dy *= f * wheelGain;
    if (std::abs (dy) < std::abs (dx))
        dy = -dx;
    if (std::abs (dy) <= 0.0f)
        return;

    gestureBegin();
    const float c = parameter.getValue();
    applyDragDelta (c, {-dy, -dy}, mode);
    // A motion too small to move the value still moves it by one step.
    if (parameter.getValue() == c)
    {
        if (dy > 0.0f)
            stepUp (e.mods, false);
        else
            stepDown (e.mods, false);
    }
    gestureEnd();
}

bool TRQControl::keyPressed (const juce::KeyPress& key)
{
    const auto mods = key.getModifiers();
    const int code = key.getKeyCode();
    if (code == juce::KeyPress::escapeKey)
    {
        typedText.clear();
        dirty = true;
        giveAwayKeyboardFocus();
        return true;
    }
    if (code == juce::KeyPress::leftKey || code == juce::KeyPress::rightKey ||
        code == juce::KeyPress::upKey || code == juce::KeyPress::downKey)
    {
        typedText.clear();
        const int direction = code == juce::KeyPress::leftKey    ? 0
                              : code == juce::KeyPress::rightKey ? 1
                              : code == juce::KeyPress::upKey    ? 2
                                                                 : 3;
        arrowKey (direction, mods);
        return true;
    }
    if (code == juce::KeyPress::returnKey)
    {
        commitText();
        if (doubleClickKeyEntry)
            giveAwayKeyboardFocus();
        return true;
    }
    if (code == juce::KeyPress::tabKey)
    {
        commitText();
        moveKeyboardFocusToSibling (!mods.isShiftDown());
        return true;
    }
    if (code == juce::KeyPress::backspaceKey)
    {
        if (inputMode == 1 && typedText.isNotEmpty())
        {
            typedText = typedText.dropLastCharacters (1);
            dirty = true;
        }
        return true;
    }
    const auto character = key.getTextCharacter();
    if (character == 0)
        return false;
    typedCharacter (character);
    return true;
}

void TRQControl::typedCharacter (juce::juce_wchar ch)
{
    if (typedText.isEmpty())
    {
        if (ch == '`')
        {
            commitText();
            moveKeyboardFocusToSibling (false);
            return;
        }
        if (ch == 'a' || ch == 'A')
        {
            const int action = ch == 'A' ? actionB : actionA;
            abActionSignal.emit (action);
            gestures.abAction (action);
            return;
        }
    }
    if (inputMode == 1)
    {
        if (typedText.isEmpty() && juce::CharacterFunctions::isWhitespace (ch))
            return;
        if (TRQValueLaw::acceptsTypedCharacter (ch))
        {
            typedText += juce::String::charToString (ch);
            dirty = true;
            valueText.end();
        }
    }
    else if (inputMode == 2 && ch >= '0' && ch <= '9')
    {
        const int target = std::max ((int)(ch - '0') - 1, 0);
        if ((float)target <= row.max)
            setUserValue ((float)target + row.min, true);
    }
}

void TRQControl::commitText()
{
    if (inputMode != 1 || typedText.isEmpty())
        return;
    const auto value = TRQValueLaw::parseTypedValue (typedText);
    typedText.clear();
    dirty = true;
    if (value)
        setUserValue (*value, true);
}

juce::String TRQControl::valueNumberText() const
{
    if (typedText.isNotEmpty())
        return typedText;
    float real = parameter.getRealValue();
    if (real == 0.0f)
        real = 0.0f;
    return juce::String::fromUTF8 (valueToText (row.id, real, false).c_str());
}

juce::String TRQControl::valueUnitText() const
{
    if (typedText.isNotEmpty())
        return {};
    const auto unit = unitText (row.id, parameter.getRealValue());
    if (const auto glyph = unitGlyph (unit))
        return juce::String::charToString (glyph);
    return juce::String::fromUTF8 (unit.c_str());
}

juce::Font TRQControl::numberFont (float height) const
{
    if (auto* lf = dynamic_cast<TRQLookAndFeel*> (&getLookAndFeel()))
        return lf->numberFont (height);
    return juce::Font (height);
}

juce::Font TRQControl::symbolFont (float height) const
{
    if (auto* lf = dynamic_cast<TRQLookAndFeel*> (&getLookAndFeel()))
        return lf->symbolFont (height);
    return juce::Font (height);
}

juce::Colour TRQControl::controlColour() const
{
    const auto& c = style == 1 ? row.darkColour : row.lightColour;
    return juce::Colour::fromFloatRGBA (c.red, c.green, c.blue, 1.0f);
}

void TRQControl::updateFocusRing()
{
    juce::Colour colour = controlColour();
    if (auto* lf = dynamic_cast<TRQLookAndFeel*> (&getLookAndFeel()))
        colour = lf->focusRingColour (colour);
    setRing (getLocalBounds().toFloat(), 4.0f, colour);
}

void TRQControl::focusGained (FocusChangeType)
{
    updateFocusRing();
    dirty = true;
}

void TRQControl::focusLost (FocusChangeType)
{
    commitText();
    dirty = true;
}

void TRQControl::paint (juce::Graphics& g)
{
    const float dim = dimAmount();
    const bool layered = dim > 0.0f && row.toggleKind != 3;
    if (layered)
        g.beginTransparencyLayer (1.0f - 0.8f * dim);
    labelList.paint (g);
    if (hasLock && locked.load())
    {
        g.setColour (style == 1 ? juce::Colours::white : juce::Colours::black);
        g.setFont (symbolFont (18.0f));
        const bool farSide = row.toggleKind == 6;
        const float x = farSide ? (float)getWidth() - 2.0f - 18.0f : 2.0f;
        const float y = farSide ? (float)getHeight() - 3.0f - 18.0f : 3.0f;
        g.drawText (juce::String::charToString (TRQSymbols::lock),
                    juce::Rectangle<float> (x, y, 18.0f, 18.0f), juce::Justification::centred, false);
    }
    drawControl (g);
    if (layered)
        g.endTransparencyLayer();
}
