#include "dsp/HVNDigitalLoFi.h"

#include "support/AllocationCounter.h"
#include "tests/dsp/LoFiTestSupport.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{
using lofi_test::settled;

// The signal averaged over hold samples (in float) and held from the block's start.
std::vector<double> degraded (const double* x, uint32_t n, uint32_t hold)
{
    std::vector<double> y (n);
    for (uint32_t i = 0; i < n; ++i)
    {
        float sum = 0.0f;
        for (uint32_t k = 0; k < hold && k <= i; ++k)
            sum += float (x[i - k]) * (1.0f / float (hold));
        y[i] = sum;
    }
    for (uint32_t i = 0; i < n / hold * hold; ++i)
        y[i] = y[i / hold * hold];
    return y;
}
} // namespace

TEST (HVNDigitalLoFi, HoldLengthsFollowTheRate)
{
    const std::tuple<double, uint32_t, uint32_t> cases[] = {
        {44100.0, 2, 4}, {48000.0, 2, 4}, {96000.0, 4, 8}, {22050.0, 1, 2}, {8000.0, 1, 1}};
    for (const auto& [rate, a, b] : cases)
    {
        HVNDigitalLoFi d (64, rate, 1);
        EXPECT_EQ (d.getHoldA(), a) << rate;
        EXPECT_EQ (d.getHoldB(), b) << rate;
    }
    std::vector<double> x{1, 2, 3, 4, 5, 6, 7};
    HVNDigitalLoFi::hold (x.data(), 3, 7);
    EXPECT_EQ (x, (std::vector<double>{1, 1, 1, 4, 4, 4, 7}));
    HVNDigitalLoFi::hold (x.data(), 8, 7);
    EXPECT_EQ (x, (std::vector<double>{1, 1, 1, 4, 4, 4, 7})) << "a block shorter than the hold stays";
}

TEST (HVNDigitalLoFi, TypeAloneWeighsTheDegradedSignalAndAmountPicksItsRate)
{
    const uint32_t n = 250; // not a multiple of either hold
    HVNAudioBuffer<double> in (2, n), b (2, n);
    lofi_test::fillNoise (in, n, 0.5, 3);
    const auto at22 = degraded (in.channel (1), n, 2);
    const auto at11 = degraded (in.channel (1), n, 4);

    auto run = [&] (double amount, double type)
    {
        HVNDigitalLoFi d (n, 48000.0, 2);
        auto a = settled (amount, n);
        auto t = settled (type, n);
        b.copyFrom (in, n);
        d.process (b, n, *a, *t);
        return std::vector<double> (b.channel (1), b.channel (1) + n);
    };

    EXPECT_EQ (run (1.0, 0.0), std::vector<double> (in.channel (1), in.channel (1) + n)) << "Analog";
    const auto eighties = run (0.0, 1.0);
    const auto eightiesHalf = run (0.5, 1.0);
    const auto eightiesFull = run (1.0, 1.0);
    const auto nineties = run (1.0, 0.5);
    for (uint32_t i = 0; i < n; ++i)
    {
        ASSERT_NEAR (eighties[i], at22[i], 1e-7) << i;
        ASSERT_NEAR (eightiesHalf[i], at22[i], 1e-7) << i;
        ASSERT_NEAR (eightiesFull[i], at11[i], 1e-7) << i;
        ASSERT_NEAR (nineties[i], 0.5 * (at11[i] + in.channel (1)[i]), 1e-7) << i;
    }
    const auto between = run (0.75, 1.0);
    EXPECT_NEAR (between[101], 0.5 * (at22[101] + at11[101]), 1e-7);
}

TEST (HVNDigitalLoFi, AveragingCarriesAcrossBlocksAndResetForgets)
{
    HVNDigitalLoFi d (8, 48000.0, 1);
    auto a = settled (1.0, 8); // 11 kHz: four-sample averages
    auto t = settled (1.0, 8);
    auto analog = settled (0.0, 8);
    HVNAudioBuffer<double> b (1, 8);
    for (uint32_t i = 0; i < 8; ++i)
        b.channel (0)[i] = 1.0;
    // With "Analog" the signal passes untouched, but the averages still hear it.
    d.process (b, 8, *a, *analog);
    EXPECT_EQ (b.channel (0)[7], 1.0);
    for (uint32_t i = 0; i < 8; ++i)
        b.channel (0)[i] = 0.0;
    AllocationCounter count;
    d.process (b, 8, *a, *t);
    EXPECT_EQ (count.allocations(), 0u);
    EXPECT_NEAR (b.channel (0)[0], 0.75, 1e-7) << "the last block's samples still count";
    d.reset();
    for (uint32_t i = 0; i < 8; ++i)
        b.channel (0)[i] = 1.0;
    d.process (b, 8, *a, *t);
    EXPECT_NEAR (b.channel (0)[0], 0.25, 1e-7);
}
