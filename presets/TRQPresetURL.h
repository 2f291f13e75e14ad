#pragma once

#include "state/ParameterId.h"

#include <juce_core/juce_core.h>

class TRQSettingsHost;

// All settings as one URL: the product's address, the version, and the parameters
// that differ from their factory default by their short keys, in real units. Pasting
// such a text back is one undoable step.
namespace TRQPresetURL
{
// The maker's address for this product, without the version: ".../zolk-comp".
juce::String base();

// From the processor's current values.
juce::String settingsAsUrl (const TRQSettingsHost& processor);
// From real values by parameter id, each already snapped and clamped.
juce::String settingsAsUrl (const float (&values)[kNumParameters]);

// Sets every parameter from the text: named ones to their value, all others (power
// included) to their factory default. Everything before the first "?" is ignored, so
// any text is accepted; "key:value" pieces between "/" are read as well.
void pasteSettings (TRQSettingsHost& processor, const juce::String& text);
} // namespace TRQPresetURL
