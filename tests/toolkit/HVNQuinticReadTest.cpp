#include "toolkit/HVNSIMDTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace hvn_test;

namespace
{
// The six-point read as the wow stage first had it, one sample at a time.
double scalarRead (const double* line, double offset, uint32_t i)
{
    const double whole = std::floor (offset);
    const double x = offset - whole;
    const double* t = line + static_cast<int64_t> (whole) + i;
    const double a = t[-2], b = t[-1], c = t[0], d = t[1], e = t[2], g = t[3];
    const double c1 = 16.0 * (d - b) + 2.0 * (a - e);
    const double c2 = 16.0 * (d + b) - a - 30.0 * c - e;
    const double c3 = 66.0 * d - 70.0 * c - 33.0 * e + 39.0 * b + 7.0 * g - 9.0 * a;
    const double c4 = 126.0 * c - 124.0 * d + 61.0 * e - 64.0 * b - 12.0 * g + 13.0 * a;
    const double c5 = 50.0 * (d - c) + 25.0 * (b - e) + 5.0 * (g - a);
    return c + x * 0.04166666666 * (c1 + x * (c2 + x * (c3 + x * (c4 + x * c5))));
}
} // namespace

// Every member gives the scalar formula's bits, reads no tap outside k - 2 to
// k + 3 and writes nothing past the count, aligned or not.
TEST (HVNQuinticRead, EveryMemberMatchesTheScalarFormulaBitForBit)
{
    constexpr uint32_t lineLength = 6000;
    std::vector<double> line (lineLength);
    std::mt19937 random (7);
    std::uniform_real_distribution<double> sample (-1.0, 1.0);
    for (double& x : line)
        x = sample (random);

    for (const Member& m : runnableMembers())
        for (uint32_t n : testCounts())
            for (uint32_t misalign : {0u, 1u})
            {
                // Whole, fractional and slowly gliding positions, as the wow's are;
                // the read of sample i reaches i + offset + 3 at most.
                Guarded<double> offsets (n, misalign), out (n, misalign);
                std::uniform_real_distribution<double> position (2.0, 1500.0);
                for (uint32_t i = 0; i < n; ++i)
                    offsets[i] = i % 7 == 3 ? std::floor (position (random)) : position (random);
                m.kernels->quinticReadD (line.data(), offsets.data(), out.data(), n);
                for (uint32_t i = 0; i < n; ++i)
                {
                    const double expected = scalarRead (line.data(), offsets[i], i);
                    ASSERT_TRUE (Guarded<double>::same (out[i], expected))
                        << m.name << " n " << n << " i " << i << ": " << out[i] << " vs " << expected;
                }
                ASSERT_TRUE (out.guardsIntact()) << m.name << " n " << n;
            }
}

TEST (HVNQuinticRead, PassesThroughTheSamplesAtWholePositions)
{
    std::vector<double> line (64);
    for (uint32_t i = 0; i < line.size(); ++i)
        line[i] = std::sin (0.3 * i);
    for (const Member& m : runnableMembers())
    {
        std::vector<double> offsets (16, 10.0), out (16);
        m.kernels->quinticReadD (line.data(), offsets.data(), out.data(), 16);
        for (uint32_t i = 0; i < 16; ++i)
            EXPECT_NEAR (out[i], line[10 + i], 1e-15) << m.name;
    }
}
