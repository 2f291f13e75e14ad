#pragma once

#include "editor/TRQDrawingElement.h"

#include <vector>

// The elements a component paints, in order, at one opacity. Held by value and
// replaced whole when the language or the style changes.
struct TRQDrawingList
{
    std::vector<TRQDrawingElement> elements;
    float opacity = 1.0f;

    void paint (juce::Graphics& g) const;

    // Recolours every element with one plain colour: strokes take it, and fills
    // become it, gradients and images included.
    void setColour (juce::Colour colour);

    bool isEmpty() const { return elements.empty(); }

    // Where the elements' outlines lie, strokes left out.
    juce::Rectangle<float> getBounds() const;
    // Paints the list centred in area, scaled down to fit it but never up.
    void paintFitted (juce::Graphics& g, juce::Rectangle<float> area) const;
};
