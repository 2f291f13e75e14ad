#pragma once

#include <juce_core/juce_core.h>

class TRQAudioParameter;

// The texts of a parameter's value, as the controls and the host show them. Message
// thread only.

juce::String valueToText (const TRQAudioParameter& parameter, float real, bool forceSingleLabel);
juce::String unitText (const TRQAudioParameter& parameter, float real);
bool isSpecialValue (const TRQAudioParameter& parameter, float real);

// Whether a control may take the value: within the parameter's range and not one of
// its excluded values.
bool acceptsValue (const TRQAudioParameter& parameter, float real);
