#pragma once

#include "state/TRQLanguage.h"

#include <juce_graphics/juce_graphics.h>

// Paints the panel's artwork without an editor, with JUCE's software renderer:
// background and headings through TRQLayoutComponent, then every control's
// ruler, caption and state text at the control's place on the canvas.
namespace ArtworkRenderer
{
constexpr int canvasWidth = 793;
constexpr int canvasHeight = 380;

juce::Image renderPanel (TRQLanguage::Language language, int style, float scale);

// Every state text of every value, the HUD options, the language's own name and
// the nameplate, on a strip, for checking the words one by one.
juce::Image renderLabelSheet (TRQLanguage::Language language, int style, float scale);

// The ten menu languages, light on the left and dark on the right.
juce::Image renderContactSheet (float scale);

bool writePng (const juce::Image& image, const juce::File& file);

// The on-screen rectangle of a design frame counted from the canvas bottom.
juce::Rectangle<float> frameFromBottom (juce::Rectangle<float> frame);
} // namespace ArtworkRenderer
