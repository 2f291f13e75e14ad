#include "dsp/HVNWowFlutter.h"
#include "dsp/HVNParameterIndex.h"
#include "dsp/HVNZC1DSP.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace HVNParameterIndex;

namespace
{
// Feeds the stage a ramp, x[t] = t, so that each output sample tells the delay
// it was read at: delay = t - out.
struct WowRig
{
    WowRig (double rate, uint32_t factor = 0, uint32_t channels = 2)
        : owner (block, rate, channels, channels, 0, factor)
        , stage (owner)
        , main (channels, block)
    {
        // Every control lands at its first target: the mix's equal-power ramp
        // would otherwise lift the correlated ramp while it fades in.
        owner.reset();
    }

    void set (uint32_t index, float value)
    {
        owner.parameters[index].value = value;
        owner.parameters[index].changed = true;
    }

    // Runs `samples` more samples; returns the delay per channel and sample.
    std::vector<std::vector<double>> run (long samples)
    {
        std::vector<std::vector<double>> delay (main.channels());
        for (long done = 0; done < samples; done += block)
        {
            for (uint32_t c = 0; c < main.channels(); ++c)
                for (uint32_t i = 0; i < block; ++i)
                    main.channel (c)[i] = static_cast<double> (t + i);
            stage.process (main, block);
            for (auto& p : owner.parameters)
                p.changed = false;
            for (uint32_t c = 0; c < main.channels(); ++c)
                for (uint32_t i = 0; i < block; ++i)
                    delay[c].push_back (static_cast<double> (t + i) - main.channel (c)[i]);
            t += block;
        }
        return delay;
    }

    static constexpr uint32_t block = 128;
    HVNZC1DSP owner;
    HVNWowFlutter stage;
    HVNAudioBuffer<double> main;
    long t = 0;
};

double maxSlope (const std::vector<double>& d, size_t from)
{
    double m = 0.0;
    for (size_t i = from + 1; i < d.size(); ++i)
        m = std::max (m, std::abs (d[i] - d[i - 1]));
    return m;
}

// The unipolar wave of the oscillators, 0 at phase 0 and 1 at phase 0.5.
double wave (double p)
{
    const double t = std::abs (std::round (p) - p);
    return t <= 0.25 ? 8.0 * t * t : 1.0 - 2.0 * (1.0 - 2.0 * t) * (1.0 - 2.0 * t);
}
} // namespace

TEST (HVNWowFlutter, AtRestItIsAPlainDelayAndTheOscillatorsStand)
{
    for (uint32_t factor : {0u, 4u})
    {
        WowRig rig (factor == 0 ? 48000.0 : 192000.0, factor);
        rig.set (WowFlutterAmount, 0.0f);
        const auto delay = rig.run (2048);
        // The line starts silent: from the fixed delay on the ramp shows through.
        for (size_t i = 8; i < delay[1].size(); ++i)
            ASSERT_EQ (delay[1][i], factor == 0 ? 4.0 : 2.0);
        EXPECT_EQ (rig.stage.getWow().phase, 0.0);
    }
    // MasterMix 0 counts as no amount; WowFlutterMix 0 keeps only the dry path.
    WowRig mix (48000.0);
    mix.set (WowFlutterMix, 0.0f);
    mix.set (WowFlutterAmount, 100.0f);
    const auto dry = mix.run (4096)[0];
    for (size_t i = 8; i < dry.size(); ++i)
        ASSERT_EQ (dry[i], 4.0);
}

TEST (HVNWowFlutter, PitchDeviationIsTheSameAtEverySpeed)
{
    const double rate = 48000.0;
    std::vector<double> peaks;
    for (float speed : {0.0f, 1.0f, 2.0f})
    {
        WowRig rig (rate);
        rig.set (WowFlutterAmount, 100.0f);
        rig.set (WowFlutterSpeed, speed);
        const auto delay = rig.run (static_cast<long> (4.5 * rate));
        // After the eases, over more than a whole turn at the slowest speed.
        peaks.push_back (maxSlope (delay[0], static_cast<size_t> (2.0 * rate)));
    }
    // Wow and flutter at full amount: 4 x (13.8 + 2.14) ms per second at most.
    EXPECT_GT (peaks[0], 0.04);
    EXPECT_LT (peaks[0], 0.0640);
    EXPECT_NEAR (peaks[1] / peaks[0], 1.0, 0.05);
    EXPECT_NEAR (peaks[2] / peaks[0], 1.0, 0.05);
}

TEST (HVNWowFlutter, PhaseOffsetsEachChannelAlongTheWave)
{
    const double rate = 48000.0;
    WowRig rig (rate, 0, 3);
    rig.set (WowFlutterAmount, 100.0f);
    rig.set (WowFlutterPhase, 180.0f);
    const auto delay = rig.run (static_cast<long> (2.0 * rate));

    // From here every ease has settled and the delay is the waves' sum exactly.
    const double speed = HVNWowFlutter::speedFor (0.0f);
    for (long m = static_cast<long> (1.5 * rate); m < static_cast<long> (delay[0].size()); m += 97)
        for (uint32_t c = 0; c < 3; ++c)
        {
            double expected = 4.0;
            for (auto [depth, cycles] : {std::pair{13.8, 1.0}, std::pair{2.14, 18.0}})
            {
                // Phase at the sample, one increment past the start.
                const double p = (m + 1) * cycles / rate * speed + 0.5 * c;
                expected += depth * rate / (cycles * 1000.0) / speed * wave (p - std::floor (p));
            }
            ASSERT_NEAR (delay[c][m], expected, 1e-4) << c << "@" << m;
        }
}

TEST (HVNWowFlutter, ASpeedChangeGlidesWithoutAJump)
{
    const double rate = 44100.0;
    WowRig rig (rate);
    rig.set (WowFlutterAmount, 100.0f);
    auto first = rig.run (static_cast<long> (2.0 * rate));
    rig.set (WowFlutterSpeed, 2.0f);
    auto glide = rig.run (static_cast<long> (1.5 * rate));
    rig.set (WowFlutterSpeed, 0.0f);
    auto back = rig.run (static_cast<long> (1.5 * rate));
    first[1].erase (first[1].begin(), first[1].begin() + 8);
    for (auto* d : {&first[1], &glide[1], &back[1]})
        EXPECT_LT (maxSlope (*d, 0), 0.08);
    EXPECT_LT (std::abs (glide[1].front() - first[1].back()), 0.08);
    EXPECT_LT (std::abs (back[1].front() - glide[1].back()), 0.08);
}

TEST (HVNWowFlutter, ResetPhasesRestartsTheModulation)
{
    WowRig a (48000.0), b (48000.0);
    for (auto* rig : {&a, &b})
        rig->set (WowFlutterAmount, 50.0f);
    a.run (48000);
    b.run (48000);
    a.stage.resetPhases();
    EXPECT_EQ (a.stage.getWow().phase, 0.0);
    EXPECT_EQ (a.stage.getFlutter().phase, 0.0);
    EXPECT_NE (b.stage.getWow().phase, 0.0);
}
