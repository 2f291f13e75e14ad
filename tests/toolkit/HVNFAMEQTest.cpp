#include "toolkit/HVNFAMEQ.h"
#include "toolkit/HVNMagnitudeDesigner.h"

#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <vector>

namespace
{
constexpr double rate = 48000.0;

// Magnitude in dB of an impulse response at frequency f.
double responseDb (const float* h, uint32_t n, double f)
{
    std::complex<double> sum = 0.0;
    for (uint32_t i = 0; i < n; ++i)
        sum += double (h[i]) * std::polar (1.0, -2.0 * M_PI * f / rate * i);
    return 20.0 * std::log10 (std::abs (sum));
}

// A smooth treble loss with a small bass lift, like the curves the product uses.
double wantedDb (double f)
{
    return 1.5 * std::exp (-f / 1000.0) - 6.0 * std::pow (f / 24000.0, 2.0);
}

std::vector<double> binsOf (double (*curve) (double), uint32_t bins, uint32_t length)
{
    std::vector<double> m (bins);
    for (uint32_t i = 0; i < bins; ++i)
        m[i] = curve (i * rate / length);
    return m;
}

// The filter's impulse response as it runs, with the new filter made live by reset.
std::vector<float> measuredImpulse (HVNFAMEQ<float, double>& eq, uint32_t length)
{
    eq.reset();
    HVNAudioBuffer<float> block (1, 64);
    std::vector<float> h;
    for (uint32_t at = 0; at < length; at += 64)
    {
        block.clear();
        if (at == 0)
            block.channel (0)[0] = 1.0f;
        eq.processFloat (block, 64);
        h.insert (h.end(), block.channel (0), block.channel (0) + 64);
    }
    return h;
}
} // namespace

TEST (HVNMagnitudeDesigner, MinimumPhaseFollowsTheResponseAndPutsItsEnergyFirst)
{
    for (bool linear : {false, true})
    {
        const uint32_t n = 1024;
        HVNMagnitudeDesigner designer (n, rate, linear);
        const auto m = binsOf (wantedDb, n / 2, n);
        std::vector<double> h (n);
        designer.design (m.data(), h.data(), true);
        const std::vector<float> hf (h.begin(), h.end());
        for (double f = 50.0; f < 0.45 * rate; f *= 1.3)
            EXPECT_NEAR (responseDb (hf.data(), n, f), wantedDb (f), 0.1) << f << (linear ? " linear" : "");

        double early = 0.0, total = 0.0;
        for (uint32_t i = 0; i < n; ++i)
        {
            total += h[i] * h[i];
            if ((linear ? (i >= n / 2 - 16 && i < n / 2 + 16) : i < 32))
                early += h[i] * h[i];
        }
        EXPECT_GT (early / total, 0.99) << (linear ? "linear phase peaks in the middle" : "minimum phase");
    }
}

TEST (HVNFAMEQ, DesignedFilterFollowsTheRequestedMagnitude)
{
    HVNFAMEQ<float, double> eq;
    eq.init (64, rate, 1, 512, false, 1.0);
    EXPECT_EQ (eq.getBinCount(), 256u);
    std::vector<double> freqs (256);
    eq.getFrequencies (freqs.data());
    EXPECT_DOUBLE_EQ (freqs[1], rate / 512);
    EXPECT_DOUBLE_EQ (freqs[255], 255 * rate / 512);

    const auto m = binsOf (wantedDb, 256, 512);
    eq.setMagnitudes (m.data());
    const auto h = measuredImpulse (eq, 512);
    for (double f = 50.0; f < 0.45 * rate; f *= 1.2)
        EXPECT_NEAR (responseDb (h.data(), 512, f), wantedDb (f), 0.1) << f;
    // The window leaves the peak alone and tapers the end.
    EXPECT_DOUBLE_EQ (eq.getWindow()[0], 1.0);
    EXPECT_LT (eq.getWindow()[511], 1e-12);
}

TEST (HVNFAMEQ, FlatResponseIsAnExactUnitImpulseWithoutAnyTransform)
{
    for (bool linear : {false, true})
    {
        HVNFAMEQ<float, double> eq;
        eq.init (64, rate, 1, 512, linear, 1.0);
        std::vector<double> bumpy (256, 3.0), flat (256, 0.0);
        eq.setMagnitudes (bumpy.data());
        const uint32_t designs = eq.getDesignCount();
        eq.setMagnitudes (flat.data());
        EXPECT_EQ (eq.getDesignCount(), designs);
        const auto& p = eq.getPendingImpulse();
        for (uint32_t i = 0; i < 512; ++i)
            ASSERT_EQ (p.samples[i], i == (linear ? 256u : 0u) ? 1.0f : 0.0f) << i;

        // Through the filter: the input comes back untouched (delayed by half the
        // length for linear phase).
        const auto h = measuredImpulse (eq, 512);
        for (uint32_t i = 0; i < 512; ++i)
            ASSERT_EQ (h[i], i == (linear ? 256u : 0u) ? 1.0f : 0.0f) << i;
    }
}

TEST (HVNFAMEQ, ExtremeGainsAreLimitedAndOnePointIsAConstant)
{
    HVNFAMEQ<float, double> a, b, c;
    for (auto* eq : {&a, &b, &c})
        eq->init (64, rate, 1, 512, false, 1.0);
    std::vector<double> m400 (256, -20.0), m300 (256, -20.0);
    m400[10] = 400.0;
    m300[10] = 300.0;
    a.setMagnitudes (m400.data());
    b.setMagnitudes (m300.data());
    for (uint32_t i = 0; i < 512; ++i)
        ASSERT_EQ (a.getPendingImpulse().samples[i], b.getPendingImpulse().samples[i]);

    const double f[] = {1000.0}, db[] = {-6.0};
    c.setResponse (f, db, 1);
    const auto h = measuredImpulse (c, 512);
    for (double fr : {20.0, 1000.0, 15000.0})
        EXPECT_NEAR (responseDb (h.data(), 512, fr), -6.0, 0.01) << fr;
}

TEST (HVNFAMEQ, ResponseOnAnyGridIsInterpolatedInLogFrequency)
{
    HVNFAMEQ<float, double> eq, ref;
    eq.init (64, rate, 1, 1024, false, 1.0);
    ref.init (64, rate, 1, 1024, false, 1.0);
    // -12 dB per decade from 100 Hz to 10 kHz is a straight line in log frequency.
    const double f[] = {100.0, 10000.0}, db[] = {0.0, -24.0};
    eq.setResponse (f, db, 2);
    std::vector<double> bins (512);
    for (uint32_t i = 0; i < 512; ++i)
    {
        const double x = std::max (1.0, i / 511.0 * rate * 0.5);
        bins[i] = x <= 100.0 ? 0.0 : x > 10000.0 ? -24.0 : -12.0 * std::log10 (x / 100.0);
    }
    ref.setMagnitudes (bins.data());
    for (uint32_t i = 0; i < 1024; ++i)
        ASSERT_NEAR (eq.getPendingImpulse().samples[i], ref.getPendingImpulse().samples[i], 1e-6) << i;
}

TEST (HVNFAMEQ, NewFilterFadesInAndStreamsOfChangesWaitForTheFade)
{
    const uint32_t block = 128;
    HVNFAMEQ<float, double> eq;
    eq.init (block, rate, 1, 512, false, 1.0);
    std::vector<double> loud (256, 6.0206), quiet (256, -6.0206), flat (256, 0.0);
    HVNAudioBuffer<double> buffer (1, block);
    auto run = [&] (uint32_t blocks)
    {
        double last = 0.0;
        for (uint32_t b = 0; b < blocks; ++b)
        {
            for (uint32_t i = 0; i < block; ++i)
                buffer.channel (0)[i] = 0.5;
            eq.process (buffer, block);
            last = buffer.channel (0)[block - 1];
        }
        return last;
    };
    eq.setMagnitudes (loud.data());
    EXPECT_NEAR (run (8), 1.0, 1e-3) << "the first filter is live at once";
    AllocationCounter count;
    eq.setMagnitudes (quiet.data());
    run (1);
    EXPECT_TRUE (eq.isFading());
    const uint32_t designs = eq.getDesignCount();
    eq.setMagnitudes (flat.data());
    eq.setMagnitudes (loud.data());
    EXPECT_EQ (eq.getDesignCount(), designs) << "no design while a fade runs";
    // 75 ms is 28 blocks of 128 at 48 kHz.
    const double mid = run (12);
    EXPECT_GT (mid, 0.25);
    EXPECT_LT (mid, 1.0);
    run (17);
    EXPECT_FALSE (eq.isFading());
    EXPECT_NEAR (buffer.channel (0)[block - 1], 0.25, 1e-3);
    // The latest response is designed next and fades in after.
    run (1);
    EXPECT_EQ (eq.getDesignCount(), designs + 1);
    EXPECT_NEAR (run (40), 1.0, 1e-3);
    EXPECT_EQ (count.allocations(), 0u);
}

TEST (HVNFAMEQ, ShortFiltersRunDirectly)
{
    HVNFAMEQ<float, double> eq;
    eq.init (64, rate, 1, 128, false, 1.0);
    EXPECT_TRUE (eq.isDirect());
    const auto m = binsOf (wantedDb, 64, 128);
    eq.setMagnitudes (m.data());
    const auto h = measuredImpulse (eq, 128);
    // Taps too small to matter at the end are not computed.
    const auto& p = eq.getPendingImpulse();
    EXPECT_LT (p.significantLength, 128u);
    for (uint32_t i = 0; i < 128; ++i)
        ASSERT_EQ (h[i], i < p.significantLength ? p.samples[i] : 0.0f) << i;
}

TEST (HVNFAMEQ, FadeGainsMeetAroundTheFiltersDelay)
{
    // Old filter: a unit impulse; new one: twice that. Each path is scaled by the
    // square root of the ramp before and after its filter, so that for pure delays
    // the output is exactly the ramp's blend, taken at the time the sample went in.
    for (bool linear : {false, true})
    {
        const uint32_t block = 100, length = 512, delay = linear ? length / 2 : 0;
        HVNFAMEQ<float, double> eq;
        eq.init (block, rate, 1, length, linear, 1.0);
        std::vector<double> flat (256, 0.0), doubled (256, 20.0 * std::log10 (2.0));
        eq.setMagnitudes (flat.data());

        std::vector<float> x (40000);
        uint32_t seed = 1;
        for (auto& v : x)
            v = float (int32_t (seed = seed * 1664525u + 1013904223u)) * 4.6566e-10f;
        std::vector<float> y (x.size());
        HVNAudioBuffer<float> b (1, block);
        const uint32_t changeAt = 20 * block;
        for (uint32_t at = 0; at < x.size(); at += block)
        {
            if (at == changeAt)
                eq.setMagnitudes (doubled.data());
            std::copy (x.begin() + at, x.begin() + at + block, b.channel (0));
            eq.processFloat (b, block);
            std::copy (b.channel (0), b.channel (0) + block, y.begin() + at);
        }
        EXPECT_FALSE (eq.isFading());
        // The window takes a hair off the centre tap of the linear-phase design.
        const double g = eq.getPendingImpulse().samples[delay];
        EXPECT_NEAR (g, 2.0, 1e-3);

        const double r48 = rate;
        HVNEasingFloat<float> ramp (x.size(), &r48);
        ramp.setRatePerSample (float (13.333333333333334 / rate));
        ramp.setInstant (0.0f);
        ramp.setTarget (1.0f);
        ramp.process (uint32_t (x.size() - changeAt));
        for (uint32_t t = changeAt + delay; t < x.size(); ++t)
        {
            const double r = ramp.getBuffer()[t - delay - changeAt];
            ASSERT_NEAR (y[t], x[t - delay] * (1.0 - r + g * r), 1e-5)
                << (linear ? "linear " : "minimum ") << t;
        }
    }
}
