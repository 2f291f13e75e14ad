#include "core/ProcessorTestSupport.h"

#include "support/BusLayouts.h"

#include <cmath>

namespace ProcessorTestSupport
{
juce::AudioProcessor::BusesLayout layout (int ins, int outs, int sidechain)
{
    return BusLayouts::make (ins, outs, sidechain);
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
