#include "dsp/ChainTestSupport.h"
#include "dsp/HVNParameterIndex.h"
#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

using namespace HVNParameterIndex;

namespace
{
std::function<float (uint32_t, long)> music()
{
    return [] (uint32_t c, long t)
    {
        const double env = 0.4 + 0.35 * std::sin (t * 0.0003 + c);
        return static_cast<float> (env * std::sin (t * (0.021 + 0.013 * c)) + 0.2 * std::sin (t * 0.19));
    };
}
} // namespace

TEST (HVNZC1DSPLoFi, MasterMixZeroIsTheInputDelayedByTheLatency)
{
    // Noise, crunch, shaper, compressor, wow and the analog response all at their
    // start values, which colour the sound at any other mix.
    for (double rate : {44100.0, 48000.0, 96000.0})
    {
        ChainRunner runner (256, rate);
        // After a reset every control lands at once, so the null holds from the start.
        runner.dsp.reset();
        runner.set (
            {{MasterMix, 0.0f}, {LoFiCrunch, 60.0f}, {WowFlutterAmount, 80.0f}, {LoFiAmount, 100.0f}});
        const long length = static_cast<long> (rate / 2);
        const auto in = music();
        const auto out = runner.run (length, in);
        const long latency = runner.dsp.getLatencySamples();
        for (uint32_t c = 0; c < 2; ++c)
        {
            double error = 0.0, signal = 0.0;
            for (long t = latency; t < length; ++t)
            {
                const double x = in (c, t - latency);
                error += (out[c][t] - x) * (out[c][t] - x);
                signal += x * x;
            }
            EXPECT_LT (10.0 * std::log10 (error / signal), -120.0) << rate << " channel " << c;
        }
    }
}

TEST (HVNZC1DSPLoFi, LoFiChangesAreDesignedInTheBlockWithoutAllocating)
{
    const uint32_t block = 128;
    HVNZC1DSP dsp (block, 48000.0, 2, 2, 0, 0);
    HVNAudioBuffer<float> in (2, block), out (2, block), side (0, block);
    for (uint32_t c = 0; c < 2; ++c)
        for (uint32_t i = 0; i < block; ++i)
            in.channel (c)[i] = 0.3f * std::sin (0.05f * float (i + c));
    dsp.process (in, out, side, block, false);

    std::mt19937 random (5);
    std::uniform_real_distribution<float> unit (0.0f, 1.0f);
    AllocationCounter count;
    for (int b = 0; b < 200; ++b)
    {
        for (auto& p : dsp.parameters)
            p.changed = false;
        // A stream of automation on every lo-fi control, MasterMix included.
        const std::pair<uint32_t, float> moves[] = {{LoFiAmount, 100.0f * unit (random)},
                                                    {MasterMix, 100.0f * unit (random)},
                                                    {LoFiNoiseGain, -96.0f + 108.0f * unit (random)},
                                                    {LoFiCrunch, 100.0f * unit (random)},
                                                    {LoFiType, float (b / 50 % 3)}};
        for (const auto& [index, value] : moves)
        {
            dsp.parameters[index].value = value;
            dsp.parameters[index].changed = true;
        }
        dsp.process (in, out, side, b % 3 == 0 ? 37 : block, false);
        if (b == 100)
            dsp.reset();
    }
    EXPECT_EQ (count.allocations(), 0u);
    for (uint32_t c = 0; c < 2; ++c)
        for (uint32_t i = 0; i < block; ++i)
            ASSERT_TRUE (std::isfinite (out.channel (c)[i]));
}

TEST (HVNZC1DSPLoFi, MixScalesTheAnalogResponseInDecibels)
{
    ChainRunner runner (256, 48000.0);
    runner.set ({{LoFiAmount, 100.0f}, {MasterMix, 50.0f}});
    runner.run (256, music());
    const auto& stage = runner.dsp.getAnalogResponse();
    HVNAnalogResponse full (256, 48000.0, 1);
    full.update (true, 100.0, true, 100.0);
    for (uint32_t i = 0; i < 256; ++i)
        ASSERT_NEAR (stage.getResponse()[i], 0.5 * full.getResponse()[i], 1e-12) << i;
}
