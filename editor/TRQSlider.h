#pragma once

#include "editor/TRQControl.h"

// A fader: a thumb that runs along the row's track and shows the value inside it.
class TRQSlider : public TRQControl
{
public:
    // mode 0 stands alone; 1 and 2 are the lower and upper halves of a range pair.
    TRQSlider (int parameterIndex, TRQAudioParameter& parameter, TRQParameterGestures& gestures,
               int mode = 0);

    void drawControl (juce::Graphics& g) override;
    void rebuildDrawing() override;
    void updateFocusRing() override;
    void mouseDown (const juce::MouseEvent& e) override;
    void mouseDrag (const juce::MouseEvent& e) override;
    void mouseUp (const juce::MouseEvent& e) override;
    void refresh (bool force) override;

    // Where the thumb is drawn now, in the control's units.
    juce::Rectangle<float> thumbBounds() const;
    // The thumb's centre for a normalised value.
    juce::Point<float> thumbCentreFor (float normalised) const;

    // 0..1: how far the thumb has been lifted by a press.
    float pressAmount() const { return pressAnimation.valueAt (nowMs()); }

    // Fired with each new thumb position on its way, not only the target (range
    // pairs follow it).
    TRQSignals::Signal<void (float)> positionChanged;

    static constexpr float thumbThickness = 20.0f;
    // Widest a vertical thumb gets across its ruler.
    static constexpr float maxThumbAcross = 38.0f;
    // The thumb's face in a style, under the value text.
    static juce::Colour thumbFace (int style);
    // The value text's colour now: the artwork's, dimmed while disabled.
    juce::Colour valueTextColour() const;

protected:
    bool isAnimating() const override;
    void valueArrived (float normalised) override;
    bool isOverHoverTarget (juce::Point<float> position) const override;

private:
    float trackLength() const;
    void findTrackLine();
    float axisPosition (juce::Point<float> p) const;

    const int sliderMode;
    TRQDrawingList trackList;
    TRQAnimatedValue thumbAnimation{100.0};
    TRQAnimatedValue pressAnimation{125.0};
    float lastEmittedPosition = -1.0f;
    float dragStartValue = 0.0f;
    juce::Point<float> lastPos;
    juce::Image shadowCache;
    float thumbAcross = 40.0f;
    float trackLine = 0.0f;
    bool hasTrackLine = false;
};
