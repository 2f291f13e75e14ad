// Feeds arbitrary bytes to the processor as a saved chunk. A chunk that is not a
// readable settings document must leave every parameter as it was.
#include "core/TRQAudioProcessor.h"
#include "state/TRQStateChunk.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput (const uint8_t* data, size_t size)
{
    static juce::ScopedJuceInitialiser_GUI juce;

    TRQAudioProcessor processor;
    float before[TRQAudioProcessor::numParameters];
    for (int i = 0; i < TRQAudioProcessor::numParameters; ++i)
        before[i] = processor.getParameters()[i]->getValue();

    processor.setStateInformation (data, static_cast<int> (size));

    if (!processor.getStateHasBeenSet())
        std::abort();

    // Only a document with the right root may change anything.
    const auto xml = TRQStateChunk::read (data, static_cast<int> (size));
    const bool readable = size > 8 && xml != nullptr && xml->hasTagName ("MYPLUGINSETTINGS");
    if (!readable)
        for (int i = 0; i < TRQAudioProcessor::numParameters; ++i)
            if (processor.getParameters()[i]->getValue() != before[i])
                std::abort();

    return 0;
}
