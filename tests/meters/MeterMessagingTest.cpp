#include "meters/MeterMessaging.h"

#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{
using BufferMeter = SharedMeterTypes::HVNAudioBufferMeter<double>;
using Point = SharedMeterTypes::DataPoint<float>;

struct Received
{
    std::vector<float> points;
    std::vector<double> firstSamples;
    std::vector<uint32_t> frames;
};

struct Channel
{
    MeterMessaging messaging{46};
    Received received;
    HVNAudioBuffer<double> block{2, 64};

    Channel()
    {
        messaging.addStore (MeterMessaging::gainReductionId, Point(),
                            [this] (const MeterData& d)
                            { received.points.push_back (static_cast<const Point&> (d).value); });
        messaging.addStore (MeterMessaging::inputLevelId, BufferMeter (2, 64),
                            [this] (const MeterData& d)
                            {
                                const auto& m = static_cast<const BufferMeter&> (d);
                                received.firstSamples.push_back (m.buffer->channel (1)[0]);
                                received.frames.push_back (m.frames);
                            });
    }

    void writeBlock (double first, uint32_t frames = 64)
    {
        block.channel (0)[0] = first;
        block.channel (1)[0] = first;
        messaging.writeBuffer (MeterMessaging::inputLevelId, block, frames);
    }
};
} // namespace

TEST (MeterMessaging, DeliversEveryRecordInOrder)
{
    Channel ch;
    for (int i = 0; i < 10; ++i)
        ch.messaging.writePoint (static_cast<float> (i));
    ch.writeBlock (3.0, 17);
    ch.messaging.poll();
    ASSERT_EQ (ch.received.points.size(), 10u);
    EXPECT_EQ (ch.received.points[9], 9.0f);
    ASSERT_EQ (ch.received.frames.size(), 1u);
    EXPECT_EQ (ch.received.frames[0], 17u);
    EXPECT_EQ (ch.received.firstSamples[0], 3.0);
    EXPECT_TRUE (ch.messaging.getStore (MeterMessaging::gainReductionId)->isEmpty());
}

TEST (MeterMessaging, CapacityOf46HoldsFortyFiveThenOverflows)
{
    Channel ch;
    for (int i = 0; i < 45; ++i)
        ch.messaging.writePoint (static_cast<float> (i));
    EXPECT_FALSE (ch.messaging.hasOverflowed());
    EXPECT_EQ (ch.messaging.getStore (MeterMessaging::gainReductionId)->size(), 45u);

    ch.messaging.writePoint (99.0f);
    EXPECT_TRUE (ch.messaging.hasOverflowed());
    EXPECT_EQ (ch.messaging.getStore (MeterMessaging::gainReductionId)->size(), 45u);

    // After an overflow only the newest record of the store comes through.
    ch.messaging.poll();
    ASSERT_EQ (ch.received.points.size(), 1u);
    EXPECT_EQ (ch.received.points[0], 44.0f);
    EXPECT_TRUE (ch.messaging.getStore (MeterMessaging::gainReductionId)->isEmpty());
    EXPECT_FALSE (ch.messaging.hasOverflowed());
}

TEST (MeterMessaging, OverflowOnOneIdSkipsTheBacklogOfAll)
{
    Channel ch;
    for (int i = 0; i < 5; ++i)
        ch.writeBlock (static_cast<double> (i));
    for (int i = 0; i < 46; ++i)
        ch.messaging.writePoint (static_cast<float> (i));
    ch.messaging.poll();
    ASSERT_EQ (ch.received.firstSamples.size(), 1u);
    EXPECT_EQ (ch.received.firstSamples[0], 4.0);
    EXPECT_EQ (ch.received.points.size(), 1u);

    // The next round is normal again.
    ch.writeBlock (7.0);
    ch.writeBlock (8.0);
    ch.messaging.poll();
    EXPECT_EQ (ch.received.firstSamples.size(), 3u);
}

TEST (MeterMessaging, DisabledIdsAreIgnoredWithoutOverflow)
{
    Channel ch;
    ch.messaging.clear();
    for (int i = 0; i < 100; ++i)
        ch.writeBlock (1.0);
    EXPECT_FALSE (ch.messaging.hasOverflowed());
    EXPECT_TRUE (ch.messaging.getStore (MeterMessaging::inputLevelId)->isEmpty());

    MeterMessaging fresh (46);
    HVNAudioBuffer<double> block (1, 8);
    fresh.writeBuffer (MeterMessaging::detectorId, block, 8); // no store at all
    fresh.writePoint (1.0f);
    fresh.poll();
    EXPECT_FALSE (fresh.hasOverflowed());
}

TEST (MeterMessaging, SizeCountsAcrossTheWrap)
{
    AtomicFIFODataStore<Point> store (46, Point());
    for (int i = 0; i < 40; ++i)
    {
        store.slotToWrite()->value = 0.0f;
        store.publish();
        store.popFront();
    }
    for (int i = 0; i < 9; ++i)
    {
        store.slotToWrite()->value = static_cast<float> (i);
        store.publish();
    }
    EXPECT_EQ (store.size(), 9u); // readIndex 40, writeIndex 3
    EXPECT_EQ (static_cast<const Point*> (store.front())->value, 0.0f);
}

TEST (MeterMessaging, WritersNeverAllocate)
{
    Channel ch;
    AllocationCounter counter;
    for (int i = 0; i < 60; ++i)
    {
        ch.writeBlock (1.0);
        ch.messaging.writePoint (1.0f);
    }
    EXPECT_EQ (counter.allocations(), 0u);
    EXPECT_EQ (counter.deallocations(), 0u);
}
