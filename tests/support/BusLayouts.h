#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

// Bus layouts as a host asks for them: main input, sidechain, main output.
namespace BusLayouts
{
inline juce::AudioChannelSet channels (int count)
{
    switch (count)
    {
    case 0:
        return juce::AudioChannelSet::disabled();
    case 1:
        return juce::AudioChannelSet::mono();
    case 2:
        return juce::AudioChannelSet::stereo();
    default:
        return juce::AudioChannelSet::discreteChannels (count);
    }
}

inline juce::AudioProcessor::BusesLayout make (int ins, int outs, int sidechain)
{
    juce::AudioProcessor::BusesLayout l;
    l.inputBuses.add (channels (ins));
    l.inputBuses.add (channels (sidechain));
    l.outputBuses.add (channels (outs));
    return l;
}
} // namespace BusLayouts
