#include "editor/TRQDrawingList.h"

#include <algorithm>

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

juce::Rectangle<float> TRQDrawingList::getBounds() const
{
    juce::Rectangle<float> area;
    for (const auto& element : elements)
        area = area.isEmpty() ? element.path.getBounds() : area.getUnion (element.path.getBounds());
    return area;
}

void TRQDrawingList::paintFitted (juce::Graphics& g, juce::Rectangle<float> area) const
{
    const auto b = getBounds();
    if (b.isEmpty() || area.isEmpty())
        return;
    const float scale = std::min ({1.0f, area.getWidth() / b.getWidth(), area.getHeight() / b.getHeight()});
    juce::Graphics::ScopedSaveState save (g);
    g.addTransform (juce::AffineTransform::translation (-b.getCentreX(), -b.getCentreY())
                        .scaled (scale)
                        .translated (area.getCentreX(), area.getCentreY()));
    paint (g);
}
