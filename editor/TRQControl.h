#pragma once

#include "editor/TRQAnimatedValue.h"
#include "editor/TRQComponent.h"
#include "editor/TRQDrawing.h"
#include "editor/TRQFocusRing.h"
#include "editor/TRQTooltipClient.h"
#include "editor/TRQTransientValue.h"
#include "state/ParameterSpec.h"
#include "state/TRQSignals.h"

#include <array>
#include <atomic>

class TRQAudioParameter;
class TRQParameterGestures;

// One parameter's control. Holds the cached value, takes mouse, wheel and keyboard
// input, and writes back through the gesture door; subclasses give the look and the
// value law.
class TRQControl : public TRQComponent,
                   public TRQTooltipClient,
                   public TRQFocusRing,
                   public TRQSignals::Trackable
{
public:
    enum ABAction
    {
        actionA = 0,
        actionB = 1
    };

    TRQControl (int parameterIndex, TRQAudioParameter& parameter, TRQParameterGestures& gestures);
    ~TRQControl() override;

    TRQSignals::Signal<void (int)> abActionSignal;

    virtual void refresh (bool force);
    virtual void drawControl (juce::Graphics& g) = 0;
    virtual void setDependencyDisabled (int parameter, bool disabled);
    // Under a form the panel is only a backdrop: the control fades to its dimmed look.
    void setInModal (bool on);
    bool isInModal() const { return inModal; }
    virtual void setLanguageAndStyle (int language, int style);
    virtual void stepUp (juce::ModifierKeys mods, bool gesture);
    virtual void stepDown (juce::ModifierKeys mods, bool gesture);
    virtual bool canStep (float from, float to, int mode);
    virtual void setDoubleClickKeyEntry (bool on);
    virtual void rebuildDrawing();
    virtual void arrowKey (int direction, juce::ModifierKeys mods);
    virtual bool isOverActiveArea (juce::Point<int> position);
    virtual void applyDragDelta (float current, juce::Point<float> delta, int mode);

    // The editor's way in: a new value from the parameter. True when it differs.
    bool setNormalisedFromParameter (float normalised);
    float getNormalisedValue() const { return normalisedValue.load(); }
    int getParameterIndex() const { return parameterIndex; }
    const ParameterSpec& getRow() const { return row; }
    TRQAudioParameter& getParameter() const { return parameter; }

    bool hasLockMark() const { return hasLock; }
    void setLocked (bool isLocked);
    bool isLocked() const { return locked.load(); }
    void setScrollEnabled (bool on) { scrollEnabled = on && wheelable; }
    bool isDisabledByDependency() const { return disabled; }
    const juce::String& getTypedText() const { return typedText; }
    bool isDirty() const { return dirty; }

    // The control's ring in its own units, for the GL pass.
    virtual void updateFocusRing();

    // Shows the value for a moment where the control itself can't be seen, as when
    // automation moves a control of the closed advanced pane. It fades in, holds
    // while changes keep coming, and fades out.
    void showTransientValue();
    void endTransientValue() { valueText.end(); }
    bool isShowingTransientValue() const { return valueText.isActive(); }
    float transientValueAlpha() const { return valueText.alpha (nowMs()); }
    // The current value as the control shows it, centred in area.
    virtual void paintValue (juce::Graphics& g, juce::Rectangle<float> area) const;
    const TRQDrawingList& getLabelList() const { return labelList; }
    int getStyle() const { return style; }

    // 0..1: how far the hover highlight has come in.
    float hoverAmount() const { return hoverAnimation.valueAt (nowMs()); }

    void paint (juce::Graphics& g) override;
    void mouseDown (const juce::MouseEvent& e) override;
    void mouseUp (const juce::MouseEvent& e) override;
    void mouseMove (const juce::MouseEvent& e) override;
    void mouseEnter (const juce::MouseEvent& e) override;
    void mouseExit (const juce::MouseEvent& e) override;
    void mouseWheelMove (const juce::MouseEvent& e, const juce::MouseWheelDetails& wheel) override;
    bool keyPressed (const juce::KeyPress& key) override;
    void focusGained (FocusChangeType cause) override;
    void focusLost (FocusChangeType cause) override;

protected:
    // Steps common to every press; true when the press was dealt with.
    bool handleMouseDown (const juce::MouseEvent& e);
    // Alt-click: the preset default in one gesture. True when it applied.
    bool resetOnAlt (const juce::MouseEvent& e);
    void setFromNormalised (float normalised, int mode);
    // Sets a real value, snapped to the fine grid, in an optional gesture of its own.
    void setUserValue (float real, bool gesture);
    float userValue() const;
    void markDirty() { dirty = true; }
    void typedCharacter (juce::juce_wchar character);
    void commitText();
    // The value as shown: number and unit glyph, or what is being typed.
    juce::String valueNumberText() const;
    juce::String valueUnitText() const;
    juce::Font numberFont (float height) const;
    juce::Font symbolFont (float height) const;
    juce::Colour controlColour() const;
    double nowMs() const;
    float dimAmount() const { return dimAnimation.valueAt (nowMs()); }
    virtual bool isAnimating() const;
    virtual void valueArrived (float normalised);
    // Whether a mouse at this position lights the control up; all of it by default.
    virtual bool isOverHoverTarget (juce::Point<float> position) const;
    void updateHover();
    void setHover (bool over);

    const int parameterIndex;
    TRQAudioParameter& parameter;
    TRQParameterGestures& gestures;
    const ParameterSpec& row;
    TRQDrawing drawing;

    int inputMode = 0;
    bool wraps = false;
    bool usesGestures = true;
    bool wheelable = false;
    bool scrollEnabled = false;
    bool hasLock = false;
    bool disabled = false;
    bool inModal = false;
    bool isDown = false;
    bool isDragging = false;
    bool dirty = true;
    bool doubleClickKeyEntry = false;
    bool tooltipWanted = false;
    bool wasAnimating = false;
    std::array<std::atomic<bool>, 21> dependencyFlags{};
    std::atomic<bool> locked{false};
    std::atomic<float> normalisedValue{0.0f};
    std::atomic<int> languageAndStyle{0};
    std::atomic<bool> labelChanged{true};
    int language = 0;
    int style = 0;
    juce::String typedText;
    TRQDrawingList labelList;
    TRQAnimatedValue dimAnimation{250.0};
    TRQAnimatedValue hoverAnimation{125.0};
    TRQTransientValue valueText;
    // Where the mouse was last seen over this control, from its own events.
    juce::Point<float> lastMousePosition;
    bool mouseInside = false;
    double lastWheelMs = 0.0;
    double downTimeMs = 0.0;

private:
    void gestureBegin();
    void gestureEnd();

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (TRQControl)
};
