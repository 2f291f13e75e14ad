#include "dsp/HVNAnalogResponse.h"
#include "dsp/generated/HVNLoFiTables.h"
#include "toolkit/vHVN.h"

#include "support/AllocationCounter.h"
#include "tests/dsp/LoFiTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{
// The stage's response in dB at f, between its bins.
double at (const HVNArray<double>& r, double f, double rate, uint32_t size)
{
    const double x = f * size / rate;
    const auto k = static_cast<uint32_t> (x);
    return r[k] + (x - k) * (r[k + 1] - r[k]);
}
} // namespace

TEST (HVNAnalogResponse, FilterLengthDoublesWithTheRateAbove48k)
{
    EXPECT_EQ (HVNAnalogResponse::filterSizeFor (44100.0), 512u);
    EXPECT_EQ (HVNAnalogResponse::filterSizeFor (48000.0), 512u);
    EXPECT_EQ (HVNAnalogResponse::filterSizeFor (88200.0), 1024u);
    EXPECT_EQ (HVNAnalogResponse::filterSizeFor (96000.0), 1024u);
    EXPECT_EQ (HVNAnalogResponse::filterSizeFor (192000.0), 2048u);
}

TEST (HVNAnalogResponse, AmountZeroLeavesOnlyTheFixedResponse)
{
    HVNAnalogResponse stage (64, 48000.0, 2);
    stage.update (true, 0.0, true, 100.0);
    EXPECT_NEAR (at (stage.getResponse(), 1000.0, 48000.0, 512), -0.03, 0.02);
    EXPECT_NEAR (stage.getResponse()[0], 1.32, 1e-12);
    for (uint32_t i = 0; i < 256; ++i)
        ASSERT_EQ (stage.getAmountResponse()[i], 0.0);
}

TEST (HVNAnalogResponse, FiftyAndFiftyOneTakeTheTwoBranches)
{
    const double rate = 48000.0;
    HVNAnalogResponse fifty (64, rate, 1), fiftyOne (64, rate, 1);
    fifty.update (true, 50.0, true, 100.0);
    fiftyOne.update (true, 51.0, true, 100.0);
    const auto& freqs = fifty.getFrequencies();
    const double lastShort = HVNLoFiTables::responseA[1712];
    for (uint32_t i = 0; i < 256; ++i)
    {
        if (freqs[i] >= 1712 * 11.71875)
        {
            ASSERT_EQ (fifty.getAmountResponse()[i], lastShort) << "the 50 % curve stops at entry 1712";
        }
        const double u = 0.02;
        double a = 0.0, b = 0.0;
        vHVN_vTableLookup (&freqs[i], 0.0, 96000.0, 0.0, 8192.0, HVNLoFiTables::responseA, 1806, &a, 1);
        vHVN_vTableLookup (&freqs[i], 0.0, 96000.0, 0.0, 8192.0, HVNLoFiTables::responseB, 1713, &b, 1);
        ASSERT_NEAR (fiftyOne.getAmountResponse()[i], u * b + (1 - u) * a, 1e-12) << i;
    }
    EXPECT_LT (fiftyOne.getAmountResponse()[230], lastShort - 5.0) << "above 50 % the whole curve is read";
}

TEST (HVNAnalogResponse, MixZeroIsFlatAndPassesTheSignal)
{
    const uint32_t n = 256;
    HVNAnalogResponse stage (n, 48000.0, 2);
    stage.update (true, 100.0, true, 0.0);
    for (uint32_t i = 0; i < 256; ++i)
        ASSERT_EQ (stage.getResponse()[i], 0.0);
    stage.reset();
    HVNAudioBuffer<double> in (2, n), b (2, n);
    lofi_test::fillNoise (in, n, 0.9, 5);
    b.copyFrom (in, n);
    AllocationCounter count;
    stage.process (b, n);
    stage.update (false, 100.0, false, 0.0);
    EXPECT_EQ (count.allocations(), 0u);
    for (uint32_t c = 0; c < 2; ++c)
        for (uint32_t i = 0; i < n; ++i)
            ASSERT_EQ (b.channel (c)[i], double (float (in.channel (c)[i])));
}
