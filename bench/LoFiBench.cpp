// Each lo-fi stage on its own, stereo at 48 kHz, per frame, with settled
// controls at the factory defaults (lo-fi amount 50 %, crunch 0, mix 100 %).
#include "dsp/HVNAnalogResponse.h"
#include "dsp/HVNCrunch.h"
#include "dsp/HVNDigitalLoFi.h"
#include "dsp/HVNLoFiNoise.h"
#include "dsp/HVNShaper.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>

namespace
{
constexpr double rate = 48000.0;

struct Setting
{
    explicit Setting (uint32_t block, double value)
        : ease (block, &rate)
    {
        ease.setInstant (value);
        ease.process (block);
    }
    HVNEasingFloat<double> ease;
};

void fill (HVNAudioBuffer<double>& b, uint32_t n)
{
    for (uint32_t c = 0; c < b.channels(); ++c)
        for (uint32_t i = 0; i < n; ++i)
            b.channel (c)[i] = 0.3 * std::sin (0.01 * (i + 7 * c));
}

template<typename Body>
void runStage (benchmark::State& state, Body body)
{
    const auto block = static_cast<uint32_t> (state.range (0));
    HVNAudioBuffer<double> b (2, block);
    for (auto _ : state)
    {
        state.PauseTiming();
        fill (b, block);
        state.ResumeTiming();
        body (b, block);
        benchmark::DoNotOptimize (b.channel (0));
    }
    state.counters["ns_per_frame"] = benchmark::Counter (
        double (state.iterations()) * block, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void noise (benchmark::State& state)
{
    const auto block = static_cast<uint32_t> (state.range (0));
    HVNLoFiNoise stage (block, rate, 2);
    Setting gain (block, HVNLoFiNoise::targetGain (50.0, -96.0));
    runStage (state, [&] (auto& b, uint32_t n) { stage.process (b, n, gain.ease, nullptr); });
}

void crunch (benchmark::State& state)
{
    const auto block = static_cast<uint32_t> (state.range (0));
    HVNCrunch stage (block, rate, 2);
    Setting r (block, HVNCrunch::target (0.0)), mix (block, 1.0);
    runStage (state, [&] (auto& b, uint32_t n) { stage.process (b, n, r.ease, mix.ease); });
}

void shaper (benchmark::State& state)
{
    const auto block = static_cast<uint32_t> (state.range (0));
    HVNArray<double> scratch (block);
    Setting mix (block, 1.0);
    runStage (state, [&] (auto& b, uint32_t n) { HVNShaper::process (b, n, mix.ease, scratch.data()); });
}

void digital (benchmark::State& state)
{
    const auto block = static_cast<uint32_t> (state.range (0));
    HVNDigitalLoFi stage (block, rate, 2);
    // LoFiType x 0.5: 0 is "Analog", 1 is "1980's Digital".
    Setting amount (block, 0.5), type (block, 0.5 * static_cast<double> (state.range (1)));
    runStage (state, [&] (auto& b, uint32_t n) { stage.process (b, n, amount.ease, type.ease); });
}

void analog (benchmark::State& state)
{
    const auto block = static_cast<uint32_t> (state.range (0));
    HVNAnalogResponse stage (block, rate, 2);
    stage.update (true, 50.0, true, 100.0);
    stage.reset();
    runStage (state, [&] (auto& b, uint32_t n) { stage.process (b, n); });
}
} // namespace

BENCHMARK (noise)->Name ("LoFi/noise")->Arg (64)->Arg (256)->Arg (1024);
BENCHMARK (crunch)->Name ("LoFi/crunch")->Arg (64)->Arg (256)->Arg (1024);
BENCHMARK (shaper)->Name ("LoFi/shaper")->Arg (64)->Arg (256)->Arg (1024);
BENCHMARK (digital)
    ->Name ("LoFi/digital")
    ->ArgNames ({"block", "type"})
    ->ArgsProduct ({{64, 256, 1024}, {0, 2}});
BENCHMARK (analog)->Name ("LoFi/analog")->Arg (64)->Arg (256)->Arg (1024);
