// The whole signal path, stereo, per stereo frame: at the factory defaults, and
// with every continuous control moving (each swept over its range by a slow
// sine of its own, a new value every block, as automation delivers it).
#include "dsp/HVNParameterIndex.h"
#include "dsp/HVNZC1DSP.h"

#include <benchmark/benchmark.h>

#include <cmath>

namespace
{
using namespace HVNParameterIndex;

struct Sweep
{
    uint32_t index;
    float low, high;
    double hz;
};

// Range and sweep rate of every continuous control.
constexpr Sweep sweeps[] = {
    {InputGain, -24.0f, 12.0f, 0.31},           {CompressionAmount, 0.0f, 100.0f, 0.23},
    {WowFlutterAmount, 0.0f, 100.0f, 0.41},     {LoFiAmount, 0.0f, 100.0f, 0.37},
    {OutputGain, -24.0f, 12.0f, 0.29},          {MasterMix, 0.0f, 100.0f, 0.19},
    {CompAttackTimeConstant, 0.1f, 8.0f, 0.53}, {CompReleaseTimeConstant, 0.1f, 8.0f, 0.47},
    {WowFlutterMix, 0.0f, 100.0f, 0.17},        {WowFlutterPhase, 0.0f, 360.0f, 0.13},
    {LoFiNoiseGain, -96.0f, 12.0f, 0.43},       {LoFiCrunch, 0.0f, 100.0f, 0.59},
    {DigitalRefLevel, -36.0f, 0.0f, 0.27},      {SidechainExternal, 0.0f, 100.0f, 0.61},
    {SidechainTilt, -100.0f, 100.0f, 0.67}};

void chain (benchmark::State& state)
{
    const double rate = static_cast<double> (state.range (0));
    const auto block = static_cast<uint32_t> (state.range (1));
    const bool moving = state.range (2) != 0;

    HVNZC1DSP dsp (block, rate, 2, 2, 0, 0);
    HVNAudioBuffer<float> in (2, block), out (2, block), side (0, block);
    for (uint32_t c = 0; c < 2; ++c)
        for (uint32_t i = 0; i < block; ++i)
            in.channel (c)[i] = 0.25f * std::sin (0.01f * static_cast<float> (i + 3 * c));

    double t = 0.0;
    auto deliver = [&]
    {
        for (auto& p : dsp.parameters)
            p.changed = false;
        if (!moving)
            return;
        for (const auto& s : sweeps)
        {
            auto& p = dsp.parameters[s.index];
            p.value =
                s.low + (s.high - s.low) * static_cast<float> (0.5 + 0.5 * std::sin (2.0 * M_PI * s.hz * t));
            p.changed = true;
        }
        t += block / rate;
    };

    // Past the first block's one-off designs.
    dsp.process (in, out, side, block, false);
    for (auto _ : state)
    {
        deliver();
        dsp.process (in, out, side, block, false);
        benchmark::DoNotOptimize (out.channel (0));
    }
    state.counters["ns_per_frame"] =
        benchmark::Counter (static_cast<double> (state.iterations()) * block,
                            benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void chainArguments (benchmark::internal::Benchmark* b)
{
    b->ArgNames ({"rate", "block", "moving"});
    for (int moving : {0, 1})
        for (int rate : {44100, 48000, 96000})
            for (int block : {64, 256, 1024})
                b->Args ({rate, block, moving});
}
} // namespace

BENCHMARK (chain)->Name ("Chain/stereo")->Apply (chainArguments);
