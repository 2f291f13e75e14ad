#pragma once

#include "editor/TRQControl.h"

// A switch that shows its current state as a word or icon and steps through its
// states with a click, wrapping round; a digit picks a state directly.
class TRQIndexedControl : public TRQControl
{
public:
    TRQIndexedControl (int parameterIndex, TRQAudioParameter& parameter, TRQParameterGestures& gestures);

    void drawControl (juce::Graphics& g) override;
    void paintValue (juce::Graphics& g, juce::Rectangle<float> area) const override;
    void rebuildDrawing() override;
    void updateFocusRing() override;
    void mouseDown (const juce::MouseEvent& e) override;
    void stepUp (juce::ModifierKeys mods, bool gesture) override;
    void stepDown (juce::ModifierKeys mods, bool gesture) override;

    int valueIndex() const;

    // The button style of the power switch: a round glyph, ringed by a circle.
    static constexpr std::uint32_t roundButtonStyle = 5;

protected:
    bool isAnimating() const override;

private:
    juce::Rectangle<float> outlineArea (const TRQDrawingList& list) const;

    std::vector<TRQDrawingList> stateLists;
    TRQAnimatedValue flash{250.0};
    int flashDirection = 0;
};
