#include "editor/TRQDrawingList.h"

void TRQDrawingList::paint (juce::Graphics& g) const
{
    const bool layered = opacity != 1.0f;
    if (layered)
        g.beginTransparencyLayer (opacity);
    for (const auto& element : elements)
        element.paint (g);
    if (layered)
        g.endTransparencyLayer();
}

void TRQDrawingList::setColour (juce::Colour colour)
{
    for (auto& element : elements)
    {
        if (element.hasStroke)
            element.strokeColour = colour;
        element.fill = juce::FillType (colour);
    }
}
