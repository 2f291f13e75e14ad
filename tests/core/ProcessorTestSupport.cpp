#include "core/ProcessorTestSupport.h"

#include <cmath>

namespace ProcessorTestSupport
{
juce::AudioChannelSet channels (int count)
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

juce::AudioProcessor::BusesLayout layout (int ins, int outs, int sidechain)
{
    juce::AudioProcessor::BusesLayout l;
    l.inputBuses.add (channels (ins));
    l.inputBuses.add (channels (sidechain));
    l.outputBuses.add (channels (outs));
    return l;
}

std::unique_ptr<TRQAudioProcessor> make (int ins, int outs, int sidechain, bool asAAX)
{
    if (asAAX)
        juce::AudioProcessor::setTypeOfNextNewPlugin (juce::AudioProcessor::wrapperType_AAX);
    auto processor = std::make_unique<TRQAudioProcessor>();
    juce::AudioProcessor::setTypeOfNextNewPlugin (juce::AudioProcessor::wrapperType_Undefined);
    processor->setBusesLayout (layout (ins, outs, sidechain));
    return processor;
}

void fillSine (juce::AudioBuffer<float>& buffer, int startSample, double rate)
{
    for (int c = 0; c < buffer.getNumChannels(); ++c)
        for (int i = 0; i < buffer.getNumSamples(); ++i)
            buffer.setSample (
                c, i, static_cast<float> (0.25 * std::sin (6.283185307 * 330.0 * (startSample + i) / rate)));
}

juce::MemoryBlock chunkFromXml (const juce::String& xml)
{
    juce::MemoryBlock block;
    auto parsed = juce::parseXML (xml);
    if (parsed != nullptr)
        juce::AudioProcessor::copyXmlToBinary (*parsed, block);
    return block;
}
} // namespace ProcessorTestSupport
