#include "editor/TRQTooltipWindow.h"

#include "editor/TRQLookAndFeel.h"

TRQTooltipWindow::TRQTooltipWindow (juce::Component* parent, int delayMs)
    : juce::TooltipWindow (parent, delayMs)
{
    // Only the box inside the margin is painted; the rest shows the panel.
    setOpaque (false);
}

bool TRQTooltipWindow::hitTest (int x, int y)
{
    const int margin = TRQLookAndFeel::tooltipMargin;
    return x >= margin && y >= margin && x < getWidth() - margin && y < getHeight() - margin;
}

juce::String TRQTooltipWindow::getTipFor (juce::Component& component)
{
    // The window shows the tip of the component under the mouse as of its last look.
    lastTip = juce::TooltipWindow::getTipFor (component);
    return lastTip;
}
