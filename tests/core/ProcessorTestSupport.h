#pragma once

#include "core/TRQAudioProcessor.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <memory>

// Builds processors and layouts the way a host would, for the processor's tests.
namespace ProcessorTestSupport
{
juce::AudioProcessor::BusesLayout layout (int ins, int outs, int sidechain);

// A processor with the given layout, not yet prepared. With `asAAX` the processor
// believes it runs inside that format's wrapper.
std::unique_ptr<TRQAudioProcessor> make (int ins = 2, int outs = 2, int sidechain = 2, bool asAAX = false);

// One block of a steady sine on every input channel (sidechain included).
void fillSine (juce::AudioBuffer<float>& buffer, int startSample, double rate);

// A chunk built the way the processor writes one, from raw XML text.
juce::MemoryBlock chunkFromXml (const juce::String& xml);
} // namespace ProcessorTestSupport
