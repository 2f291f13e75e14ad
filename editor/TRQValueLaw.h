#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <optional>

// The value arithmetic every control shares: step modes from modifier keys, step
// sizes and snapping per mode, stepping with wrap, and the reading of typed text.
// Plain functions of the catalogue, so they are easy to check on their own.
namespace TRQValueLaw
{
// 0 fine (Ctrl alone), 2 big (Shift alone), 1 otherwise; mouse buttons don't count.
int stepModeFor (juce::ModifierKeys mods);

// Whether the modifiers, mouse buttons aside, are exactly these flags.
bool modifiersAre (juce::ModifierKeys mods, int flags);

// The step of a parameter in a mode: fine, normal, big.
float stepSize (int index, float value, int mode);

// value rounded to the grid of the mode's step.
float snapToStep (int index, float value, int mode);

// The next value up or down from value in the mode, before the parameter clamps it.
// A wrapping control at its end goes round to the other end.
float stepUpFrom (int index, float value, int mode, bool wraps);
float stepDownFrom (int index, float value, int mode, bool wraps);

// Whether a character may be typed into a value field.
bool acceptsTypedCharacter (juce::juce_wchar character);

// Reads what the user typed: text without digits reads 0, "a/b" divides, a "k"
// multiplies by a thousand. Empty text reads nothing.
std::optional<float> parseTypedValue (const juce::String& text);
} // namespace TRQValueLaw
