#include "toolkit/HVNCircularBuffer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace
{
// Writes count consecutive numbers starting at next, on both channels (the second negated).
bool writeRun (HVNCircularBuffer<float>& ring, float& next, uint32_t count)
{
    std::vector<float> a (count), b (count);
    for (uint32_t i = 0; i < count; ++i)
    {
        a[i] = next + static_cast<float> (i);
        b[i] = -a[i];
    }
    const float* sources[2] = {a.data(), b.data()};
    const bool written = ring.write (sources, 0, count);
    if (written)
        next += static_cast<float> (count);
    return written;
}
} // namespace

TEST (HVNCircularBuffer, WriteOfExactlyTheCapacityWrapsToZero)
{
    HVNCircularBuffer<float> ring (2, 16, false);
    float next = 1.0f;
    ASSERT_TRUE (writeRun (ring, next, 16));
    EXPECT_EQ (ring.getWritePosition(), 0u);
    EXPECT_EQ (ring.getLastWritePosition(), 0u);
    EXPECT_EQ (ring.fill(), 16u);

    // Full, without overwrite: refused, nothing changes.
    EXPECT_FALSE (writeRun (ring, next, 4));
    EXPECT_EQ (ring.fill(), 16u);
    EXPECT_EQ (ring.getReadPosition(), 0u);
    EXPECT_EQ (ring.lane (0)[0], 1.0f);
}

TEST (HVNCircularBuffer, OverwriteRingDropsTheOldest)
{
    HVNCircularBuffer<float> ring (2, 16, true);
    EXPECT_EQ (ring.fill(), 16u); // starts full of silence
    EXPECT_EQ (ring.lane (1)[20], 0.0f);

    float next = 1.0f;
    ASSERT_TRUE (writeRun (ring, next, 16));
    ASSERT_TRUE (writeRun (ring, next, 4));
    EXPECT_EQ (ring.fill(), 16u);
    EXPECT_EQ (ring.getReadPosition(), 4u);
    // The oldest sample kept is number 5, at the read position.
    EXPECT_EQ (ring.lane (0)[ring.getReadPosition()], 5.0f);
}

TEST (HVNCircularBuffer, AnySpanReadsWithoutASeam)
{
    const uint32_t capacity = 23;
    HVNCircularBuffer<float> ring (2, capacity, true);
    float next = 1.0f;
    const uint32_t runs[] = {5, 1, 17, 23, 9, 22, 3, 11, 7, 23, 2};
    for (uint32_t count : runs)
    {
        ASSERT_TRUE (writeRun (ring, next, count));
        ASSERT_LT (ring.getWritePosition(), capacity);

        for (uint32_t c = 0; c < 2; ++c)
            for (uint32_t k = 0; k < capacity; ++k)
                ASSERT_EQ (ring.lane (c)[k], ring.lane (c)[k + capacity]) << "mirror broken at " << k;

        // The ring holds the newest capacity numbers, oldest at the read position.
        const float* span = ring.lane (0) + ring.getReadPosition();
        const float oldest = next - static_cast<float> (capacity);
        for (uint32_t k = 0; k < capacity; ++k)
        {
            if (oldest + static_cast<float> (k) >= 1.0f)
            {
                ASSERT_EQ (span[k], oldest + static_cast<float> (k));
            }
        }
        EXPECT_EQ (ring.lane (1)[ring.getReadPosition() + capacity - 1], -(next - 1.0f));
    }
}

TEST (HVNCircularBuffer, PositionBeforeLastWriteGivesADelayedSpan)
{
    HVNCircularBuffer<float> ring (2, 20, true);
    float next = 1.0f;
    for (int block = 0; block < 7; ++block)
    {
        ASSERT_TRUE (writeRun (ring, next, 8));
        const float* delayed = ring.lane (0) + ring.positionBeforeLastWrite (5);
        const float firstOfBlock = next - 8.0f;
        for (uint32_t i = 0; i < 8; ++i)
        {
            const float expected = firstOfBlock + static_cast<float> (i) - 5.0f;
            ASSERT_EQ (delayed[i], expected < 1.0f ? 0.0f : expected);
        }
    }
}

TEST (HVNCircularBuffer, SilenceAndReadAdvance)
{
    HVNCircularBuffer<double> ring (1, 8, false);
    EXPECT_TRUE (ring.writeSilence (5));
    EXPECT_EQ (ring.fill(), 5u);
    ring.advanceRead (7);
    EXPECT_EQ (ring.fill(), 0u);
    EXPECT_EQ (ring.getReadPosition(), 5u);
    EXPECT_FALSE (ring.writeSilence (9));
}
