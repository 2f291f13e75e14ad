#pragma once

#include "editor/TRQAnimatedValue.h"
#include "editor/TRQComponent.h"
#include "editor/TRQDrawingList.h"
#include "editor/TRQTooltipClient.h"
#include "state/TRQSignals.h"

#include <atomic>
#include <set>
#include <vector>

// The button of the toolbar, the task column, the forms and the modal viewer. It
// cycles through stateCount states on each click; each state has its own label and
// fill, and states listed as disabled dim the button and take it out of reach.
class TRQTextButton : public TRQComponent,
                      public TRQTooltipClient,
                      public TRQSignals::Trackable,
                      private juce::Timer
{
public:
    explicit TRQTextButton (int id, int stateCount = 1);
    ~TRQTextButton() override;

    // (id, new state), after a click released inside the button.
    TRQSignals::Signal<void (int, int)> clickedSignal;

    int getId() const { return id; }
    int getStateCount() const { return stateCount; }
    int getState() const { return state; }
    // Shows a state without telling anyone.
    void setState (int newState);

    void setLabel (int forState, const juce::String& text, const juce::Font& font);
    void setGlyph (int forState, juce::juce_wchar glyph, float height);
    // An outline from the drawing as the state's label, in its own colours, its
    // origin at origin in the button's units.
    void setDrawingLabel (int forState, TRQDrawingList list, juce::Point<float> origin);
    juce::String getLabelText (int forState) const;
    void setFill (int forState, juce::Colour colour);
    void setTextColour (juce::Colour colour);
    void setDisabledStates (std::set<int> states);
    void setDrawBackground (bool on) { drawBackground = on; }
    void setDrawOutline (bool on) { drawOutline = on; }
    void setRadius (float r) { radius = r; }
    void setJustification (juce::Justification j);

    // Repaints when something asked for it since the last refresh.
    void refresh (bool force);
    // Simulates a whole click, for the keyboard and tests.
    void click();

    void paint (juce::Graphics& g) override;
    void resized() override;
    void mouseEnter (const juce::MouseEvent& e) override;
    void mouseExit (const juce::MouseEvent& e) override;
    void mouseDown (const juce::MouseEvent& e) override;
    void mouseUp (const juce::MouseEvent& e) override;

private:
    struct Label
    {
        juce::String text;
        juce::Font font;
        juce::TextLayout layout;
        TRQDrawingList outline;
        juce::Point<float> outlineOrigin;
    };

    void timerCallback() override;
    void layOut (Label& label);
    Label& labelFor (int forState);
    void animate (TRQAnimatedValue& value, float target);
    void markForRepaint();

    const int id;
    int stateCount;
    int state = 0;
    std::vector<Label> labels;
    std::vector<juce::Colour> fills;
    std::set<int> disabledStates;
    juce::Colour textColour{juce::Colours::white};
    juce::Justification justification{juce::Justification::centred};
    std::atomic<bool> needsRepaint{true};
    bool drawBackground = true;
    bool drawOutline = false;
    bool pressing = false;
    float radius = 4.0f;
    TRQAnimatedValue hover{120.0}, press{80.0};
};
