#include "editor/TRQLayoutComponent.h"

TRQLayoutComponent::TRQLayoutComponent()
    : drawing (TRQDrawing::get())
{
    setOpaque (true);
    setInterceptsMouseClicks (false, false);
    setStyle (style);
}

void TRQLayoutComponent::paint (juce::Graphics& g)
{
    background.paint (g);
    headings.paint (g);
}

void TRQLayoutComponent::setStyle (int newStyle)
{
    style = newStyle;
    background = drawing.bgList (style);
    setLanguage (language);
    repaint();
}

void TRQLayoutComponent::setLanguage (TRQLanguage::Language newLanguage)
{
    language = newLanguage;
    headings = drawing.clumpLabelList (language, style);
    repaint();
}
