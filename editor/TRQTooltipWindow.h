#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

// The editor's tooltip, a child of the scaled root. Its drawing leaves a margin for
// the shadow on each side, and the margin lets the mouse through to whatever lies
// under the tip's edge, so that a tip that opens under the pointer never takes the
// hover away from the control it explains.
class TRQTooltipWindow : public juce::TooltipWindow
{
public:
    TRQTooltipWindow (juce::Component* parent, int delayMs);

    bool hitTest (int x, int y) override;
    juce::String getTipFor (juce::Component& component) override;

    // The text showing now, empty while hidden.
    juce::String getTipShowing() const { return isVisible() ? lastTip : juce::String(); }

private:
    juce::String lastTip;
};
