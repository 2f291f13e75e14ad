#include "dsp/HVNConsecMax.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

TEST (HVNConsecMax, MatchesTheNaiveWindowMaximumForAnyWindowAndLength)
{
    std::mt19937 random (11);
    std::uniform_real_distribution<double> value (-1.0, 1.0);
    HVNConsecMax<double> peak (600);
    for (uint32_t window : {1u, 2u, 13u, 14u, 49u, 100u})
        for (uint32_t n : {1u, 7u, 64u, 255u, 500u})
        {
            std::vector<double> in (n + window - 1);
            for (auto& x : in)
                x = value (random);
            peak.process (in.data(), window, n);
            for (uint32_t i = 0; i < n; ++i)
                ASSERT_EQ (peak.getOutput()[i], *std::max_element (in.begin() + i, in.begin() + i + window))
                    << window << "/" << n << "@" << i;
        }
}
