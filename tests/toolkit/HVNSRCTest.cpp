#include "toolkit/HVNSRC.h"

#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{
constexpr double twoPi = 6.283185307179586;

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

// Runs a whole signal through a converter in blocks of the given lengths (cycled),
// one channel per signal; returns what came out.
std::vector<std::vector<float>> convert (HVNSRC& src, const std::vector<std::vector<float>>& input,
                                         const std::vector<uint32_t>& lengths)
{
    const auto channels = static_cast<uint32_t> (input.size());
    HVNAudioBuffer<float> in (channels, src.getMaxSourceLength()), out (channels, src.getMaxDestLength());
    std::vector<std::vector<float>> result (channels);
    size_t position = 0;
    for (size_t b = 0; position < input[0].size(); ++b)
    {
        const auto n = static_cast<uint32_t> (
            std::min<size_t> (lengths[b % lengths.size()], input[0].size() - position));
        for (uint32_t c = 0; c < channels; ++c)
            std::copy_n (input[c].begin() + static_cast<long> (position), n, in.channel (c));
        const uint32_t k = src.process (in, n, out);
        for (uint32_t c = 0; c < channels; ++c)
            result[c].insert (result[c].end(), out.channel (c), out.channel (c) + k);
        position += n;
    }
    return result;
}

// Tones that fall on whole cycles of `length` samples at `rate`, so that a plain
// DFT over such a window sees each of them, and their images, on one bin alone.
struct Tones
{
    std::vector<double> frequencies;
    double amplitude;
};

std::vector<float> render (const Tones& tones, double rate, size_t length, double delay = 0.0)
{
    std::vector<float> x (length);
    for (size_t i = 0; i < length; ++i)
    {
        double sum = 0.0;
        for (size_t k = 0; k < tones.frequencies.size(); ++k)
            sum +=
                std::sin (twoPi * tones.frequencies[k] * (static_cast<double> (i) - delay) / rate + 0.7 * k);
        x[i] = static_cast<float> (tones.amplitude * sum);
    }
    return x;
}

// Amplitude of the component at `frequency` over `length` samples from `start`.
double amplitudeAt (const std::vector<float>& x, size_t start, size_t length, double frequency, double rate)
{
    double re = 0.0, im = 0.0;
    const double w = twoPi * frequency / rate;
    for (size_t i = 0; i < length; ++i)
    {
        re += x[start + i] * std::cos (w * static_cast<double> (i));
        im += x[start + i] * std::sin (w * static_cast<double> (i));
    }
    return 2.0 * std::hypot (re, im) / static_cast<double> (length);
}

double dB (double ratio)
{
    return 20.0 * std::log10 (ratio);
}
} // namespace

TEST (HVNSRC, SetUpFollowsTheRatesAndReportsItsLatency)
{
    HVNSRC fractional (44100.0, 512, 48000.0, 2);
    EXPECT_TRUE (fractional.isFractional());
    EXPECT_EQ (fractional.getUp(), 160u);
    EXPECT_EQ (fractional.getDown(), 147u);
    EXPECT_EQ ((fractional.getFilterLength() - 1) % (2 * 147), 0u);
    EXPECT_DOUBLE_EQ (fractional.getLatency(), (fractional.getFilterLength() - 1) * 0.5 / 147);

    HVNSRC up (48000.0, 512, 96000.0, 1);
    EXPECT_EQ (up.getMode(), 1);
    EXPECT_FALSE (up.isFractional());
    EXPECT_EQ (up.getFilterLength() % 4, 1u);
    EXPECT_DOUBLE_EQ (up.getLatency(), (up.getFilterLength() - 1) / 2.0);
    EXPECT_EQ (up.getMaxDestLength(), 1024u);

    HVNSRC down (96000.0, 512, 48000.0, 1);
    EXPECT_EQ (down.getMode(), 2);
    EXPECT_EQ (down.getFilterLength(), up.getFilterLength());
    EXPECT_DOUBLE_EQ (down.getLatency(), (down.getFilterLength() - 1) / 2.0 / 2.0);

    HVNSRC same (48000.0, 16, 48000.0, 1);
    EXPECT_EQ (same.getLatency(), 0.0);
    HVNAudioBuffer<float> a (1, 16), b (1, 16);
    a.channel (0)[5] = 3.0f;
    EXPECT_EQ (same.process (a, 16, b), 16u);
    EXPECT_EQ (b.channel (0)[5], 3.0f);

    // Rates are floored: 8000.9 is 8000.
    HVNSRC floored (8000.9, 64, 16000.0, 1), exact (8000.0, 64, 16000.0, 1);
    EXPECT_EQ (floored.getFilterLength(), exact.getFilterLength());
    EXPECT_EQ (floored.getCutoff(), exact.getCutoff());

    // The filter is linear-phase: symmetric about its centre tap.
    const float* h = up.getTaps();
    const uint32_t n = up.getFilterLength();
    for (uint32_t i = 0; i < n / 2; ++i)
        ASSERT_FLOAT_EQ (h[i], h[n - 1 - i]);
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
    EXPECT_EQ (errorOf ([&] { src.setup (1536001.0, length, 48000.0, 1); }),
               "HVNSRC: source Sr is out of bounds");
    EXPECT_EQ (errorOf ([&] { src.setup (48000.0, length, 1536001.0, 1); }),
               "HVNSRC: dest Sr is out of bounds");
    EXPECT_EQ (errorOf ([&] { src.setup (48000.0, length, 7999.0, 1); }), "HVNSRC: dest Sr is out of bounds");
    src.setup (8000.9, length, 16000.0, 1);
    EXPECT_TRUE (src.isReady());
    EXPECT_EQ (errorOf ([&] { src.setup (8000.0, length, 16000.0, 1); }), "HVNSRC: can't call setup twice");
    EXPECT_EQ (errorOf ([&] { src.processSrc (b, 9, b, produced, 64); }), "HVNSRC: sourceLength is too big");
    EXPECT_EQ (errorOf ([&] { src.processSrc (a, 8, b, produced, 15); }),
               "HVNSRC: processSrc(), destLength too big");
    // A refused block leaves the stream as it was.
    src.processSrc (a, 8, b, produced, 64);
    EXPECT_EQ (produced, 16u);

    // A source with fewer channels than the converter can't go into its history.
    HVNSRC stereo (48000.0, 8, 96000.0, 2);
    EXPECT_EQ (errorOf ([&] { stereo.processSrc (a, 8, b, produced, 64); }),
               "HVNSRC: processSrc(), mSourceCirc not enough free space");
}

TEST (HVNSRC, WholeRatiosGiveExactCountsFromTheFirstBlockAndAfterReset)
{
    HVNSRC up (48000.0, 256, 192000.0, 3), down (192000.0, 1024, 48000.0, 3);
    HVNAudioBuffer<float> low (3, 256), high (3, 1024);
    for (int pass = 0; pass < 2; ++pass)
    {
        for (uint32_t n : {256u, 1u, 7u, 100u})
        {
            ASSERT_EQ (up.process (low, n, high), 4 * n);
            ASSERT_EQ (down.process (high, 4 * n, low), n);
        }
        up.reset();
        down.reset();
    }

    // Odd block lengths going down carry their leftovers over: output i stands on
    // input 4i and comes out with it.
    uint64_t in = 0, out = 0;
    for (uint32_t n : {3u, 5u, 1u, 1023u, 2u, 1024u, 6u})
    {
        in += n;
        out += down.process (high, n, low);
        EXPECT_EQ (out, (in + 3) / 4);
    }
}

TEST (HVNSRC, FractionalRatesGiveTheExactCountOverAMinuteAcrossTheWraps)
{
    // 44.1 kHz to 48 kHz and back, a minute each, in blocks of changing length.
    std::mt19937 random (3);
    std::uniform_int_distribution<uint32_t> lengths (1, 512);
    for (const auto& rates : {std::pair<double, double> (44100.0, 48000.0), {48000.0, 44100.0}})
    {
        HVNSRC src (rates.first, 512, rates.second, 2);
        HVNAudioBuffer<float> in (2, 512), out (2, src.getMaxDestLength());
        uint64_t consumed = 0, produced = 0;
        const auto total = static_cast<uint64_t> (60 * rates.first);
        while (consumed < total)
        {
            const auto n = static_cast<uint32_t> (std::min<uint64_t> (lengths (random), total - consumed));
            produced += src.process (in, n, out);
            consumed += n;
            // Never ahead of the exact count, never behind by a whole sample.
            const double exact = static_cast<double> (consumed) * rates.second / rates.first;
            ASSERT_LE (static_cast<double> (produced), std::ceil (exact));
            ASSERT_GT (static_cast<double> (produced) + 1.0, exact);
        }
        EXPECT_EQ (produced, static_cast<uint64_t> (60 * rates.second));
    }
}

TEST (HVNSRC, OutputIsTheAnalyticSineShiftedByTheLatencyAcrossTheWraps)
{
    // Two and a half seconds: the stream counters fall back twice on the way.
    struct Case
    {
        double source, dest;
        uint32_t block;
    };
    for (const Case& c : {Case{44100.0, 48000.0, 441}, Case{48000.0, 44100.0, 480},
                          Case{48000.0, 192000.0, 256}, Case{192000.0, 48000.0, 1000}})
    {
        SCOPED_TRACE (std::to_string (c.source) + " to " + std::to_string (c.dest));
        HVNSRC src (c.source, c.block, c.dest, 3);
        const Tones tones{{997.0, 5003.0}, 0.45};
        const auto length = static_cast<size_t> (2.5 * c.source);
        const auto x = render (tones, c.source, length);
        const auto y = convert (src, {x, x, x}, {c.block, c.block / 3, 1});

        const auto expected = render (tones, c.dest, y[0].size(), src.getLatency());
        const auto settled = static_cast<size_t> (src.getLatency() * 2 + 64);
        double worst = 0.0;
        for (size_t i = settled; i < y[0].size(); ++i)
        {
            worst = std::max (worst, std::abs (static_cast<double> (y[0][i]) - expected[i]));
            ASSERT_EQ (y[0][i], y[1][i]) << "the two channels of a pair are one computation";
            ASSERT_NEAR (y[2][i], y[0][i], 1e-6f) << "a channel without a pair";
        }
        EXPECT_LT (dB (worst / 0.9), -100.0);
    }
}

TEST (HVNSRC, UpConversionKeepsThePassbandFlatAndTheImagesDown)
{
    for (double rate : {44100.0, 48000.0})
    {
        SCOPED_TRACE (rate);
        HVNSRC up (rate, 256, 4 * rate, 1);
        // Tones on whole cycles of a 0.5 s window, up to 20 kHz. The transition band
        // of the 44.1 kHz design ends near 24.5 kHz, so there the images are judged
        // for tones up to 19.5 kHz.
        const size_t window = static_cast<size_t> (rate / 2);
        Tones tones{{}, 0.05};
        for (double f : {40.0, 1000.0, 6000.0, 12000.0, 16000.0, 18000.0, 19000.0, 19500.0, 20000.0})
            tones.frequencies.push_back (f);
        const double lastImaged = rate == 44100.0 ? 19500.0 : 20000.0;
        const auto x = render (tones, rate, 2 * window);
        const auto y = convert (up, {x}, {256})[0];
        const size_t start = 4 * window; // well past the filter's start
        const size_t length = 4 * window;

        double worstRipple = 0.0, worstImage = -1000.0;
        for (double f : tones.frequencies)
        {
            const double gain = amplitudeAt (y, start, length, f, 4 * rate) / tones.amplitude;
            worstRipple = std::max (worstRipple, std::abs (dB (gain)));
            if (f > lastImaged)
                continue;
            for (int k = 1; k < 4; ++k)
                for (double image : {k * rate - f, k * rate + f})
                    if (image < 2 * rate)
                        worstImage =
                            std::max (worstImage,
                                      dB (amplitudeAt (y, start, length, image, 4 * rate) / tones.amplitude));
        }
        EXPECT_LT (worstRipple, 0.01);
        EXPECT_LT (worstImage, -120.0);
    }
}

TEST (HVNSRC, DownConversionKeepsWhatLiesAboveTheNewBandOutOfIt)
{
    for (double rate : {44100.0, 48000.0})
    {
        SCOPED_TRACE (rate);
        HVNSRC down (4 * rate, 1024, rate, 1);
        // Content of the fast rate above 1.2 times the new Nyquist frequency, as
        // the chain's harmonics would be; on whole cycles of a 0.5 s window.
        const Tones tones{{1.2 * rate / 2, 0.8 * rate, 1.3 * rate, 1.9 * rate}, 0.2};
        const auto x = render (tones, 4 * rate, 2 * static_cast<size_t> (4 * rate));
        const auto y = convert (down, {x}, {1024})[0];
        const auto window = static_cast<size_t> (rate / 2);
        for (double f : tones.frequencies)
        {
            const double alias = std::abs (f - rate * std::round (f / rate));
            EXPECT_LT (dB (amplitudeAt (y, window, 2 * window, alias, rate) / tones.amplitude), -120.0) << f;
        }
    }
}

TEST (HVNSRC, RoundTripComesBackAsTheDelayedInput)
{
    for (double rate : {44100.0, 48000.0, 96000.0})
    {
        SCOPED_TRACE (rate);
        const uint32_t factor = rate > 48000.0 ? 2 : 4, block = 256;
        HVNSRC up (rate, block, rate * factor, 2), down (rate * factor, block * factor, rate, 2);
        const double latency = up.getLatency() / factor + down.getLatency();
        ASSERT_EQ (latency, std::floor (latency));

        Tones tones{{}, 0.08};
        for (double f = 31.0; f < 20000.0; f *= 1.9)
            tones.frequencies.push_back (f);
        const auto x = render (tones, rate, static_cast<size_t> (rate / 2));
        const auto y = convert (down, convert (up, {x, x}, {block}), {block * factor})[0];
        ASSERT_EQ (y.size(), x.size());

        const auto delay = static_cast<size_t> (latency);
        double error = 0.0, power = 0.0;
        for (size_t i = 2 * delay; i < y.size(); ++i)
        {
            error += std::pow (y[i] - x[i - delay], 2.0);
            power += std::pow (x[i - delay], 2.0);
        }
        EXPECT_LT (10.0 * std::log10 (error / power), -100.0);
    }
}

TEST (HVNSRC, ProcessingNeverAllocates)
{
    HVNSRC up (44100.0, 512, 48000.0, 4), down (192000.0, 1024, 48000.0, 2);
    HVNAudioBuffer<float> in (4, 1024), out (4, 1024);
    AllocationCounter counter;
    for (uint32_t n : {512u, 17u, 300u})
    {
        up.process (in, n, out);
        down.process (in, 2 * n, out);
    }
    up.reset();
    EXPECT_EQ (counter.allocations(), 0u);
    EXPECT_EQ (counter.deallocations(), 0u);
}
