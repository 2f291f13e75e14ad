#pragma once

#include "editor/TRQComponent.h"

#include <memory>

class TRQControl;

// Where a control that can't be seen shows its value for a moment: a small panel
// over the main pane with the control's own label and value, at the opacity the
// control's value animation gives. It never takes the mouse.
class TRQTransientValueView : public TRQComponent, private juce::Timer
{
public:
    // The panel in canvas units; the component is larger by the shadow's margin.
    static juce::Rectangle<float> panelArea() { return {130.0f, 66.0f, 136.0f, 56.0f}; }
    static constexpr int shadowMargin = 10;

    TRQTransientValueView();

    // Asks the control to show its value and follows it until it is done.
    void show (const std::shared_ptr<TRQControl>& control);
    // The control being shown, or null.
    TRQControl* getSource() const;

    void paint (juce::Graphics& g) override;

private:
    void timerCallback() override;
    void stop();
    static bool isSeen (const juce::Component& component);

    std::weak_ptr<TRQControl> source;
    double lastShowMs = 0.0, lastTogetherMs = 0.0;
    // Changes closer than this came from one action.
    static constexpr double togetherMs = 8.0;
};
