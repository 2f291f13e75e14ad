#include "dsp/HVNZC1DSP.h"

#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

TEST (HVNZC1DSP, LatencyIsTheLookAheadAtItsOwnRate)
{
    EXPECT_EQ (HVNZC1DSP (64, 44100.0, 2, 2, 0, 0).getLatencySamples(), 16u);
    EXPECT_EQ (HVNZC1DSP (64, 48000.0, 2, 2, 0, 0).getLatencySamples(), 17u);
    EXPECT_EQ (HVNZC1DSP (256, 176400.0, 2, 2, 0, 4).getLatencySamples(), 52u);
}

TEST (HVNZC1DSP, DelaysMonoIntoEveryOutputAndResetClears)
{
    const uint32_t block = 10;
    HVNZC1DSP dsp (block, 44100.0, 1, 2, 0, 0);
    HVNAudioBuffer<float> in (1, block), out (2, block), sidechain (0);

    long t = 0;
    auto run = [&]
    {
        for (uint32_t i = 0; i < block; ++i)
            in.channel (0)[i] = static_cast<float> (t + i + 1);
        dsp.process (in, out, sidechain, block, false);
        t += block;
    };

    AllocationCounter counter;
    for (int b = 0; b < 5; ++b)
    {
        run();
        for (uint32_t i = 0; i < block; ++i)
        {
            const long source = t - block + i - 16;
            const float expected = source < 0 ? 0.0f : static_cast<float> (source + 1);
            ASSERT_EQ (out.channel (0)[i], expected);
            ASSERT_EQ (out.channel (1)[i], expected);
        }
    }
    EXPECT_EQ (counter.allocations(), 0u);

    dsp.reset();
    run();
    for (uint32_t i = 0; i < block; ++i)
        EXPECT_EQ (out.channel (1)[i], 0.0f);
}
