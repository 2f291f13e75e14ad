#pragma once

#include <juce_graphics/juce_graphics.h>

// One shape of the drawing with its paint: fill, optional stroke and an
// optional soft shadow limited to a clip rectangle.
struct TRQDrawingElement
{
    juce::Rectangle<float> bounds;
    juce::Path path;
    juce::FillType fill;
    float strokeThickness = 0.0f;
    juce::Colour strokeColour;
    bool hasStroke = false;
    juce::DropShadow shadow{juce::Colours::black.withAlpha ((juce::uint8)0x90), 4, {0, 0}};
    bool hasShadow = false;
    juce::Rectangle<int> shadowClip;

    void paint (juce::Graphics& g) const;
};
