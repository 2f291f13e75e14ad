#include "dsp/HVNLoFiNoise.h"

#include "support/AllocationCounter.h"
#include "tests/dsp/LoFiTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <vector>

namespace
{
using lofi_test::settled;

double levelDb (double amplitude)
{
    return 20.0 * std::log10 (amplitude);
}

// Runs blocks of silence through the noise and returns each channel's hiss:
// the output less the hum that should have been added.
std::vector<std::vector<double>> hissOf (HVNLoFiNoise& noise, uint32_t channels, uint32_t block,
                                         uint32_t blocks)
{
    auto gain = settled (1.0, block);
    HVNAudioBuffer<double> b (channels, block);
    std::vector<std::vector<double>> hiss (channels);
    const uint32_t n = noise.getHumLength();
    uint32_t position = 0;
    for (uint32_t k = 0; k < blocks; ++k)
    {
        b.clear();
        noise.process (b, block, *gain, nullptr);
        position = (position + 1) % n; // each block starts one sample past the last one's end
        for (uint32_t c = 0; c < channels; ++c)
            for (uint32_t i = 0; i < block; ++i)
                hiss[c].push_back (b.channel (c)[i] - noise.getHumTable()[(position + i) % n]);
        position = (position + block) % n;
    }
    return hiss;
}

double variance (const std::vector<double>& x)
{
    double s = 0.0, s2 = 0.0;
    for (double v : x)
    {
        s += v;
        s2 += v * v;
    }
    const double m = s / x.size();
    return s2 / x.size() - m * m;
}
} // namespace

TEST (HVNLoFiNoise, HumIsOneCycleOfOddHarmonicsAtTheirLevels)
{
    HVNLoFiNoise noise (64, 48000.0, 2);
    const uint32_t n = noise.getHumLength();
    ASSERT_EQ (n, 800u);
    EXPECT_EQ (HVNLoFiNoise (64, 44100.0, 2).getHumLength(), 735u);

    auto harmonic = [&] (int k)
    {
        std::complex<double> sum = 0.0;
        for (uint32_t i = 0; i < n; ++i)
            sum += noise.getHumTable()[i] * std::polar (1.0, -2.0 * M_PI * k * i / n);
        return 2.0 * std::abs (sum) / n;
    };
    const std::pair<int, double> levels[] = {{1, -78.3}, {3, -81.0},  {5, -93.5}, {7, -94.8},
                                             {9, -94.6}, {15, -95.4}, {21, -99.5}};
    for (const auto& [k, db] : levels)
        EXPECT_NEAR (levelDb (harmonic (k)), db - 16.0, 1e-9) << k;
    for (int k : {2, 4, 6, 11})
        EXPECT_LT (harmonic (k), 1e-15) << k;
}

TEST (HVNLoFiNoise, HissHasTheSameLevelPerHertzAtEveryRateAndOneArrangementPerChannelParity)
{
    HVNLoFiNoise slow (4096, 44100.0, 3), fast (4096, 96000.0, 3);
    const auto a = hissOf (slow, 3, 4096, 8);
    const auto b = hissOf (fast, 3, 4096, 8);

    // Two uniform values of +-2^31 times the scale: variance 2/3 (scale 2^31)^2.
    const double expected44 = 2.0 / 3.0 * std::pow (slow.getHissScale() * 2147483648.0, 2.0);
    EXPECT_NEAR (variance (a[0]) / expected44, 1.0, 0.05) << "the hum joins blocks one sample late";
    EXPECT_NEAR (variance (a[0]) / 22050.0, variance (b[0]) / 48000.0, 0.05 * variance (a[0]) / 22050.0);
    EXPECT_NEAR (levelDb (slow.getHissScale() * 2147483648.0), -90.0, 1e-8);

    EXPECT_EQ (a[2], a[0]) << "even channels share an arrangement";
    double cross = 0.0;
    for (size_t i = 0; i < a[0].size(); ++i)
        cross += a[0][i] * a[1][i];
    EXPECT_LT (std::abs (cross / a[0].size()) / variance (a[0]), 0.03) << "odd channels draw otherwise";
}

TEST (HVNLoFiNoise, NoiseOffIsAFloorNotSilenceAndProcessingDoesNotAllocate)
{
    EXPECT_NEAR (levelDb (HVNLoFiNoise::targetGain (100.0, -96.0)), -144.49, 0.005);
    EXPECT_EQ (HVNLoFiNoise::targetGain (0.0, -96.0), HVNLoFiNoise::targetGain (100.0, -96.0));
    EXPECT_NEAR (levelDb (HVNLoFiNoise::targetGain (50.0, -6.0)), 6.0 - 6.0 - 12.0, 1e-9);

    HVNLoFiNoise noise (256, 48000.0, 2);
    auto gain = settled (0.5, 256);
    auto ref = settled (2.0, 256);
    HVNAudioBuffer<double> b (2, 256);
    AllocationCounter count;
    noise.process (b, 256, *gain, ref.get());
    noise.process (b, 100, *gain, nullptr);
    EXPECT_EQ (count.allocations(), 0u);
}
