// The compressor's gain against a plain per-sample gain computer written from
// its law, with library exp calls and the two passes as written in the law:
// the production loop is arranged for speed and must not drift from it.
#include "dsp/HVNParameterIndex.h"
#include "dsp/HVNZC1DSP.h"
#include "dsp/generated/HVNCompressorTables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <vector>

using namespace HVNParameterIndex;
namespace Tables = HVNCompressorTables;

namespace
{
double lookup (const double* table, double x)
{
    const double a = std::clamp (x, 0.0, 20.0);
    const uint32_t k = static_cast<uint32_t> (a), k2 = std::min (k + 1, 20u);
    return table[k] + (table[k2] - table[k]) * (a - k);
}

double timeEntry (const double (&table)[Tables::rows][Tables::timeColumns], double amount, uint32_t column)
{
    const double a = std::clamp (amount, 0.0, 20.0);
    const uint32_t k = static_cast<uint32_t> (a), k2 = std::min (k + 1, 20u);
    const double f = a - k;
    return table[k][column] * (1.0 - f) + table[k2][column] * f;
}

double reduction (double amount, double over)
{
    const double a = std::clamp (amount, 0.0, 20.0), o = std::clamp (over, 0.0, 63.0);
    const uint32_t k = static_cast<uint32_t> (a), j = static_cast<uint32_t> (o);
    const uint32_t j1 = std::min (j + 1, 63u);
    auto row = [&] (uint32_t r)
    { return Tables::gain[r][j] + (Tables::gain[r][j1] - Tables::gain[r][j]) * (o - j); };
    return row (k) + (row (std::min (k + 1, 20u)) - row (k)) * (a - k);
}

// One channel's gain computer: level in, reduction in dB out.
struct ReferenceGainComputer
{
    explicit ReferenceGainComputer (uint32_t window, double sampleRate)
        : history (window, 0.0)
        , timeFactor (1000.0 / (sampleRate * 640.0))
    {
    }

    double next (double levelDb, double amount, double attack, double release)
    {
        const double T = lookup (Tables::thresholdDb, amount);
        double over = 0.0, gr = 0.0;
        if (levelDb > T)
        {
            over = levelDb - T;
            gr = reduction (amount, over);
        }
        double sum = 0.0;
        for (double h : history)
            sum += h;
        double e = gr - sum / static_cast<double> (history.size());
        const double q = 22.0 - std::clamp ((-over - T) / 3.0, 0.0, 22.0);
        const uint32_t j = static_cast<uint32_t> (q);
        const double r = q - j;

        double y[2];
        for (int pass = 0; pass < 2; ++pass)
        {
            const uint32_t idx = std::min (j + pass, 22u);
            const double A = timeEntry (Tables::timeA, amount, idx),
                         B = timeEntry (Tables::timeB, amount, idx);
            double tc;
            if (e >= 0.0)
                tc = std::max (0.0, attack * std::exp (e * B + gr * A));
            else
            {
                tc = std::max (0.015, release * std::exp (gr * A - e * B));
                e *= 0.75;
            }
            const double target = std::max (0.0, timeEntry (Tables::timeC, amount, idx) * e + gr);
            y[pass] = std::exp (-timeFactor / tc) * (history.back() - target) + target;
        }
        const double result = y[0] + (y[1] - y[0]) * r;
        history.pop_front();
        history.push_back (result);
        return result;
    }

    std::deque<double> history;
    double timeFactor;
};

// A programme of steps for the sidechain, per channel: silence, levels below
// and above the threshold, bursts past the table's last column, and decays.
double programme (uint32_t channel, long t, double rate)
{
    const double seconds = t / rate;
    const int segment = static_cast<int> (seconds / 0.045);
    static constexpr double levelsDb[] = {-200.0, -30.0, -5.0, -61.9, 9.0, -45.0, -12.0, -80.0, 3.0, -20.0};
    const double level = levelsDb[(segment + 3 * channel) % 10];
    const double amplitude = level < -150.0 ? 0.0 : std::pow (10.0, level / 20.0);
    return amplitude * std::sin (2.0 * M_PI * (110.0 + 70.0 * channel) * seconds);
}

// Runs the stage with the main input at 1.0, so that its output is its gain,
// and the detector fed by the sidechain alone, whose makeup is then 0 dB.
// Returns the largest difference in dB from the reference.
double largestDifferenceDb (bool linked, bool fused)
{
    constexpr double rate = 48000.0;
    constexpr uint32_t maxBlock = 256;
    HVNZC1DSP owner (maxBlock, rate, 2, 2, 1, 0);
    for (auto& p : owner.parameters)
        p.changed = true;
    owner.parameters[CompressionAmount].value = 50.0f;
    owner.parameters[CompAttackTimeConstant].value = 1.0f;
    owner.parameters[CompReleaseTimeConstant].value = 1.0f;
    owner.parameters[CompStereoLink].value = linked ? 1.0f : 0.0f;
    owner.parameters[SidechainExternal].value = 100.0f;
    owner.reset();
    owner.mixEase.setInstant (1.0);
    auto& stage = owner.getCompressor();
    stage.useFusedChain (fused);
    const uint32_t lookAhead = stage.getLookAhead();

    HVNAudioBuffer<double> main (2, maxBlock), side (2, maxBlock);
    HVNSidechainState state;
    std::vector<ReferenceGainComputer> reference (linked ? 1 : 2,
                                                  ReferenceGainComputer (stage.getWindow(), rate));
    std::vector<std::vector<double>> detector (2);

    // Block sizes that vary, and moves of the amount and of both time scales
    // part-way, so that the ramping forms run too.
    const uint32_t sizes[] = {256, 100, 1, 37, 256, 255, 64, 3};
    double largest = 0.0;
    long t = 0;
    for (uint32_t b = 0; t < static_cast<long> (1.2 * rate); ++b)
    {
        const uint32_t n = sizes[b % std::size (sizes)];
        if (b == 60)
            owner.parameters[CompressionAmount] = {85.0f, 50.0f, true, false};
        if (b == 120)
            owner.parameters[CompAttackTimeConstant] = {0.2f, 1.0f, true, false};
        if (b == 150)
            owner.parameters[CompReleaseTimeConstant] = {5.0f, 1.0f, true, false};
        if (b == 190)
            owner.parameters[CompressionAmount] = {10.0f, 85.0f, true, false};

        for (uint32_t c = 0; c < 2; ++c)
            for (uint32_t i = 0; i < n; ++i)
            {
                main.channel (c)[i] = 1.0;
                side.channel (c)[i] = programme (c, t + i, rate);
            }
        state.update (true);
        stage.process (main, side, state, n);
        for (auto& p : owner.parameters)
            p.changed = false;

        const double* amount = stage.amountEase.getBuffer();
        const double* attack = stage.attackEase.getBuffer();
        const double* release = stage.releaseEase.getBuffer();
        for (uint32_t i = 0; i < n; ++i, ++t)
        {
            // The peak over the look-ahead, of |detector| (both channels' when linked).
            double level[2] = {0.0, 0.0};
            for (uint32_t c = 0; c < 2; ++c)
            {
                detector[c].push_back (side.channel (c)[i]);
                for (long s = std::max (0L, t - static_cast<long> (lookAhead)); s <= t; ++s)
                    level[c] = std::max (level[c], std::abs (detector[c][s]));
            }
            for (uint32_t c = 0; c < reference.size(); ++c)
            {
                const double peak = linked ? std::max (level[0], level[1]) : level[c];
                const double expectedDb = -reference[c].next (8.685889638065037 * std::log (peak), amount[i],
                                                              attack[i], release[i]);
                if (t < static_cast<long> (lookAhead))
                    continue;
                for (uint32_t out = linked ? 0 : c; out < (linked ? 2u : c + 1); ++out)
                    largest =
                        std::max (largest, std::abs (20.0 * std::log10 (main.channel (out)[i]) - expectedDb));
            }
        }
    }
    return largest;
}
} // namespace

// Both forms of the gain loop: fused multiply-adds, where this processor has
// them, and plain.
TEST (HVNCompressorReference, GainFollowsThePlainPerSampleLawLinkedAndNot)
{
    for (bool fused : {false, true})
    {
        EXPECT_LT (largestDifferenceDb (true, fused), 1e-9) << fused;
        EXPECT_LT (largestDifferenceDb (false, fused), 1e-9) << fused;
    }
}
