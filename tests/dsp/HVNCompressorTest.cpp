#include "dsp/ChainTestSupport.h"
#include "dsp/HVNParameterIndex.h"
#include "dsp/generated/HVNCompressorTables.h"

#include <gtest/gtest.h>

using namespace HVNParameterIndex;
namespace Tables = HVNCompressorTables;

namespace
{
constexpr double rate = 48000.0;

// A quarter-rate sine: its samples are 0, A, 0, -A, so the detector's peak is A.
std::function<float (uint32_t, long)> quarterRate (double amplitude)
{
    return [amplitude] (uint32_t, long t)
    {
        const long k = t % 4;
        return static_cast<float> (k == 1 ? amplitude : k == 3 ? -amplitude : 0.0);
    };
}

double tableGain (uint32_t row, double over)
{
    const double o = std::clamp (over, 0.0, 63.0);
    const uint32_t j = static_cast<uint32_t> (o);
    const uint32_t j1 = std::min (j + 1, 63u);
    return Tables::gain[row][j] + (Tables::gain[row][j1] - Tables::gain[row][j]) * (o - j);
}

// Expected steady gain in dB of a level at a row, makeup included.
double predictedGainDb (uint32_t row, double levelDb, bool withMakeup = true)
{
    const double over = levelDb - Tables::thresholdDb[row];
    const double reduction = over > 0.0 ? tableGain (row, over) : 0.0;
    return (withMakeup ? Tables::makeupDb[row] : 0.0) - reduction;
}

// Output level over input level, in dB, over the last quarter second.
double steadyGainDb (const std::vector<float>& out, const std::function<float (uint32_t, long)>& in,
                     long length)
{
    std::vector<float> x (length);
    for (long t = 0; t < length; ++t)
        x[t] = in (0, t);
    const long from = length - static_cast<long> (rate / 4);
    return toDb (rmsOf (out, from, length) / rmsOf (x, from, length));
}
} // namespace

TEST (HVNCompressor, StaticCurveFollowsTheTablesAndTheMakeup)
{
    const long length = static_cast<long> (2.5 * rate);
    for (float amount : {0.0f, 50.0f, 100.0f})
    {
        const uint32_t row = static_cast<uint32_t> (amount / 5.0f);
        for (double level = -70.0; level <= 0.0; level += 10.0)
        {
            CompressorRunner runner (512, rate);
            runner.set ({{CompressionAmount, amount}, {WowFlutterAmount, 0.0f}});
            const auto in = quarterRate (std::pow (10.0, level / 20.0));
            const auto out = runner.run (length, in);
            EXPECT_NEAR (steadyGainDb (out[0], in, length), predictedGainDb (row, level), 0.5)
                << "amount " << amount << " level " << level;
        }
    }
}

TEST (HVNCompressor, SilenceGetsTheMakeupAndTheThresholdNoReduction)
{
    // After a reset every control lands at once: the level never passes the threshold.
    CompressorRunner runner (256, rate);
    runner.dsp.reset();
    runner.set ({{CompressionAmount, 50.0f}, {WowFlutterAmount, 0.0f}});
    const double level = Tables::thresholdDb[10];
    const auto in = quarterRate (std::pow (10.0, level / 20.0));
    const long length = static_cast<long> (1.5 * rate);
    const auto out = runner.run (length, in);
    EXPECT_NEAR (steadyGainDb (out[0], in, length), Tables::makeupDb[10], 0.01);
    EXPECT_NEAR (runner.dsp.meterValues[0], 0.0f, 1e-6f);
}

TEST (HVNCompressor, AttackAndReleaseScaleWithTheirControls)
{
    // Time for the reduction to cover 63 % of a step, in samples.
    auto timeTo63 = [] (float attack, float release, bool up)
    {
        ChainRunner runner (64, rate);
        runner.set ({{CompressionAmount, 50.0f},
                     {WowFlutterAmount, 0.0f},
                     {CompAttackTimeConstant, attack},
                     {CompReleaseTimeConstant, release}});
        const long step = static_cast<long> (3.0 * rate), length = static_cast<long> (9.0 * rate);
        const double low = std::pow (10.0, -40.0 / 20.0), high = std::pow (10.0, -6.0 / 20.0);
        std::vector<double> reduction;
        runner.afterBlock = [&] { reduction.push_back (runner.dsp.meterValues[0] * 36.0); };
        runner.run (length,
                    [&] (uint32_t, long t) { return quarterRate (up == (t >= step) ? high : low) (0, t); });
        const size_t first = static_cast<size_t> (step / 64);
        const double from = reduction[first - 1], to = reduction.back();
        for (size_t b = first; b < reduction.size(); ++b)
            if (std::abs (reduction[b] - from) >= 0.632 * std::abs (to - from))
                return static_cast<double> ((b - first) * 64);
        return -1.0;
    };
    const double attack1 = timeTo63 (1.0f, 1.0f, true), attack4 = timeTo63 (4.0f, 1.0f, true);
    const double release1 = timeTo63 (1.0f, 1.0f, false), release4 = timeTo63 (1.0f, 4.0f, false);
    ASSERT_GT (attack1, 0.0);
    ASSERT_GT (release1, 0.0);
    EXPECT_GT (release1, attack1);
    EXPECT_NEAR (attack4 / attack1, 4.0, 1.0);
    EXPECT_NEAR (release4 / release1, 4.0, 1.0);
}

TEST (HVNCompressor, ExternalSidechainDrivesTheDetectorAndTakesTheMakeup)
{
    const long length = static_cast<long> (2.0 * rate);
    const double mainDb = -40.0, sideDb = -10.0;
    const auto main = quarterRate (std::pow (10.0, mainDb / 20.0));
    const auto side = quarterRate (std::pow (10.0, sideDb / 20.0));
    for (float external : {0.0f, 100.0f})
    {
        CompressorRunner runner (512, rate, 2, 2, 2);
        runner.set ({{CompressionAmount, 50.0f}, {WowFlutterAmount, 0.0f}, {SidechainExternal, external}});
        const auto out = runner.run (length, main, {}, side);
        const double expected =
            external == 0.0f ? predictedGainDb (10, mainDb) : predictedGainDb (10, sideDb, false);
        EXPECT_NEAR (steadyGainDb (out[0], main, length), expected, 0.5) << external;
    }
}

TEST (HVNCompressor, ListenPlaysTheDetectorAndTiltShapesIt)
{
    const long length = static_cast<long> (1.0 * rate);
    auto listenGainDb = [&] (float tilt, double frequency)
    {
        ChainRunner runner (512, rate, 2, 2, 2);
        runner.set ({{SidechainExternal, 100.0f}, {SidechainListen, 1.0f}, {SidechainTilt, tilt}});
        const auto side = ChainRunner::sine (frequency, 0.1, rate);
        const auto out = runner.run (
            length, [] (uint32_t, long) { return 0.0f; }, {}, side);
        std::vector<float> x (length);
        for (long t = 0; t < length; ++t)
            x[t] = side (0, t);
        const long from = length / 2;
        return toDb (rmsOf (out[1], from, length) / rmsOf (x, from, length));
    };
    // Untilted the listened signal is the sidechain itself.
    EXPECT_NEAR (listenGainDb (0.0f, 1000.0), 0.0, 1e-4);
    // Positive tilt: lows down by up to 24 dB, the whole up by 6.
    EXPECT_NEAR (listenGainDb (100.0f, 5000.0), 6.0, 0.1);
    EXPECT_NEAR (listenGainDb (100.0f, 10.0), -18.0, 1.0);
    // Negative tilt: lows up by up to 24 dB, the whole down by 8.4.
    EXPECT_NEAR (listenGainDb (-100.0f, 5000.0), -8.4, 0.1);
    EXPECT_NEAR (listenGainDb (-100.0f, 10.0), 15.6, 1.0);
}

TEST (HVNCompressor, WithoutASidechainListenDoesNothing)
{
    ChainRunner runner (512, rate, 2, 2, 2);
    runner.dsp.reset();
    runner.set ({{SidechainListen, 1.0f}, {MasterMix, 0.0f}});
    const auto in = ChainRunner::sine (440.0, 0.5, rate);
    const auto out = runner.run (4096, in);
    for (long t = 17; t < 4096; ++t)
        ASSERT_NEAR (out[0][t], in (0, t - 17), 1e-6f);
}

TEST (HVNCompressor, StereoLinkSharesOneGainAndFlipsTheMeterSign)
{
    const long length = static_cast<long> (1.0 * rate);
    auto loudLeft = [] (uint32_t c, long t) { return quarterRate (c == 0 ? 0.5 : 0.001) (c, t); };
    for (float link : {0.0f, 1.0f})
    {
        CompressorRunner runner (512, rate);
        runner.set ({{CompStereoLink, link}, {WowFlutterAmount, 0.0f}});
        const auto out = runner.run (length, loudLeft);
        const double left = toDb (rmsOf (out[0], length - 4800, length) / (0.5 / std::sqrt (2.0)));
        const double right = toDb (rmsOf (out[1], length - 4800, length) / (0.001 / std::sqrt (2.0)));
        if (link != 0.0f)
        {
            EXPECT_NEAR (left, right, 1e-6);
            EXPECT_GT (runner.dsp.meterValues[0], 0.0f);
        }
        else
        {
            EXPECT_GT (right - left, 10.0);
            EXPECT_LT (runner.dsp.meterValues[0], 0.0f);
        }
    }
}

TEST (HVNCompressor, OvershootPastTheTableStaysOnItsLastColumn)
{
    // +12 dB of input gain on a full-scale signal: 74 dB over the row-0 threshold.
    CompressorRunner runner (512, rate);
    runner.set ({{CompressionAmount, 0.0f}, {WowFlutterAmount, 0.0f}, {InputGain, 12.0f}});
    const auto in = quarterRate (1.0);
    const long length = static_cast<long> (2.5 * rate);
    const auto out = runner.run (length, in);
    EXPECT_NEAR (steadyGainDb (out[0], in, length), 12.0 + Tables::makeupDb[0] - Tables::gain[0][63], 0.5);
}

TEST (HVNCompressor, TheLayoutDecidesTheLinkForAMonoInput)
{
    for (auto [outs, linked] : {std::pair{2u, true}, std::pair{1u, false}})
    {
        ChainRunner runner (64, rate, 1, outs);
        runner.set (CompStereoLink, linked ? 0.0f : 1.0f);
        runner.run (64, [] (uint32_t, long) { return 0.1f; });
        EXPECT_EQ (runner.dsp.getCompressor().isStereoLinked(), linked) << outs;
    }
}
