#include "toolkit/HVNAudioBuffer.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace
{
template<typename T>
void fillChannel (HVNAudioBuffer<T>& b, uint32_t c, T base)
{
    for (uint32_t i = 0; i < b.frames(); ++i)
        b.channel (c)[i] = base + static_cast<T> (i);
}
} // namespace

TEST (HVNAudioBuffer, EveryChannelStartsOnA32ByteBoundary)
{
    HVNAudioBuffer<float> b (3, 13);
    EXPECT_EQ (b.stride(), 16u);
    for (uint32_t c = 0; c < 3; ++c)
        EXPECT_EQ (reinterpret_cast<std::uintptr_t> (b.channel (c)) % 32, 0u);
    HVNAudioBuffer<double> d (2, 9);
    EXPECT_EQ (d.stride(), 16u);
    EXPECT_EQ (reinterpret_cast<std::uintptr_t> (d.channel (1)) % 32, 0u);
}

TEST (HVNAudioBuffer, ResizeLeavesSilenceEvenWhenTheSizeStays)
{
    HVNAudioBuffer<float> b (2, 16);
    fillChannel (b, 0, 1.0f);
    fillChannel (b, 1, 1.0f);
    b.resize (15); // same stride, same total
    for (uint32_t c = 0; c < 2; ++c)
        for (uint32_t i = 0; i < b.stride(); ++i)
            ASSERT_EQ (b.channel (c)[i], 0.0f);
    EXPECT_EQ (b.frames(), 15u);
}

TEST (HVNAudioBuffer, CopyFromFollowsTheChannelRule)
{
    HVNAudioBuffer<float> mono (1, 8), stereo (2, 8), three (3, 8);
    fillChannel (mono, 0, 10.0f);

    stereo.copyFrom (mono, 8);
    EXPECT_EQ (stereo.channel (0)[3], 13.0f);
    EXPECT_EQ (stereo.channel (1)[3], 13.0f);

    fillChannel (three, 0, 100.0f);
    fillChannel (three, 1, 200.0f);
    fillChannel (three, 2, 300.0f);
    stereo.copyFrom (three, 8);
    EXPECT_EQ (stereo.channel (0)[1], 101.0f);
    EXPECT_EQ (stereo.channel (1)[1], 201.0f);

    three.copyFrom (stereo, 4);
    EXPECT_EQ (three.channel (0)[1], 101.0f);
    EXPECT_EQ (three.channel (1)[1], 201.0f);
    EXPECT_EQ (three.channel (2)[1], 301.0f); // left as it was
    EXPECT_EQ (three.channel (0)[5], 105.0f); // beyond count: untouched
}

TEST (HVNAudioBuffer, ConvertFromBroadcastsMonoAcrossTypes)
{
    HVNAudioBuffer<double> mono (1, 4);
    fillChannel (mono, 0, 0.5);
    HVNAudioBuffer<float> stereo (2, 4);
    stereo.convertFrom (mono, 4);
    EXPECT_EQ (stereo.channel (1)[2], 2.5f);

    HVNAudioBuffer<double> back (2, 4);
    back.convertFrom (stereo, 4);
    EXPECT_EQ (back.channel (0)[3], 3.5);
}

TEST (HVNAudioBuffer, ViewClearsOnlyItsOwnChannels)
{
    HVNAudioBuffer<float> b (3, 8);
    for (uint32_t c = 0; c < 3; ++c)
        fillChannel (b, c, 1.0f);
    HVNAudioBuffer<float> view (b, 1, 3);
    ASSERT_EQ (view.channels(), 2u);
    EXPECT_TRUE (view.isView());
    EXPECT_EQ (view.channel (0), b.channel (1));
    view.clear();
    EXPECT_EQ (b.channel (0)[4], 5.0f);
    EXPECT_EQ (b.channel (1)[4], 0.0f);
    EXPECT_EQ (b.channel (2)[4], 0.0f);
}

TEST (HVNAudioBuffer, AssignmentCopiesSamplesNotPointers)
{
    HVNAudioBuffer<float> a (2, 8);
    fillChannel (a, 1, 7.0f);
    HVNAudioBuffer<float> b;
    b = a;
    ASSERT_EQ (b.channels(), 2u);
    EXPECT_NE (b.channel (1), a.channel (1));
    EXPECT_EQ (b.channel (1)[2], 9.0f);

    HVNAudioBuffer<float> view (a, 1, 2);
    HVNAudioBuffer<float> owned (view);
    EXPECT_FALSE (owned.isView());
    EXPECT_EQ (owned.channel (0)[2], 9.0f);
}

TEST (HVNAudioBuffer, PointToHostMemoryUsesTheGivenLength)
{
    float left[5] = {1, 2, 3, 4, 5}, right[5] = {};
    float* host[2] = {left, right};
    HVNAudioBuffer<float> view (2);
    view.pointTo (host, 2, 5);
    EXPECT_EQ (view.frames(), 5u);
    view.channel (1)[4] = 9.0f;
    EXPECT_EQ (right[4], 9.0f);
    view.clear();
    EXPECT_EQ (left[4], 0.0f);
}
