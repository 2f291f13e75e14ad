#include "toolkit/vHVN_biquad.h"
#include "toolkit/HVNBiquadBank.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <vector>

using namespace vHVN_biquad;

namespace
{
constexpr double pi = 3.14159265358979323846;

// Magnitude in dB of a cascade of raw sections at frequency f.
double responseDb (const RawSections& s, uint32_t count, double f, double fs)
{
    const std::complex<double> z1 = std::polar (1.0, -2.0 * pi * f / fs), z2 = z1 * z1;
    std::complex<double> h = 1.0;
    for (uint32_t k = 0; k < count; ++k)
        h *= (s[k][0] + s[k][1] * z1 + s[k][2] * z2) / (s[k][3] + s[k][4] * z1 + s[k][5] * z2);
    return 20.0 * std::log10 (std::abs (h));
}

double butterworthDb (double f, double fc, double fs, int order, bool high)
{
    const double r = std::tan (pi * f / fs) / std::tan (pi * fc / fs);
    const double x = high ? 1.0 / r : r;
    return -10.0 * std::log10 (1.0 + std::pow (x, 2 * order));
}
} // namespace

TEST (vHVN_biquad, ButterworthDesignsFollowTheirAnalyticResponse)
{
    const double fs = 48000.0;
    RawSections s;
    for (int order : {1, 2, 3, 4})
        for (bool high : {false, true})
        {
            const uint32_t n = designFilterSections (s, fs, 1000.0, 0.0, 0.7, order,
                                                     high ? ButterworthHighpass : ButterworthLowpass);
            ASSERT_EQ (n, static_cast<uint32_t> ((order + 1) / 2));
            for (double f : {50.0, 500.0, 1000.0, 2000.0, 10000.0})
                EXPECT_NEAR (responseDb (s, n, f, fs), butterworthDb (f, 1000.0, fs, order, high), 0.01)
                    << order << (high ? " high " : " low ") << f;
        }

    // Linkwitz-Riley: -6 dB at the crossover; order 4 duplicates the order-2 Butterworth.
    uint32_t n = designFilterSections (s, fs, 1000.0, 0.0, 0.7, 2.0, LinkwitzRileyLowpass);
    EXPECT_NEAR (responseDb (s, n, 1000.0, fs), -6.02, 0.01);
    n = designFilterSections (s, fs, 1000.0, 0.0, 0.7, 4.0, LinkwitzRileyHighpass);
    ASSERT_EQ (n, 2u);
    EXPECT_EQ (s[0], s[1]);
    EXPECT_NEAR (responseDb (s, n, 1000.0, fs), -6.02, 0.01);
}

TEST (vHVN_biquad, ShelvesPeaksAndTheRestHitTheirGains)
{
    const double fs = 44100.0;
    RawSections s;
    designFilterSections (s, fs, 150.0, -24.0, 0.70710677, 0, LowShelf);
    EXPECT_NEAR (responseDb (s, 1, 5.0, fs), -24.0, 0.05);
    EXPECT_NEAR (responseDb (s, 1, 10000.0, fs), 0.0, 0.05);
    designFilterSections (s, fs, 5000.0, 9.0, 0.70710677, 0, HighShelf);
    EXPECT_NEAR (responseDb (s, 1, 20000.0, fs), 9.0, 0.1);
    EXPECT_NEAR (responseDb (s, 1, 20.0, fs), 0.0, 0.01);

    // No gain, no filter: the slope limit is infinite and b equals a.
    designFilterSections (s, fs, 150.0, 0.0, 0.70710677, 0, LowShelf);
    for (int k = 0; k < 3; ++k)
        EXPECT_NEAR (s[0][k], s[0][k + 3], 1e-12);

    designFilterSections (s, fs, 1000.0, 6.0, 2.0, 0, Peak);
    EXPECT_NEAR (responseDb (s, 1, 1000.0, fs), 6.0, 1e-9);
    designFilterSections (s, fs, 1000.0, 0.0, 1.0, 0, Bandpass);
    EXPECT_NEAR (responseDb (s, 1, 1000.0, fs), 0.0, 1e-9);
    designFilterSections (s, fs, 1000.0, 0.0, 1.0, 0, Notch);
    EXPECT_LT (responseDb (s, 1, 1000.0, fs), -100.0);
    designFilterSections (s, fs, 3000.0, 0.0, 1.0, 0, FirstOrderAllpass);
    EXPECT_NEAR (responseDb (s, 1, 300.0, fs), 0.0, 1e-9);
    EXPECT_NEAR (responseDb (s, 1, 13000.0, fs), 0.0, 1e-9);
    designFilterSections (s, fs, 0.0, -6.0, 1.0, 0, Gain);
    EXPECT_NEAR (responseDb (s, 1, 100.0, fs), -6.0, 1e-9);
    EXPECT_EQ (designFilterSections (s, fs, 100.0, 0.0, 1.0, 2, 13), 0u);
}

TEST (vHVN_biquad, OnlyTheLimitedTypesStopShortOfNyquist)
{
    const double fs = 48000.0;
    RawSections a, b;
    designFilterSections (a, fs, 23900.0, 0.0, 0.7, 2, ButterworthLowpass);
    designFilterSections (b, fs, 0.99 * fs / 2.0, 0.0, 0.7, 2, ButterworthLowpass);
    EXPECT_EQ (a[0], b[0]);
    designFilterSections (a, fs, 23900.0, 0.0, 0.7, 0, Lowpass);
    designFilterSections (b, fs, 0.99 * fs / 2.0, 0.0, 0.7, 0, Lowpass);
    EXPECT_NE (a[0], b[0]);
}

TEST (vHVN_biquad, BlockAndSampleRoutesAgreeAndCoefficientChangesKeepMemory)
{
    RawSections s;
    designFilterSections (s, 48000.0, 700.0, 0.0, 0.9, 0, Lowpass);
    const double c[5] = {s[0][0] / s[0][3], s[0][1] / s[0][3], s[0][2] / s[0][3], s[0][4] / s[0][3],
                         s[0][5] / s[0][3]};
    Vectorized<double> block (1), single (1);
    block.setCoefficients (1, c);
    single.setCoefficients (1, c);
    std::vector<double> x (45);
    for (size_t i = 0; i < x.size(); ++i)
        x[i] = std::sin (0.3 * i) + (i == 3 ? 1.0 : 0.0);
    auto y = x;
    block.process (y.data(), static_cast<uint32_t> (y.size()));
    for (size_t i = 0; i < x.size(); ++i)
        ASSERT_NEAR (y[i], single.processOne (x[i]), 1e-14);

    // A new design with the same section count continues from the old memory.
    double delays[2];
    block.getDelays (delays);
    block.setCoefficients (1, c);
    double after[2];
    block.getDelays (after);
    EXPECT_EQ (after[0], delays[0]);
    EXPECT_NE (after[0], 0.0);

    // Without sections the block route is an exact pass-through.
    Vectorized<double> empty (1);
    auto z = x;
    empty.process (z.data(), static_cast<uint32_t> (z.size()));
    EXPECT_EQ (z, x);
}

TEST (HVNBiquadChain, SmoothingCrossfadesAndKeepsTheDelayLineOnlyWhenAsked)
{
    const double fs = 48000.0;
    const uint32_t block = 64;
    HVNBiquadBank hard (1, block, fs, false), smooth (1, block, fs, true);
    std::vector<double> x (block, 1.0);

    // Settle both on a low-pass, then move it.
    for (auto* bank : {&hard, &smooth})
        bank->setFilter (500.0, 0.0, 0.7, 2, vHVN_biquad::ButterworthLowpass);
    for (int b = 0; b < 400; ++b)
        for (auto* bank : {&hard, &smooth})
        {
            auto y = x;
            bank->process (0, y.data(), block);
        }
    for (auto* bank : {&hard, &smooth})
        bank->setFilter (2000.0, 0.0, 0.7, 2, vHVN_biquad::ButterworthLowpass);

    // Without smoothing the filter restarts from silence: a step on DC.
    auto y = x;
    hard.process (0, y.data(), block);
    EXPECT_LT (y[0], 0.5);

    // With smoothing the old filter's output fades out: no step.
    y = x;
    smooth.process (0, y.data(), block);
    EXPECT_NEAR (y[0], 1.0, 1e-3);
    EXPECT_TRUE (smooth.chain (0).isFading());

    // A design arriving during the fade waits for its end, then fades in turn.
    smooth.setFilter (3000.0, 0.0, 0.7, 2, vHVN_biquad::ButterworthLowpass);
    int blocks = 0;
    while (smooth.chain (0).isFading() || smooth.chain (0).isDirty())
    {
        const bool dirtyBefore = smooth.chain (0).isDirty();
        y = x;
        smooth.process (0, y.data(), block);
        ++blocks;
        if (blocks < 100)
        {
            ASSERT_TRUE (dirtyBefore);
        }
        ASSERT_LT (blocks, 1000);
    }
    // 150 ms per fade, twice.
    EXPECT_NEAR (blocks * block / fs, 0.3, 0.01);
    // The incoming filter's memory carried over: DC passes with no transient.
    y = x;
    smooth.process (0, y.data(), block);
    EXPECT_NEAR (y[0], 1.0, 1e-6);
}
