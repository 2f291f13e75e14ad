#include "dsp/ChainTestSupport.h"
#include "dsp/HVNParameterIndex.h"
#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <random>
#include <tuple>

using namespace HVNParameterIndex;

TEST (HVNZC1DSP, BlockSizesDoNotChangeTheOutput)
{
    const double rate = 48000.0;
    auto input = [] (uint32_t c, long t)
    {
        const double env = 0.5 + 0.45 * std::sin (t * 0.0007);
        return static_cast<float> (env * std::sin (t * (0.031 + 0.01 * c)) + 0.1 * std::sin (t * 0.0021));
    };
    // A sidechain that is connected re-delivers its targets every block.
    auto side = [] (uint32_t, long t) { return static_cast<float> (0.3 * std::sin (t * 0.002)); };
    const long length = 24000;
    // The hum joins block edges one sample late and the noise generators step
    // per block, by design: the noise sits at its floor here.
    ChainRunner first (512, rate, 2, 2, 2);
    first.set (LoFiNoiseGain, -96.0f);
    auto reference = first.run (length, input, {}, side);

    std::mt19937 random (3);
    for (uint32_t size : {1u, 17u, 0u})
    {
        ChainRunner runner (512, rate, 2, 2, 2);
        runner.set (LoFiNoiseGain, -96.0f);
        auto next = [&]() -> uint32_t { return size != 0 ? size : 1 + random() % 512; };
        auto out = runner.run (length, input, next, side);
        for (uint32_t c = 0; c < 2; ++c)
            for (long i = 0; i < length; ++i)
                ASSERT_NEAR (out[c][i], reference[c][i], 1e-6f)
                    << "block " << size << " ch " << c << " @" << i;
    }
}

TEST (HVNZC1DSP, LatencyIsWhereAnImpulseComesOut)
{
    for (auto [rate, factor, expected] :
         {std::tuple{44100.0, 0u, 16u}, {48000.0, 0u, 17u}, {96000.0, 0u, 30u}, {176400.0, 4u, 52u}})
    {
        ChainRunner runner (256, rate, 2, 2, 0, factor);
        ASSERT_EQ (runner.dsp.getLatencySamples(), expected);
        ASSERT_EQ (runner.dsp.getLatencySamples(), HVNZC1DSP::latencyFor (rate, factor));
        // At MasterMix 0 every stage is transparent; only the delay remains.
        runner.dsp.reset();
        runner.set (MasterMix, 0.0f);
        const long at = 3000;
        const auto out = runner.run (4000, [at] (uint32_t, long t) { return t == at ? 1.0f : 0.0f; });
        long peak = 0;
        for (long t = 0; t < 4000; ++t)
            if (std::abs (out[1][t]) > std::abs (out[1][peak]))
                peak = t;
        EXPECT_EQ (peak - at, static_cast<long> (expected)) << rate;
        EXPECT_NEAR (out[1][peak], 1.0f, 1e-6f) << rate;
    }
}

TEST (HVNZC1DSP, ReferenceLevelIsUndoneAndGainsApply)
{
    const double rate = 44100.0;
    const auto in = ChainRunner::sine (300.0, 0.25, rate);
    for (float ref : {-18.0f, -36.0f, 0.0f})
    {
        ChainRunner runner (128, rate);
        runner.dsp.reset();
        runner.set ({{MasterMix, 0.0f}, {DigitalRefLevel, ref}, {InputGain, 6.0f}, {OutputGain, -12.0f}});
        const auto out = runner.run (8192, in);
        const double gain = std::pow (10.0, -6.0 / 20.0);
        for (long t = 16; t < 8192; ++t)
            ASSERT_NEAR (out[0][t], in (0, t - 16) * gain, 1e-6) << ref << "@" << t;
    }
}

TEST (HVNZC1DSP, WritesItsFourMeterTaps)
{
    using BufferMeter = SharedMeterTypes::HVNAudioBufferMeter<double>;
    using Point = SharedMeterTypes::DataPoint<float>;
    ChainRunner runner (64, 48000.0, 2, 2, 2);
    auto& meters = *runner.dsp.meterMessaging;
    int counts[4] = {};
    double lastInput = 0.0, lastDetector = 0.0;
    float lastPoint = 1.0f;
    meters.addStore (0, BufferMeter (2, 64),
                     [&] (const MeterData& d)
                     {
                         ++counts[0];
                         lastInput = static_cast<const BufferMeter&> (d).buffer->channel (0)[5];
                     });
    meters.addStore (1, BufferMeter (2, 64), [&] (const MeterData&) { ++counts[1]; });
    meters.addStore (2, Point(),
                     [&] (const MeterData& d)
                     {
                         ++counts[2];
                         lastPoint = static_cast<const Point&> (d).value;
                     });
    meters.addStore (3, BufferMeter (2, 64),
                     [&] (const MeterData& d)
                     {
                         ++counts[3];
                         lastDetector = static_cast<const BufferMeter&> (d).buffer->channel (1)[5];
                     });
    runner.dsp.reset();
    runner.set ({{DigitalRefLevel, -30.0f}, {SidechainExternal, 100.0f}});
    runner.run (
        640, [] (uint32_t, long) { return 0.5f; }, {}, [] (uint32_t, long) { return 0.25f; });
    meters.poll();
    for (int id = 0; id < 4; ++id)
        EXPECT_EQ (counts[id], 10) << id;
    // Taps at the outside level: the reference gain is taken out of the detector.
    EXPECT_NEAR (lastInput, 0.5, 1e-9);
    EXPECT_NEAR (lastDetector, 0.25, 1e-9);
    EXPECT_LT (lastPoint, 0.0f);
}

TEST (HVNZC1DSP, NeverAllocatesWithEveryParameterMovingEveryBlock)
{
    const uint32_t block = 256;
    for (uint32_t factor : {0u, 4u})
    {
        HVNZC1DSP dsp (block, factor == 0 ? 48000.0 : 192000.0, 2, 2, 2, factor);
        HVNAudioBuffer<float> in (2, block), out (2, block), side (2, block);
        for (uint32_t c = 0; c < 2; ++c)
            for (uint32_t i = 0; i < block; ++i)
            {
                in.channel (c)[i] = 0.3f * std::sin (0.05f * i);
                side.channel (c)[i] = 0.2f * std::sin (0.01f * i);
            }
        std::mt19937 random (5);
        std::uniform_real_distribution<float> unit (0.0f, 1.0f);
        const float low[] = {0, -24, 0, 0, 0, -24, 0, 0.1f, 0.1f, 0, 0, 0, 0, -96, 0, 0, 0, -36, 0, 0, -100};
        const float high[] = {1, 12,  100, 100, 100, 12, 100, 8, 8,   1,  100,
                              2, 360, 0,   2,   100, 1,  0,   1, 100, 100};
        const bool stepped[] = {1, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 1, 0, 0, 1, 0, 1, 0, 1, 0, 0};

        AllocationCounter counter;
        for (int b = 0; b < 200; ++b)
        {
            for (uint32_t p = 0; p < HVNParameterIndex::count; ++p)
            {
                float v = low[p] + unit (random) * (high[p] - low[p]);
                dsp.parameters[p].value = stepped[p] ? std::round (v) : v;
                dsp.parameters[p].changed = true;
            }
            dsp.process (in, out, side, block - static_cast<uint32_t> (b % 7), b % 3 != 0);
            if (b == 100)
                dsp.reset();
        }
        EXPECT_EQ (counter.allocations(), 0u);
        for (uint32_t i = 0; i < block - 7; ++i)
            ASSERT_TRUE (std::isfinite (out.channel (0)[i]));
    }
}
