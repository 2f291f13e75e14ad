// The chain without its lo-fi stages, step for step as HVNZC1DSP runs it: input
// and reference gains, compressor, wow and flutter, output gain. This is the part
// with its own speed budget, so it is timed directly rather than by subtraction.
// The wow stage is also timed alone.
#include "bench/ChainBenchSupport.h"
#include "dsp/HVNParameterIndex.h"
#include "dsp/HVNZC1DSP.h"
#include "toolkit/HVNVec.h"

#include <benchmark/benchmark.h>

namespace
{
using namespace ChainBenchSupport;
using namespace HVNParameterIndex;

void partOne (benchmark::State& state)
{
    const double rate = static_cast<double> (state.range (0));
    const auto block = static_cast<uint32_t> (state.range (1));
    HVNZC1DSP dsp (block, rate, 2, 2, 0, 0);
    setDefaults (dsp);
    HVNAudioBuffer<float> in (2, block), out (2, block);
    HVNAudioBuffer<double> main (2, block), side (2, block);
    HVNSidechainState sidechainState;
    fill (in);
    auto& compressor = dsp.getCompressor();
    auto& wowFlutter = dsp.getWowFlutter();

    for (auto _ : state)
    {
        if (dsp.parameterChanged (MasterMix))
            dsp.mixEase.setTarget (dsp.parameterValue (MasterMix) * 0.01);
        if (dsp.parameterChanged (InputGain))
            dsp.inputGainEase.setTarget (dsp.parameterValue (InputGain));
        if (dsp.parameterChanged (OutputGain))
            dsp.outputGainEase.setTarget (dsp.parameterValue (OutputGain));
        if (dsp.parameterChanged (DigitalRefLevel))
            dsp.refGainEase.setTarget (-18.0 - dsp.parameterValue (DigitalRefLevel));
        dsp.mixEase.process (block);
        main.convertFrom (in, block);
        sidechainState.update (false);
        dsp.inputGainEase.process (block);
        dsp.inputGainEase.multiply (main, block);
        dsp.refGainEase.process (block);
        dsp.refGainEase.multiply (main, block);

        compressor.process (main, side, sidechainState, block);
        wowFlutter.process (main, block);

        dsp.outputGainEase.process (block);
        dsp.outputGainEase.multiply (main, block);
        dsp.refGainEase.divide (main, block);
        for (uint32_t c = 0; c < 2; ++c)
            HVNVec::convert (main.channel (c), out.channel (c), block);

        for (auto& p : dsp.parameters)
            p.changed = false;
        benchmark::DoNotOptimize (out.channel (0));
    }
    perFrame (state, block);
}

void wowFlutterAlone (benchmark::State& state)
{
    const auto block = static_cast<uint32_t> (state.range (0));
    HVNZC1DSP dsp (block, 48000.0, 2, 2, 0, 0);
    setDefaults (dsp);
    HVNAudioBuffer<double> source (2, block), main (2, block);
    fill (source);
    auto& stage = dsp.getWowFlutter();

    for (auto _ : state)
    {
        main.copyFrom (source, block);
        stage.process (main, block);
        for (auto& p : dsp.parameters)
            p.changed = false;
        benchmark::DoNotOptimize (main.channel (0));
    }
    perFrame (state, block);
}
} // namespace

BENCHMARK (partOne)
    ->Name ("PartOne/defaults")
    ->ArgNames ({"rate", "block"})
    ->ArgsProduct ({{44100, 48000, 96000}, {64, 256, 1024}});
BENCHMARK (wowFlutterAlone)->Name ("WowFlutter/48k_stereo")->ArgNames ({"block"})->Arg (256);
