#include "toolkit/HVNSRC.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <stdexcept>
#include <string>

namespace
{
std::string errorOf (const std::function<void()>& f)
{
    try
    {
        f();
    }
    catch (const std::runtime_error& e)
    {
        return e.what();
    }
    return {};
}
} // namespace

TEST (HVNSRC, UpAndDownAgainIsADelayOfTheReportedLatency)
{
    const uint32_t block = 32, factor = 4;
    HVNSRC up (44100.0, block, 44100.0 * factor, 2), down (44100.0 * factor, block * factor, 44100.0, 2);
    const double latency = up.getLatency() / factor + down.getLatency();
    ASSERT_EQ (latency, 1.0);

    HVNAudioBuffer<float> in (2, block), high (2, block * factor), out (2, block);
    long t = 0;
    for (int b = 0; b < 10; ++b)
    {
        for (uint32_t i = 0; i < block; ++i)
        {
            in.channel (0)[i] = std::sin (0.05f * static_cast<float> (t + i));
            in.channel (1)[i] = static_cast<float> (t + i);
        }
        ASSERT_EQ (up.process (in, block, high), block * factor);
        ASSERT_EQ (down.process (high, block * factor, out), block);
        for (uint32_t i = 0; i < block; ++i)
        {
            const long source = t + i - 1;
            ASSERT_FLOAT_EQ (out.channel (1)[i], source < 0 ? 0.0f : static_cast<float> (source));
        }
        t += block;
    }
}

TEST (HVNSRC, DecimationKeepsItsPhaseAcrossOddBlocks)
{
    HVNSRC down (96000.0, 64, 48000.0, 1);
    HVNAudioBuffer<float> in (1, 64), out (1, 64);
    long t = 0, produced = 0;
    for (uint32_t length : {3u, 5u, 1u, 7u, 64u, 2u})
    {
        for (uint32_t i = 0; i < length; ++i)
            in.channel (0)[i] = static_cast<float> (t + i);
        const uint32_t k = down.process (in, length, out);
        for (uint32_t j = 0; j < k; ++j)
            ASSERT_EQ (out.channel (0)[j], static_cast<float> (2 * (produced + j)));
        produced += k;
        t += length;
    }
    EXPECT_EQ (produced, (t + 1) / 2);
}

TEST (HVNSRC, ReportsMisuseWithItsTexts)
{
    HVNSRC src;
    HVNAudioBuffer<float> a (1, 8), b (1, 64);
    uint32_t produced = 0;
    EXPECT_FALSE (src.isReady());
    EXPECT_EQ (src.getLatency(), 0.0);
    EXPECT_EQ (errorOf ([&] { src.processSrc (a, 8, b, produced, 64); }), "HVNSRC: mSetupSuccess != true");

    uint32_t length = 8;
    EXPECT_EQ (errorOf ([&] { src.setup (7999.9, length, 48000.0, 1); }),
               "HVNSRC: source Sr is out of bounds");
    EXPECT_EQ (errorOf ([&] { src.setup (48000.0, length, 1536001.0, 1); }),
               "HVNSRC: dest Sr is out of bounds");
    src.setup (8000.9, length, 16000.0, 1);
    EXPECT_TRUE (src.isReady());
    EXPECT_EQ (errorOf ([&] { src.setup (8000.0, length, 16000.0, 1); }), "HVNSRC: can't call setup twice");
    EXPECT_EQ (errorOf ([&] { src.processSrc (b, 9, b, produced, 64); }), "HVNSRC: sourceLength is too big");
    EXPECT_EQ (errorOf ([&] { src.processSrc (a, 8, b, produced, 15); }),
               "HVNSRC: processSrc(), destLength too big");
    src.processSrc (a, 8, b, produced, 64);
    EXPECT_EQ (produced, 16u);
}

TEST (HVNSRC, SameRateIsACopy)
{
    HVNSRC src (48000.0, 16, 48000.0, 1);
    EXPECT_EQ (src.getLatency(), 0.0);
    HVNAudioBuffer<float> a (1, 16), b (1, 16);
    a.channel (0)[5] = 3.0f;
    EXPECT_EQ (src.process (a, 16, b), 16u);
    EXPECT_EQ (b.channel (0)[5], 3.0f);
}
