#include "editor/TRQTooltipWindow.h"

#include "editor/TRQLookAndFeel.h"
#include "editor/TRQTooltipClient.h"

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
    // JUCE offers tips only while the process's own window holds the keyboard focus;
    // a plug-in's window inside a host seldom does, so the mouse alone decides here.
    lastTip = {};
    if (juce::ModifierKeys::currentModifiers.isAnyMouseButtonDown() ||
        component.isCurrentlyBlockedByAnotherModalComponent())
        return lastTip;
    if (auto* own = dynamic_cast<TRQTooltipClient*> (&component); own != nullptr && !own->isTooltipVisible())
        return lastTip;
    if (auto* client = dynamic_cast<juce::TooltipClient*> (&component))
        lastTip = client->getTooltip();
    return lastTip;
}
