// The HQ converters against the reference a host would reach for (libsoxr, very
// high quality), stereo, 48 kHz up to 192 kHz and back, reported per output frame
// with each one's latency; and the whole plug-in in HQ mode at 48 kHz stereo.
#include "core/TRQAudioProcessor.h"
#include "toolkit/HVNSIMD.h"
#include "toolkit/HVNSRC.h"

#include <benchmark/benchmark.h>
#include <soxr.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <vector>

namespace
{
constexpr double lowRate = 48000.0, highRate = 192000.0;

double rateOf (int64_t direction, bool source)
{
    return (direction == 0) == source ? lowRate : highRate;
}

void fill (float* x, uint32_t n, float phase)
{
    for (uint32_t i = 0; i < n; ++i)
        x[i] = 0.25f * std::sin (0.01f * static_cast<float> (i) + phase);
}

void report (benchmark::State& state, int64_t outputFrames, double latencyMs)
{
    state.SetItemsProcessed (outputFrames);
    state.counters["ns_per_frame"] = benchmark::Counter (
        static_cast<double> (outputFrames), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.counters["latency_ms"] = latencyMs;
}

// Arg 0: 48k to 192k in blocks of 256; arg 1: 192k to 48k in blocks of 1024.
void hvnsrc (benchmark::State& state)
{
    const double from = rateOf (state.range (0), true), to = rateOf (state.range (0), false);
    const uint32_t block = from == lowRate ? 256 : 1024;
    HVNSRC src (from, block, to, 2);
    HVNAudioBuffer<float> in (2, block), out (2, src.getMaxDestLength());
    fill (in.channel (0), block, 0.0f);
    fill (in.channel (1), block, 1.0f);

    int64_t frames = 0;
    for (auto _ : state)
    {
        frames += src.process (in, block, out);
        benchmark::DoNotOptimize (out.channel (0));
    }
    report (state, frames, src.getLatency() / to * 1000.0);
    state.SetLabel (HVNSIMD::name (HVNSIMD::selected()));
}

struct Soxr
{
    Soxr (double from, double to)
    {
        soxr_error_t error = nullptr;
        const soxr_io_spec_t io = soxr_io_spec (SOXR_FLOAT32_S, SOXR_FLOAT32_S);
        const soxr_quality_spec_t quality = soxr_quality_spec (SOXR_VHQ, 0);
        const soxr_runtime_spec_t runtime = soxr_runtime_spec (1);
        handle = soxr_create (from, to, 2, &error, &io, &quality, &runtime);
        if (error != nullptr)
            throw std::runtime_error (error);
    }
    ~Soxr() { soxr_delete (handle); }

    size_t process (const float* const* in, size_t n, float** out, size_t room)
    {
        size_t used = 0, made = 0;
        soxr_process (handle, in, n, &used, out, room, &made);
        return made;
    }

    soxr_t handle = nullptr;
};

// The reference trims its filter delay from the start of the stream but holds
// output back until it has enough input: a host that needs a full block out for
// every block in must delay by the largest shortfall, which is its latency here.
double soxrLatencyMs (double from, double to, uint32_t block)
{
    Soxr s (from, to);
    const uint32_t room = 4 * block * 4;
    std::vector<float> a (block), b (block), outA (room), outB (room);
    const float* in[2] = {a.data(), b.data()};
    float* out[2] = {outA.data(), outB.data()};
    double consumed = 0.0, produced = 0.0, shortfall = 0.0;
    for (int k = 0; k < static_cast<int> (0.5 * from / block); ++k)
    {
        consumed += block;
        produced += static_cast<double> (s.process (in, block, out, room));
        shortfall = std::max (shortfall, consumed * to / from - produced);
    }
    return shortfall / to * 1000.0;
}

void soxrVHQ (benchmark::State& state)
{
    const double from = rateOf (state.range (0), true), to = rateOf (state.range (0), false);
    const uint32_t block = from == lowRate ? 256 : 1024;
    Soxr s (from, to);
    const uint32_t room = 4 * block * 4;
    std::vector<float> a (block), b (block), outA (room), outB (room);
    fill (a.data(), block, 0.0f);
    fill (b.data(), block, 1.0f);
    const float* in[2] = {a.data(), b.data()};
    float* out[2] = {outA.data(), outB.data()};

    int64_t frames = 0;
    for (auto _ : state)
    {
        frames += static_cast<int64_t> (s.process (in, block, out, room));
        benchmark::DoNotOptimize (outA.data());
    }
    report (state, frames, soxrLatencyMs (from, to, block));
}

// The plug-in with its defaults and HQMode on, at 48 kHz stereo with a stereo
// sidechain bus, block 256: per stereo frame.
void pluginHQ (benchmark::State& state)
{
    static juce::ScopedJuceInitialiser_GUI juce;
    constexpr int block = 256;
    TRQAudioProcessor processor;
    processor.getParameters()[16]->setValueNotifyingHost (1.0f);
    processor.prepareToPlay (lowRate, block);

    juce::AudioBuffer<float> buffer (4, block);
    for (int c = 0; c < 4; ++c)
        fill (buffer.getWritePointer (c), block, static_cast<float> (c));
    juce::MidiBuffer midi;
    for (int i = 0; i < 100; ++i) // past any swap and its fade
        processor.processBlock (buffer, midi);

    for (auto _ : state)
    {
        processor.processBlock (buffer, midi);
        benchmark::DoNotOptimize (buffer.getReadPointer (0));
    }
    report (state, state.iterations() * block, processor.getLatencySamples() / lowRate * 1000.0);
}
} // namespace

BENCHMARK (hvnsrc)->Name ("SRC/HVNSRC/stereo_48k_to_192k")->Arg (0);
BENCHMARK (soxrVHQ)->Name ("SRC/soxrVHQ/stereo_48k_to_192k")->Arg (0);
BENCHMARK (hvnsrc)->Name ("SRC/HVNSRC/stereo_192k_to_48k")->Arg (1);
BENCHMARK (soxrVHQ)->Name ("SRC/soxrVHQ/stereo_192k_to_48k")->Arg (1);
BENCHMARK (pluginHQ)->Name ("Processor/processBlock/48k_stereo_HQ/256");
