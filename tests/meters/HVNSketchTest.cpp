#include "meters/HVNGRHistory.h"
#include "meters/HVNLEDMeter.h"
#include "meters/HVNLevelMeter.h"
#include "meters/HVNZC1TRQSketch.h"
#include "meters/MeterMessaging.h"
#include "meters/SharedMeterTypes.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{
SharedMeterTypes::DataPoint<float> point (float v)
{
    SharedMeterTypes::DataPoint<float> p;
    p.value = v;
    return p;
}
} // namespace

TEST (HVNSketch, UnknownDrawingIdIsAnError)
{
    EXPECT_THROW (HVNLevelMeter (9, -60.0f, 0.0f), std::out_of_range);
}

TEST (HVNLevelMeter, PeakInDecibelsClampedToTheRange)
{
    HVNLevelMeter meter (0, -60.0f, 0.0f);
    SharedMeterTypes::HVNAudioBufferMeter<double> record (2, 8);
    record.frames = 8;
    record.buffer->channel (1)[3] = -0.5;
    meter.setLevelFromBuffer (record);
    EXPECT_NEAR (meter.target, -6.0206f, 1e-3f);
    record.buffer->channel (1)[3] = 0.0; // silence: log of zero, clamped
    meter.setLevelFromBuffer (record);
    EXPECT_FLOAT_EQ (meter.target, -60.0f);
    record.buffer->channel (0)[0] = std::nan ("");
    meter.setLevelFromBuffer (record);
    EXPECT_FLOAT_EQ (meter.target, -60.0f);
}

TEST (HVNLevelMeter, AttackCoversMostOfAStepInOneFrame)
{
    HVNLevelMeter meter (0, -60.0f, 0.0f);
    meter.target = 0.0f;
    meter.update (1.0f / 60.0f, 0.0);
    const float covered = (meter.displayed + 60.0f) / 60.0f;
    EXPECT_NEAR (covered, 1.0f - std::exp (-1000.0f / 60.0f / 10.0f), 1e-4f);
    EXPECT_NEAR (covered, 0.81f, 0.01f);
}

TEST (HVNLEDMeter, BrightnessFollowsTheSquareOfTheLevel)
{
    HVNLEDMeter led (3, -60.0f, 0.0f);
    led.smoothing = false;
    led.target = -30.0f;
    led.update (0.01f, 0.0);
    EXPECT_FLOAT_EQ (led.position, 0.25f);
}

TEST (HVNGRHistory, ScrollsWholeColumnsAndCarriesTheRest)
{
    HVNGRHistory history (2, -32.0f);
    history.columns = 200;
    history.history.assign (200, 0.0f);
    history.xPositions.assign (200, 0.0f);
    history.yPositions.assign (200, 0.0f);
    history.setValue (point (-12.0f), true, 10.0);
    history.update (1.0f / 60.0f, 10.0);
    EXPECT_NEAR (history.fraction, 0.2222, 1e-3);
    EXPECT_LT (history.history[0], 0.0f);
    EXPECT_LT (history.history[1], 0.0f);
    EXPECT_FLOAT_EQ (history.history[2], 0.0f);
}

TEST (HVNGRHistory, WithoutDataItFallsBackSlowly)
{
    HVNGRHistory fresh (2, -32.0f), stale (2, -32.0f);
    fresh.smoothed = stale.smoothed = -12.0f;
    fresh.setValue (point (0.0f), true, 10.0);
    stale.setValue (point (0.0f), true, 9.0);
    fresh.update (0.05f, 10.0);
    stale.update (0.05f, 10.0);
    EXPECT_NEAR (fresh.smoothed, -12.0f * std::exp (0.05f * -30.003f), 1e-4f);
    EXPECT_NEAR (stale.smoothed, -12.0f * std::exp (0.05f * -30.003f * 0.2f), 1e-4f);
}

TEST (HVNGRHistory, FloorStaysWithinItsLimits)
{
    HVNGRHistory history (2, -32.0f);
    for (int i = 0; i < 600; ++i)
        history.update (1.0f / 60.0f, 0.0);
    EXPECT_FLOAT_EQ (history.floorDb, -12.0f);
    history.setValue (point (-40.0f), false, 100.0);
    for (int i = 0; i < 600; ++i)
        history.update (1.0f / 60.0f, 100.0 + i / 60.0);
    EXPECT_GE (history.floorDb, -48.0f);
    EXPECT_LE (history.floorDb, -12.0f);
}

TEST (HVNZC1TRQSketch, ListensOnAllFourIdsUntilCleared)
{
    MeterMessaging messaging (4);
    {
        HVNZC1TRQSketch sketch (messaging, 2, 2, 64);
        for (uint32_t id = 0; id < MeterMessaging::meterCount; ++id)
            EXPECT_TRUE (messaging.isEnabled (id));
        HVNAudioBuffer<double> block (2, 64);
        block.channel (0)[5] = 0.5;
        messaging.writeBuffer (MeterMessaging::inputLevelId, block, 64);
        messaging.writePoint (-6.0f);
        messaging.poll();
        EXPECT_NEAR (sketch.inputMeter().target, -6.02f, 0.01f);
        EXPECT_FLOAT_EQ (sketch.history().latest, -6.0f);
        messaging.clear();
    }
    // The sketch is gone; records arriving now reach nobody.
    HVNAudioBuffer<double> block (2, 64);
    messaging.writeBuffer (MeterMessaging::inputLevelId, block, 64);
    messaging.poll();
}
