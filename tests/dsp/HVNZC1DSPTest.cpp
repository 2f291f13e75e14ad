#include "dsp/ChainTestSupport.h"
#include "dsp/HVNParameterIndex.h"
#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <random>

using namespace HVNParameterIndex;

TEST (HVNZC1DSP, BlockSizesDoNotChangeTheOutput)
{
    const double rate = 48000.0;
    auto input = [] (uint32_t c, long t)
    {
        const double env = 0.5 + 0.45 * std::sin (t * 0.0007);
        return static_cast<float> (env * std::sin (t * (0.031 + 0.01 * c)) + 0.1 * std::sin (t * 0.0021));
    };
    const long length = 24000;
    auto reference = ChainRunner (512, rate).run (length, input);

    std::mt19937 random (3);
    for (uint32_t size : {1u, 17u, 0u})
    {
        ChainRunner runner (512, rate);
        auto next = [&]() -> uint32_t { return size != 0 ? size : 1 + random() % 512; };
        auto out = runner.run (length, input, next);
        for (uint32_t c = 0; c < 2; ++c)
            for (long i = 0; i < length; ++i)
                ASSERT_NEAR (out[c][i], reference[c][i], 2e-6f) << "block " << size << " ch " << c << " @" << i;
    }
}
