// Cost of the signal chain per stereo frame: at the factory defaults, with every
// continuous parameter moving each block, and the compressor's per-sample loop
// on its own, linked and unlinked.
#include "bench/ChainBenchSupport.h"
#include "dsp/HVNParameterIndex.h"
#include "dsp/HVNZC1DSP.h"

#include <benchmark/benchmark.h>

#include <cmath>

namespace
{
using namespace HVNParameterIndex;

using namespace ChainBenchSupport;

void chain (benchmark::State& state, bool moving)
{
    const double rate = static_cast<double> (state.range (0));
    const auto block = static_cast<uint32_t> (state.range (1));
    HVNZC1DSP dsp (block, rate, 2, 2, 0, 0);
    HVNAudioBuffer<float> in (2, block), out (2, block), side (0, block);
    fill (in);
    setDefaults (dsp);

    uint32_t step = 0;
    for (auto _ : state)
    {
        if (moving)
        {
            // Each continuous control on a slow sweep of its own.
            const float x = 0.5f + 0.5f * std::sin (0.05f * static_cast<float> (++step));
            const uint32_t continuous[] = {InputGain,
                                           CompressionAmount,
                                           WowFlutterAmount,
                                           OutputGain,
                                           MasterMix,
                                           CompAttackTimeConstant,
                                           CompReleaseTimeConstant,
                                           WowFlutterMix,
                                           WowFlutterPhase,
                                           DigitalRefLevel,
                                           SidechainExternal,
                                           SidechainTilt,
                                           LoFiAmount,
                                           LoFiNoiseGain,
                                           LoFiCrunch};
            const float low[] = {-12, 0, 0, -12, 50, 0.5f, 0.5f, 50, 0, -30, 0, -50, 0, -60, 0};
            const float high[] = {6, 100, 100, 6, 100, 4, 4, 100, 180, -6, 100, 50, 100, 0, 100};
            for (size_t k = 0; k < std::size (continuous); ++k)
            {
                dsp.parameters[continuous[k]].value = low[k] + x * (high[k] - low[k]);
                dsp.parameters[continuous[k]].changed = true;
            }
        }
        dsp.process (in, out, side, block, false);
        for (auto& p : dsp.parameters)
            p.changed = false;
        benchmark::DoNotOptimize (out.channel (0));
    }
    perFrame (state, block);
}

void chainDefaults (benchmark::State& state)
{
    chain (state, false);
}

void chainMoving (benchmark::State& state)
{
    chain (state, true);
}

// The compressor alone, as the chain runs it: a level well above the threshold,
// at rest, linked (one loop for both channels) or not, with its gain loop fused
// where the processor allows or plain.
void compressor (benchmark::State& state)
{
    const auto block = static_cast<uint32_t> (state.range (0));
    const bool linked = state.range (1) != 0;
    const bool fused = state.range (2) != 0;
    HVNZC1DSP owner (block, 48000.0, 2, 2, 0, 0);
    setDefaults (owner);
    owner.parameters[CompStereoLink].value = linked ? 1.0f : 0.0f;
    owner.reset();
    owner.mixEase.setInstant (1.0);
    owner.refGainEase.process (block);
    HVNSidechainState sidechainState;
    sidechainState.update (false);
    HVNAudioBuffer<double> source (2, block), main (2, block), side (2, block);
    for (uint32_t c = 0; c < 2; ++c)
        for (uint32_t i = 0; i < block; ++i)
            source.channel (c)[i] = 0.25 * std::sin (0.01 * (i + 7 * c));
    auto& stage = owner.getCompressor();
    stage.useFusedChain (fused);

    for (auto _ : state)
    {
        main.copyFrom (source, block);
        stage.process (main, side, sidechainState, block);
        for (auto& p : owner.parameters)
            p.changed = false;
        benchmark::DoNotOptimize (main.channel (0));
    }
    perFrame (state, block);
}
} // namespace

BENCHMARK (chainDefaults)
    ->Name ("Chain/defaults")
    ->ArgNames ({"rate", "block"})
    ->ArgsProduct ({{44100, 48000, 96000}, {64, 256, 1024}});
BENCHMARK (chainMoving)
    ->Name ("Chain/moving")
    ->ArgNames ({"rate", "block"})
    ->ArgsProduct ({{44100, 48000, 96000}, {64, 256, 1024}});
BENCHMARK (compressor)
    ->Name ("Compressor/48k_stereo")
    ->ArgNames ({"block", "linked", "fused"})
    ->ArgsProduct ({{256}, {0, 1}, {1, 0}});
