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
};
