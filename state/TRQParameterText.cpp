#include "state/TRQParameterText.h"

#include "state/ParameterRange.h"
#include "state/ParameterText.h"
#include "state/TRQAudioParameter.h"

juce::String valueToText (const TRQAudioParameter& parameter, float real, bool forceSingleLabel)
{
    return juce::String::fromUTF8 (valueToText (parameter.getId(), real, forceSingleLabel).c_str());
}

juce::String unitText (const TRQAudioParameter& parameter, float real)
{
    return juce::String::fromUTF8 (unitText (parameter.getId(), real).c_str());
}

bool isSpecialValue (const TRQAudioParameter& parameter, float real)
{
    return isSpecialValue (parameter.getId(), real);
}

bool acceptsValue (const TRQAudioParameter& parameter, float real)
{
    if (parameter.getExcludedValues().count (real) != 0)
        return false;
    return isWithinAcceptedRange (parameter.getId(), real);
}
