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
    // JUCE offers tips only while the process's own window holds the keyboard focus;
    // a plug-in's window inside a host seldom does, so the mouse alone decides here.
    lastTip = {};
    if (!juce::ModifierKeys::currentModifiers.isAnyMouseButtonDown())
        if (auto* client = dynamic_cast<juce::TooltipClient*> (&component))
            if (!component.isCurrentlyBlockedByAnotherModalComponent())
                lastTip = client->getTooltip();
    return lastTip;
}
