#include "core/HVNPublicDSPTestSupport.h"

#include "dsp/HVNParameterIndex.h"
#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

using namespace HVNParameterIndex;

namespace
{
constexpr double rate = 44100.0;
constexpr uint32_t block = 64;
// 50 ms of fade at 44.1 kHz, in blocks, with one to spare.
constexpr int fadeBlocks = 2205 / 64 + 2;
// At 44.1 kHz each converter's filter has 305 taps at 176.4 kHz: 38 host samples
// of delay each way. The probe's HQ latency is 52 samples of its own rate.
constexpr uint32_t converterLatency = 76;
constexpr uint32_t hqLatency = 52 / 4 + converterLatency;
// The converters pass the test signal, far inside their band, almost untouched.
constexpr float converted = 1e-4f;

// Runs blocks with HQMode delivered as hq until the rig has seen `swaps` swaps and
// the host is idle again; waits for the worker while the fade sits at silence.
void runUntilSettled (Rig& rig, float hq, int swaps)
{
    for (int i = 0; i < 20000; ++i)
    {
        rig.run ({{HQMode, hq}});
        const bool settled =
            rig.counter.swaps >= swaps && !rig.dsp->isSwapInProgress() && rig.dsp->getSwapFadeValue() == 1.0f;
        if (settled)
            return;
        if (rig.dsp->getSwapFadeValue() == 0.0f)
            std::this_thread::sleep_for (std::chrono::milliseconds (1));
    }
    FAIL() << "the swap did not settle";
}
} // namespace

TEST (HVNPublicDSP, ConstructionKeepsTheWantedModeAndTheLongerLatencyForBypass)
{
    Rig host (block, rate, 2, 2, false);
    EXPECT_EQ (host.dsp->getUpsampleFactor(), 4u);
    EXPECT_FALSE (host.dsp->isHQActive());
    EXPECT_FALSE (host.dsp->getCurrentDSP()->isUpsampled);
    EXPECT_EQ (host.dsp->getCurrentLatency(), 16u);
    EXPECT_EQ (host.dsp->getBypass().getDelaySamples(), hqLatency);
    EXPECT_TRUE (host.dsp->isNextDSPReady()); // the HQ DSP waits for the first delivery
    EXPECT_EQ (host.dsp->getConverterLatency(), converterLatency);

    Rig hq (block, rate, 2, 2, true);
    EXPECT_TRUE (hq.dsp->isHQActive());
    EXPECT_TRUE (hq.dsp->getCurrentDSP()->isUpsampled);
    EXPECT_EQ (hq.dsp->getCurrentDSP()->sampleRate, 4 * rate);
    EXPECT_EQ (hq.dsp->getCurrentLatency(), hqLatency);
    EXPECT_FALSE (hq.dsp->isSwapInProgress());
    EXPECT_FALSE (hq.dsp->isNextDSPReady());
    EXPECT_EQ (hq.dsp->getBypass().getDelaySamples(), hqLatency);

    Rig fast (block, 192000.0, 2, 2, false);
    EXPECT_EQ (fast.dsp->getUpsampleFactor(), 2u);
    Rig edge (block, 96000.0, 2, 2, false), past (block, 96001.0, 2, 2, false);
    EXPECT_EQ (edge.dsp->getUpsampleFactor(), 4u);
    EXPECT_EQ (past.dsp->getUpsampleFactor(), 2u);
    EXPECT_GT (past.dsp->getConverterLatency(), 0.0) << "96001 Hz converts to 192002 Hz";
}

TEST (HVNPublicDSP, FirstDeliveryOfTheSameModeDisposesOfTheSpare)
{
    Rig rig (block, rate, 2, 2, false);
    rig.run ({{HQMode, 0.0f}});
    EXPECT_FALSE (rig.dsp->isNextDSPReady());
    runUntilSettled (rig, 0.0f, 0);
    EXPECT_EQ (rig.counter.swaps, 0);
    EXPECT_EQ (rig.buildThreads.size(), 2u);
}

TEST (HVNPublicDSP, HQFlipBeforeAnyBlockSwapsAtOnceWithoutFade)
{
    Rig rig (block, rate, 2, 2, false);
    rig.dsp->setParameter (HQMode, 1.0f, false);
    EXPECT_TRUE (rig.dsp->isHQActive());
    EXPECT_EQ (rig.counter.swaps, 1);
    EXPECT_EQ (rig.counter.latencyChanges, 1);
    EXPECT_EQ (rig.dsp->getCurrentLatency(), hqLatency);
    EXPECT_EQ (rig.dsp->getSwapFadeValue(), 1.0f);
    EXPECT_TRUE (rig.dsp->getCurrentDSP()->parameterChanged (HQMode));

    // The HQ path as a whole is a pure delay of the reported latency.
    for (int b = 0; b < 8; ++b)
    {
        rig.run ({{HQMode, 1.0f}});
        for (uint32_t i = 0; i < block; ++i)
            ASSERT_NEAR (rig.out.channel (1)[i], rig.delayedInput (i, hqLatency), converted) << b << ":" << i;
    }
}

TEST (HVNPublicDSP, HQToggleWhilePlayingFadesSwapsAndReportsTheNewLatency)
{
    Rig rig (block, rate, 2, 2, false);
    runUntilSettled (rig, 0.0f, 0);
    const auto builds = rig.buildThreads.size();

    rig.run ({{HQMode, 1.0f}});
    EXPECT_TRUE (rig.dsp->isSwapInProgress());
    EXPECT_FALSE (rig.dsp->isHQActive());

    // 50 ms down: the swap waits for silence.
    int blocksToSwap = 1;
    float lastBeforeSwap = 1.0f;
    while (rig.counter.swaps == 0 && blocksToSwap < 5000)
    {
        lastBeforeSwap = rig.dsp->getSwapFadeValue();
        rig.run ({{HQMode, 1.0f}});
        ++blocksToSwap;
        if (rig.counter.swaps == 0 && rig.dsp->getSwapFadeValue() == 0.0f)
            std::this_thread::sleep_for (std::chrono::milliseconds (1));
    }
    ASSERT_EQ (rig.counter.swaps, 1);
    EXPECT_GE (blocksToSwap, 2205 / 64);
    EXPECT_EQ (lastBeforeSwap, 0.0f);
    EXPECT_TRUE (rig.dsp->isHQActive());
    EXPECT_EQ (rig.counter.latencyChanges, 1);
    EXPECT_EQ (rig.dsp->getCurrentLatency(), hqLatency);
    EXPECT_EQ (rig.dsp->latencyOf (*rig.dsp->getCurrentDSP()), hqLatency);

    // The new DSP was built on the worker.
    ASSERT_EQ (rig.buildThreads.size(), builds + 1);
    EXPECT_NE (rig.buildThreads.back(), std::this_thread::get_id());

    // And the output comes back up to the delayed input.
    runUntilSettled (rig, 1.0f, 1);
    for (int b = 0; b < 2; ++b)
        rig.run ({{HQMode, 1.0f}});
    for (uint32_t i = 0; i < block; ++i)
        ASSERT_NEAR (rig.out.channel (0)[i], rig.delayedInput (i, hqLatency), converted);
}

TEST (HVNPublicDSP, ToggleTwiceQuicklyEndsOnTheLastValue)
{
    Rig rig (block, rate, 2, 2, false);
    runUntilSettled (rig, 0.0f, 0);

    rig.run ({{HQMode, 1.0f}});
    int fadeDowns = 0;
    bool wasSilent = false;
    for (int i = 0; i < 20000 && !(rig.counter.swaps >= 2 && !rig.dsp->isSwapInProgress() &&
                                   rig.dsp->getSwapFadeValue() == 1.0f);
         ++i)
    {
        rig.run ({{HQMode, 0.0f}});
        const bool silent = rig.dsp->getSwapFadeValue() == 0.0f;
        fadeDowns += silent && !wasSilent;
        wasSilent = silent;
        if (silent)
            std::this_thread::sleep_for (std::chrono::milliseconds (1));
    }
    EXPECT_EQ (rig.counter.swaps, 2);
    EXPECT_EQ (fadeDowns, 2);
    EXPECT_EQ (rig.counter.latencyChanges, 2);
    EXPECT_FALSE (rig.dsp->isHQActive());
    EXPECT_EQ (rig.dsp->getCurrentLatency(), 16u);
    EXPECT_EQ (rig.dsp->latencyToReport(), 16u);
}

TEST (HVNPublicDSP, BypassOfTheStandInIsSeamless)
{
    Rig rig (block, rate, 2, 2, false);
    for (int b = 0; b < 60; ++b)
    {
        rig.run ({{MasterOnOff, b < 10 || b > 40 ? 1.0f : 0.0f}});
        for (uint32_t i = 0; i < block; ++i)
            ASSERT_NEAR (rig.out.channel (0)[i], rig.delayedInput (i, 16), 1e-6f) << b << ":" << i;
    }
}

TEST (HVNPublicDSP, MasterOffCrossfadesToTheDrySignalAtTheReportedLatency)
{
    Rig rig (block, rate, 2, 2, false, 0.5f);
    for (int b = 0; b < 5; ++b)
        rig.run ({{MasterOnOff, 1.0f}});
    EXPECT_EQ (rig.out.channel (0)[10], 0.5f * rig.delayedInput (10, 16));

    rig.run ({{MasterOnOff, 0.0f}});
    bool mixed = false;
    for (int b = 0; b < fadeBlocks; ++b)
    {
        for (uint32_t i = 0; i < block; ++i)
        {
            const float dry = rig.delayedInput (i, 16), o = rig.out.channel (1)[i];
            ASSERT_LE (std::abs (o), std::abs (dry) + 1e-6f);
            ASSERT_GE (std::abs (o), 0.5f * std::abs (dry) - 1e-6f);
            mixed |= std::abs (o - dry) > 1e-3f && std::abs (o - 0.5f * dry) > 1e-3f;
        }
        rig.run ({{MasterOnOff, 0.0f}});
    }
    EXPECT_TRUE (mixed);
    const uint32_t latency = rig.dsp->latencyToReport();
    for (uint32_t i = 0; i < block; ++i)
        ASSERT_EQ (rig.out.channel (0)[i], rig.delayedInput (i, latency));
}

TEST (HVNPublicDSP, BypassSleepsAfterFiveSecondsAndWakesWithOneDryBlock)
{
    double now = 100.0;
    Rig rig (block, rate, 2, 2, false, 0.5f, &now);
    rig.run ({{MasterOnOff, 1.0f}});
    rig.run ({{MasterOnOff, 0.0f}});
    for (int b = 0; b < fadeBlocks; ++b)
        rig.run ({{MasterOnOff, 0.0f}});
    EXPECT_EQ (rig.dsp->getBypass().getState(), HVNBypassFader::running);

    now += 5.5;
    rig.run ({{MasterOnOff, 0.0f}});
    EXPECT_EQ (rig.dsp->getBypass().getState(), HVNBypassFader::asleep);

    rig.run ({{MasterOnOff, 1.0f}});
    EXPECT_EQ (rig.dsp->getBypass().getState(), HVNBypassFader::running);
    for (uint32_t i = 0; i < block; ++i)
        ASSERT_EQ (rig.out.channel (0)[i], rig.delayedInput (i, 16));

    rig.run ({{MasterOnOff, 1.0f}});
    EXPECT_NE (rig.out.channel (0)[block - 1], rig.delayedInput (block - 1, 16));
    for (int b = 0; b < fadeBlocks; ++b)
        rig.run ({{MasterOnOff, 1.0f}});
    EXPECT_EQ (rig.out.channel (0)[5], 0.5f * rig.delayedInput (5, 16));
}

TEST (HVNPublicDSP, MonoInputFeedsBothOutputsAndForcesTheStereoLink)
{
    Rig rig (block, rate, 1, 2, false);
    rig.run ({{CompStereoLink, 0.0f}});
    EXPECT_EQ (rig.dsp->getCurrentDSP()->parameterValue (CompStereoLink), 1.0f);
    for (int b = 0; b < 3; ++b)
        rig.run();
    EXPECT_EQ (rig.out.channel (1)[3], rig.delayedInput (3, 16));
    EXPECT_EQ (rig.out.channel (0)[3], rig.delayedInput (3, 16));

    Rig mono (block, rate, 1, 1, false);
    mono.dsp->setParameter (CompStereoLink, 1.0f, false);
    EXPECT_EQ (mono.dsp->getCurrentDSP()->parameterValue (CompStereoLink), 0.0f);
}

TEST (HVNPublicDSP, ParameterRecordsFollowTheDeliveries)
{
    Rig rig (block, rate, 2, 2, false);
    auto& dsp = *rig.dsp;
    dsp.setParameter (InputGain, 3.14159f, true);
    const auto& record = dsp.getCurrentDSP()->parameters[InputGain];
    EXPECT_NEAR (record.value, 3.1f, 1e-5f);
    EXPECT_EQ (record.previousValue, record.value); // first value: no history
    EXPECT_FALSE (record.uninitialised);

    rig.run();
    EXPECT_FALSE (record.changed);
    dsp.setParameter (InputGain, -2.0f, false);
    EXPECT_TRUE (record.changed);
    EXPECT_NEAR (record.previousValue, 3.1f, 1e-5f);
    dsp.setParameter (CompressionAmount, 150.0f, true);
    EXPECT_EQ (dsp.getCurrentDSP()->parameterValue (CompressionAmount), 100.0f);
    rig.run();
    EXPECT_EQ (record.previousValue, -2.0f);
}

TEST (HVNPublicDSP, TransportStartResetsPhasesAndOptionallyTheDSP)
{
    Rig rig (block, rate, 2, 2, false);
    auto probe = [&] { return static_cast<ProbeDSP*> (rig.dsp->getCurrentDSP().get()); };
    rig.dsp->updateTransport (false, 0.0, 120.0, 0.0, 12);
    rig.run();
    EXPECT_EQ (probe()->phaseResets, 0);
    EXPECT_EQ (probe()->transport.frameRate, 99);
    EXPECT_TRUE (probe()->transport.tempoChanged);

    rig.dsp->updateTransport (true, 4.0, 120.0, 2.0, 3);
    EXPECT_TRUE (probe()->transport.playingChanged);
    EXPECT_FALSE (probe()->transport.tempoChanged);
    EXPECT_EQ (probe()->transport.frameRate, 3);
    rig.run();
    EXPECT_EQ (probe()->phaseResets, 1);
    EXPECT_TRUE (probe()->transport.wasPlaying);
    rig.dsp->updateTransport (true, 5.0, 120.0, 2.1, 3);
    rig.run();
    EXPECT_EQ (probe()->phaseResets, 1);
    EXPECT_EQ (probe()->resets, 0);

    rig.dsp->setResetOnTransportStart (true);
    rig.dsp->updateTransport (false, 5.0, 120.0, 2.1, 3);
    rig.run();
    rig.dsp->updateTransport (true, 5.0, 120.0, 2.1, 3);
    EXPECT_EQ (probe()->resets, 1);
}

TEST (HVNPublicDSP, ProcessingNeverAllocatesEvenAcrossHQSwaps)
{
    Rig rig (block, rate, 2, 2, false);
    runUntilSettled (rig, 0.0f, 0); // the spare is gone: the next toggle rebuilds
    rig.dsp->updateTransport (true, 0.0, 120.0, 0.0, 0);

    AllocationCounter counter;
    int b = 0;
    for (; b < 20000 && rig.counter.swaps < 2; ++b)
    {
        const float wiggle = static_cast<float> (b % 2);
        for (uint32_t index = 0; index < HVNAbstractDSP::numParameters; ++index)
            if (index != HQMode)
                rig.dsp->setParameter (index, wiggle, b % 3 == 0);
        rig.dsp->updateTransport (true, b * 0.1, 120.0 + wiggle, b * 0.01, 0);
        rig.run ({{HQMode, rig.counter.swaps == 0 ? 1.0f : 0.0f}});
        if (rig.dsp->getSwapFadeValue() == 0.0f)
            std::this_thread::sleep_for (std::chrono::milliseconds (1));
    }
    const auto allocations = counter.allocations(), deallocations = counter.deallocations();
    EXPECT_EQ (rig.counter.swaps, 2);
    EXPECT_EQ (allocations, 0u);
    EXPECT_EQ (deallocations, 0u);
}

TEST (HVNPublicDSP, ResetWaitsForTheWorkerAndCompletesTheSwap)
{
    Rig rig (block, rate, 2, 2, false, 1.0f, nullptr, 150);
    runUntilSettled (rig, 0.0f, 0);
    EXPECT_EQ (rig.buildsFinished, 2);

    rig.run ({{HQMode, 1.0f}}); // posts a slow rebuild
    rig.dsp->reset();
    EXPECT_EQ (rig.buildsFinished, 3);
    EXPECT_TRUE (rig.dsp->isHQActive()); // no wait for silence after a reset
    EXPECT_EQ (rig.counter.swaps, 1);
    EXPECT_EQ (rig.dsp->getSwapFadeValue(), 1.0f);
}

TEST (HVNPublicDSP, MasterOffInHQKeepsTheConvertersRunningAndTheDryPathAligned)
{
    Rig rig (block, rate, 2, 2, true, 0.5f);
    for (int b = 0; b < 10; ++b)
        rig.run ({{HQMode, 1.0f}, {MasterOnOff, 1.0f}});
    ASSERT_EQ (rig.dsp->latencyToReport(), hqLatency);
    EXPECT_NEAR (rig.out.channel (0)[7], 0.5f * rig.delayedInput (7, hqLatency), converted);

    for (int b = 0; b < 3 * fadeBlocks; ++b)
        rig.run ({{HQMode, 1.0f}, {MasterOnOff, 0.0f}});
    for (uint32_t i = 0; i < block; ++i)
        ASSERT_EQ (rig.out.channel (1)[i], rig.delayedInput (i, hqLatency));

    // Back on, the wet path fades in with no start-up transient: the converters
    // kept their history while the dry signal was heard.
    for (int b = 0; b < fadeBlocks; ++b)
    {
        rig.run ({{HQMode, 1.0f}, {MasterOnOff, 1.0f}});
        for (uint32_t i = 0; i < block; ++i)
        {
            const float dry = rig.delayedInput (i, hqLatency), o = rig.out.channel (0)[i];
            ASSERT_LE (std::abs (o), std::abs (dry) + converted) << b << ":" << i;
            ASSERT_GE (std::abs (o), 0.5f * std::abs (dry) - converted) << b << ":" << i;
        }
    }
}
