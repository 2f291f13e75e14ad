#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

// A component's tip, which the editor's tooltip window shows only while the
// component says so: over its active part, not while it is pressed or after the
// mouse left.
class TRQTooltipClient : public juce::SettableTooltipClient
{
public:
    void showTooltip (bool show) { tooltipVisible = show; }
    bool isTooltipVisible() const { return tooltipVisible; }

private:
    bool tooltipVisible = false;
};
