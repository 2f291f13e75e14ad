#include "dsp/generated/HVNCompressorTables.h"

#include <gtest/gtest.h>

#include <cmath>

namespace T = HVNCompressorTables;

TEST (HVNCompressorTables, HoldTheTuningsAnchorValues)
{
    EXPECT_EQ (T::thresholdDb[0], -62.248010);
    EXPECT_EQ (T::makeupDb[20], 29.759370);
    EXPECT_EQ (T::gain[0][1], 0.562);
    EXPECT_EQ (T::gain[5][20], 12.643);
    EXPECT_EQ (T::gain[10][63], 26.322);
    EXPECT_EQ (T::gain[18][63], 51.394);
    EXPECT_EQ (T::gain[20][50], 40.923);
    EXPECT_EQ (T::timeA[0][3], -0.3210);
    EXPECT_EQ (T::timeA[10][16], -0.1721);
    EXPECT_EQ (T::timeB[20][22], 0.0072);
    EXPECT_EQ (T::timeC[10][15], 5.8948);
    EXPECT_EQ (T::timeC[20][0], 8.3783);
}

TEST (HVNCompressorTables, KeepTheirShape)
{
    for (uint32_t r = 0; r < T::rows; ++r)
    {
        EXPECT_EQ (T::gain[r][0], 0.0);
        // More overshoot never means less reduction, and the interpolation
        // adds no bumps of its own.
        for (uint32_t o = 1; o < T::gainColumns; ++o)
            ASSERT_GE (T::gain[r][o], T::gain[r][o - 1]) << r << ":" << o;
        for (uint32_t q = 1; q <= 7; ++q)
        {
            EXPECT_EQ (T::timeA[r][q], T::timeA[r][0]);
            EXPECT_EQ (T::timeB[r][q], T::timeB[r][0]);
            EXPECT_EQ (T::timeC[r][q], T::timeC[r][0]);
        }
    }
    for (uint32_t o = 0; o < T::gainColumns; ++o)
    {
        EXPECT_NEAR (T::gain[19][o], T::gain[18][o], 0.01);
        EXPECT_NEAR (T::gain[19][o], T::gain[20][o], 0.01);
        // Between anchor rows a value stays within its neighbours.
        EXPECT_GE (T::gain[1][o], std::min (T::gain[0][o], T::gain[2][o]) - 1e-12);
        EXPECT_LE (T::gain[1][o], std::max (T::gain[0][o], T::gain[2][o]) + 1e-12);
    }
    // Low rows saturate near 12 dB, the top keeps rising past 50.
    EXPECT_LT (T::gain[0][63] - T::gain[0][50], 0.5);
    EXPECT_GT (T::gain[20][63], 50.0);
}
