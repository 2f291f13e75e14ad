#include "dsp/HVNAbstractDSP.h"

#include <gtest/gtest.h>

#include <string>

namespace
{
class CountingDSP : public HVNAbstractDSP
{
public:
    CountingDSP (uint32_t factor)
        : HVNAbstractDSP (256, 44100.0 * (factor ? factor : 1), 2, 2, 0, factor)
        , smooth (256, &sampleRate, &resetCallbacks)
    {
        setLatency (7);
        setLatency (9); // later writes keep the first
    }

    void process (const HVNAudioBuffer<float>&, HVNAudioBuffer<float>&, const HVNAudioBuffer<float>&,
                  uint32_t, bool) override
    {
    }
    void resetPhases() override { order += smooth.willJump() ? "P" : "p"; }

    HVNEasingFloat<double> smooth;
    std::string order;
};
} // namespace

TEST (HVNAbstractDSP, StartsWithEveryParameterChangedAtItsStartValue)
{
    CountingDSP dsp (0);
    const float expected[21] = {1, 0, 50, 15, 50, 0, 100, 1, 1, 1, 100, 0, 0, 0, 0, 0, 0, -18, 0, 0, 0};
    for (uint32_t i = 0; i < 21; ++i)
    {
        EXPECT_EQ (dsp.parameterValue (i), expected[i]) << i;
        EXPECT_TRUE (dsp.parameterChanged (i));
        EXPECT_TRUE (dsp.parameters[i].uninitialised);
    }
    EXPECT_TRUE (dsp.transport.playingChanged);
    EXPECT_TRUE (dsp.transport.tempoChanged);
    EXPECT_FALSE (dsp.transport.isPlaying);
    EXPECT_EQ (dsp.transport.frameRate, 99);
    EXPECT_EQ (dsp.meterMessaging->getRecordsPerStore(), 46u);
    EXPECT_EQ (dsp.meterValues.size(), 1u);
    EXPECT_EQ (dsp.getNumParameters(), 21u);
}

TEST (HVNAbstractDSP, BaseFiguresUndoTheFactor)
{
    CountingDSP host (0), high (4);
    EXPECT_FALSE (host.isUpsampled);
    EXPECT_EQ (host.baseBlockSize, 256u);
    EXPECT_TRUE (high.isUpsampled);
    EXPECT_EQ (high.baseBlockSize, 64u);
    EXPECT_EQ (high.baseSampleRate, 44100.0);
    EXPECT_EQ (high.getLatencySamples(), 7u);
}

TEST (HVNAbstractDSP, ResetRunsTheCallbacksThenResetPhases)
{
    CountingDSP dsp (0);
    dsp.reset();
    EXPECT_EQ (dsp.order, "P"); // the easing was told to jump before resetPhases ran
}

TEST (HVNAbstractDSP, ChannelCodesNeverGrow)
{
    CountingDSP dsp (0);
    dsp.setChannelCodes ({1, 2, 3});
    ASSERT_EQ (dsp.channelCodes.size(), 2u);
    EXPECT_EQ (dsp.channelCodes[1], 2);
    dsp.setChannelCodes ({5});
    EXPECT_EQ (dsp.channelCodes[1], 0);
}
