#include "dsp/HVNCrunch.h"

#include "support/AllocationCounter.h"
#include "tests/dsp/LoFiTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <vector>

namespace
{
using lofi_test::settled;
using Section = HVNCrunch::Section;

double gainAt (const Section& s, double f, double rate)
{
    const auto z = std::polar (1.0, -2.0 * M_PI * f / rate);
    return std::abs ((s.b0 + s.b1 * z + s.b2 * z * z) / (1.0 + s.a1 * z + s.a2 * z * z));
}
} // namespace

TEST (HVNCrunch, CurveIsContinuousAndOnlyTouchesItsBands)
{
    const double kneeLow = 0.00411712459, kneeHigh = 0.00691184530;
    for (double r : {0.0165, 0.2, 0.5165})
    {
        for (double edge : {kneeLow, kneeHigh})
            EXPECT_NEAR (HVNCrunch::curve (-edge * (1 + 1e-9), true, r),
                         HVNCrunch::curve (-edge * (1 - 1e-9), true, r), 1e-10)
                << edge;
        for (double edge : {0.00670680953020802, 0.00859848465084853, -0.00836467013735038})
            for (bool negative : {false, true})
                EXPECT_NEAR (HVNCrunch::curve (edge * (1 + 1e-9), negative, r),
                             HVNCrunch::curve (edge * (1 - 1e-9), negative, r), 1e-10);
        EXPECT_EQ (HVNCrunch::curve (0.003, true, r), 0.003);
        EXPECT_EQ (HVNCrunch::curve (-0.004, false, r), -0.004);
    }
    // The positive side thins with r down to about half its slope.
    const double slope =
        (HVNCrunch::curve (0.5, false, 0.5165) - HVNCrunch::curve (0.4, false, 0.5165)) / 0.1;
    EXPECT_NEAR (slope, 0.47, 0.01);
    EXPECT_DOUBLE_EQ (HVNCrunch::target (100.0), 0.5165);
    EXPECT_DOUBLE_EQ (HVNCrunch::target (0.0), 0.0165);
}

TEST (HVNCrunch, PostFilterUndoesThePreFilterAndTheBlockerStopsDC)
{
    for (double rate : {44100.0, 96000.0})
    {
        HVNCrunch crunch (64, rate, 1);
        for (double f : {20.0, 1000.0, 10000.0, 0.45 * rate})
            EXPECT_NEAR (gainAt (crunch.getPre(), f, rate) * gainAt (crunch.getPost(), f, rate), 1.0, 1e-12);
        EXPECT_GT (gainAt (crunch.getPre(), 10000.0, rate), gainAt (crunch.getPre(), 100.0, rate));
        EXPECT_NEAR (gainAt (crunch.getDC(), 0.0, rate), 0.0, 1e-12);
        EXPECT_NEAR (20 * std::log10 (gainAt (crunch.getDC(), 16.0, rate)), -3.01, 0.02);
        EXPECT_NEAR (gainAt (crunch.getDC(), 1000.0, rate), 1.0, 1e-3);
    }
}

TEST (HVNCrunch, MixZeroPassesUntouchedAndFullMixDistortsAsymmetrically)
{
    const uint32_t n = 4800;
    HVNCrunch crunch (n, 48000.0, 2);
    auto r = settled (0.5165, n);
    HVNAudioBuffer<double> in (2, n), b (2, n);
    for (uint32_t i = 0; i < n; ++i)
        in.channel (0)[i] = in.channel (1)[i] = 0.3 * std::sin (2.0 * M_PI * 100.0 * i / 48000.0);

    b.copyFrom (in, n);
    auto dry = settled (0.0, n);
    AllocationCounter count;
    crunch.process (b, n, *r, *dry);
    EXPECT_EQ (count.allocations(), 0u);
    for (uint32_t i = 0; i < n; ++i)
        ASSERT_EQ (b.channel (0)[i], in.channel (0)[i]);

    auto wet = settled (1.0, n);
    crunch.reset();
    b.copyFrom (in, n);
    crunch.process (b, n, *r, *wet);
    // An even harmonic shows the asymmetry; measured on the second half, past the blocker's settling.
    std::complex<double> second = 0.0;
    for (uint32_t i = n / 2; i < n; ++i)
        second += b.channel (1)[i] * std::polar (1.0, -2.0 * M_PI * 200.0 * i / 48000.0);
    EXPECT_GT (2.0 * std::abs (second) / (n / 2), 1e-3);
}
