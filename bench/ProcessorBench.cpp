// Cost of the host layer: the processor's whole block routine at 48 kHz stereo,
// reported per stereo frame.
#include "core/TRQAudioProcessor.h"

#include <benchmark/benchmark.h>

#include <cmath>

namespace
{
void processBlock (benchmark::State& state)
{
    static juce::ScopedJuceInitialiser_GUI juce;
    const int block = static_cast<int> (state.range (0));

    TRQAudioProcessor processor;
    processor.prepareToPlay (48000.0, block);

    juce::AudioBuffer<float> buffer (4, block);
    for (int c = 0; c < 4; ++c)
        for (int i = 0; i < block; ++i)
            buffer.setSample (c, i, 0.25f * std::sin (0.01f * static_cast<float> (i + c)));
    juce::MidiBuffer midi;

    for (auto _ : state)
    {
        processor.processBlock (buffer, midi);
        benchmark::DoNotOptimize (buffer.getReadPointer (0));
    }

    state.SetItemsProcessed (state.iterations() * block);
    state.counters["ns_per_frame"] =
        benchmark::Counter (static_cast<double> (state.iterations() * block),
                            benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
} // namespace

BENCHMARK (processBlock)
    ->Name ("Processor/processBlock/48k_stereo")
    ->Arg (32)
    ->Arg (64)
    ->Arg (256)
    ->Arg (1024);
