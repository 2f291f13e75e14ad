#pragma once

#include <juce_graphics/juce_graphics.h>

// The house faces cover Latin scripts only; names the user typed in another script
// are set in a system face that has it, so they stay legible instead of boxes.
namespace TRQFontFallback
{
juce::Font fontFor (const juce::String& text, const juce::Font& preferred);
} // namespace TRQFontFallback
