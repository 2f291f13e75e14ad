#include "core/TRQMeterParameter.h"

namespace
{
// Meter kinds map onto the host's meter categories; anything past the known
// kinds counts as "other".
juce::AudioProcessorParameter::Category categoryOf (unsigned kind)
{
    return static_cast<juce::AudioProcessorParameter::Category> (0x20000 + std::min (kind, 5u));
}
} // namespace

TRQMeterParameter::TRQMeterParameter (int index, const juce::String& name, unsigned kind)
    : juce::AudioProcessorParameterWithID (juce::ParameterID (juce::String (index), 1), name)
    , category (categoryOf (kind))
{
}
