#pragma once

#include "editor/TRQControl.h"

// A row of options side by side; a click on one selects it.
class TRQToggle : public TRQControl
{
public:
    TRQToggle (int parameterIndex, TRQAudioParameter& parameter, TRQParameterGestures& gestures);

    void drawControl (juce::Graphics& g) override;
    void paintValue (juce::Graphics& g, juce::Rectangle<float> area) const override;
    void rebuildDrawing() override;
    void mouseDown (const juce::MouseEvent& e) override;

    // The option's rectangle in the control's units.
    juce::Rectangle<float> optionArea (int option) const;
    int optionCount() const { return (int)row.stateFrames.size(); }

private:
    std::vector<TRQDrawingList> optionLists;
};
