#include "dsp/generated/HVNLoFiTables.h"
#include "dsp/HVNShaper.h"
#include "toolkit/vHVN.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{
double shaped (double x)
{
    double y = 0.0;
    HVNShaper::shape (&x, &y, 1);
    return y;
}

// A response read the way the analog stage reads it, at one frequency.
double responseAt (const double* table, uint32_t entries, double hz)
{
    double y = 0.0;
    vHVN_vTableLookup (&hz, 0.0, 96000.0, 0.0, 8192.0, table, entries, &y, 1);
    return y;
}
} // namespace

TEST (HVNLoFiTables, ShaperIsAnOddSoftClipperThroughItsMeasuredPoints)
{
    using namespace HVNLoFiTables;
    ASSERT_EQ (shaperSize, 2047u);
    EXPECT_EQ (shaper[1023], 0.0);
    EXPECT_EQ (shaper[2046], 1.04612836847005);
    for (uint32_t i = 0; i < shaperSize; ++i)
        ASSERT_EQ (shaper[i], -shaper[2046 - i]) << i;
    for (uint32_t i = 1; i < shaperSize; ++i)
        ASSERT_GT (shaper[i], shaper[i - 1]) << i;
    for (double x = 0.0; x < 0.5; x += 0.01)
        ASSERT_NEAR (shaped (x), x, 1e-12) << x;

    const double points[][2] = {{0.5005, 0.500489}, {0.7507, 0.750652}, {0.8759, 0.873858},
                                {1.0, 0.975524},    {1.0499, 1.001942}, {1.1281, 1.024962},
                                {1.2512, 1.038914}, {1.5015, 1.045044}, {2.0, 1.04612836847005}};
    for (const auto& p : points)
    {
        EXPECT_NEAR (shaped (p[0]), p[1], 5e-5) << p[0];
        EXPECT_NEAR (shaped (-p[0]), -p[1], 5e-5) << p[0];
    }
    EXPECT_EQ (shaped (7.0), 1.04612836847005);
    EXPECT_EQ (shaped (-7.0), -1.04612836847005);
}

TEST (HVNLoFiTables, ResponsesStartAtZeroAndPassTheirMeasuredPoints)
{
    using namespace HVNLoFiTables;
    struct Case
    {
        const double* table;
        uint32_t size, wantedSize;
        double db[6]; // 1, 5, 10, 15, 20 kHz and the last entry
    };
    const Case cases[] = {{responseA, responseASize, 1806, {0.0, 0.14, -2.67, -14.0, -39.74, -60.12}},
                          {responseB, responseBSize, 1713, {0.0, -1.92, -13.11, -26.31, -54.22, -61.85}},
                          {responseBase, responseBaseSize, 3029, {-1.35, -1.5, -2.04, -4.74, -16.73, -45.0}}};
    for (const auto& c : cases)
    {
        ASSERT_EQ (c.size, c.wantedSize);
        EXPECT_EQ (c.table[0], 0.0);
        const double hz[] = {1000.0, 5000.0, 10000.0, 15000.0, 20000.0};
        for (int k = 0; k < 5; ++k)
            EXPECT_NEAR (responseAt (c.table, c.size, hz[k]), c.db[k], 0.05) << c.size << " at " << hz[k];
        EXPECT_EQ (c.table[c.size - 1], c.db[5]);
        // Past its end a table holds its last value.
        EXPECT_EQ (responseAt (c.table, c.size, 48000.0), c.db[5]);
    }
}
