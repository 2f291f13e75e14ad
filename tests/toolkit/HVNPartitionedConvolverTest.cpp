#include "toolkit/HVNPartitionedConvolver.h"
#include "toolkit/HVNDirectFIR.h"

#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace
{
std::vector<float> noise (size_t n, unsigned seed)
{
    std::mt19937 gen (seed);
    std::uniform_real_distribution<float> d (-1.0f, 1.0f);
    std::vector<float> v (n);
    for (auto& x : v)
        x = d (gen);
    return v;
}

std::vector<double> convolve (const std::vector<float>& x, const std::vector<float>& h)
{
    std::vector<double> y (x.size(), 0.0);
    for (size_t i = 0; i < x.size(); ++i)
        for (size_t k = 0; k < h.size() && k <= i; ++k)
            y[i] += double (h[k]) * double (x[i - k]);
    return y;
}

// Runs a multichannel signal through a processor in calls of the given sizes,
// cycling through them, and returns the output.
template<typename Processor>
std::vector<std::vector<float>> runInCalls (Processor& p, const std::vector<std::vector<float>>& in,
                                            const std::vector<uint32_t>& calls)
{
    const size_t channels = in.size(), length = in[0].size();
    std::vector<std::vector<float>> out (channels, std::vector<float> (length));
    size_t at = 0, call = 0;
    std::vector<const float*> ins (channels);
    std::vector<float*> outs (channels);
    while (at < length)
    {
        const uint32_t n = uint32_t (std::min<size_t> (calls[call++ % calls.size()], length - at));
        for (size_t c = 0; c < channels; ++c)
        {
            ins[c] = in[c].data() + at;
            outs[c] = out[c].data() + at;
        }
        p.process (ins.data(), outs.data(), n);
        at += n;
    }
    return out;
}
} // namespace

TEST (HVNDirectFIR, MatchesConvolutionAndSkipsTrimmedTaps)
{
    const auto h = noise (37, 1);
    const auto x = noise (500, 2);
    HVNDirectFIR fir (1, 64, 37);
    fir.setImpulse (h.data(), 37);
    const auto got = runInCalls (fir, {x}, {64, 1, 13});
    const auto want = convolve (x, h);
    for (size_t i = 0; i < x.size(); ++i)
        ASSERT_NEAR (got[0][i], want[i], 1e-5) << i;

    HVNImpulse padded (100);
    std::vector<float> shortH (100, 0.0f);
    shortH[0] = 0.5f;
    shortH[3] = -0.25f;
    padded.setTrim (true, 0.0);
    padded.setSamples (shortH.data(), 100);
    EXPECT_EQ (padded.significantLength, 4u);
    EXPECT_EQ (padded.trailingZeros, 96u);
    padded.setIdentity (true);
    EXPECT_EQ (padded.samples[50], 1.0f);
    EXPECT_EQ (padded.significantLength, 51u);
}

TEST (HVNPartitionedConvolver, EqualsDirectConvolutionForAnyCallPattern)
{
    const uint32_t taps = 1000; // eight partitions, the last one partly filled
    const auto h = noise (taps, 3);
    const std::vector<std::vector<float>> in{noise (6000, 4), noise (6000, 5), noise (6000, 6)};
    std::vector<std::vector<double>> want;
    for (const auto& x : in)
        want.push_back (convolve (x, h));

    const std::vector<std::vector<uint32_t>> patterns{{1}, {7}, {128}, {4096}, {5, 300, 128, 1, 77}};
    for (uint32_t channels : {1u, 2u, 3u})
        for (const auto& pattern : patterns)
        {
            HVNPartitionedConvolver conv (channels, taps);
            conv.setImpulse (h.data(), taps);
            const std::vector<std::vector<float>> used (in.begin(), in.begin() + channels);
            const auto got = runInCalls (conv, used, pattern);
            for (uint32_t c = 0; c < channels; ++c)
                for (size_t i = 0; i < got[c].size(); ++i)
                    ASSERT_NEAR (got[c][i], want[c][i], 2e-4)
                        << channels << " channels, first call " << pattern[0] << ", sample " << i;
        }
}

TEST (HVNPartitionedConvolver, UnitImpulsePassesWithoutDelayAndClearForgets)
{
    HVNPartitionedConvolver conv (2, 512);
    std::vector<float> unit (512, 0.0f);
    unit[0] = 1.0f;
    conv.setImpulse (unit.data(), 512);
    const std::vector<std::vector<float>> in{noise (9000, 7), noise (9000, 8)};
    for (uint32_t call : {1u, 100u, 4096u})
    {
        conv.clear();
        const auto got = runInCalls (conv, in, {call});
        EXPECT_EQ (got, in) << call;
    }

    // A late tap only: the transform path alone carries the signal, 300 samples late.
    std::vector<float> late (512, 0.0f);
    late[300] = 1.0f;
    conv.setImpulse (late.data(), 512);
    conv.clear();
    const auto got = runInCalls (conv, in, {64});
    for (size_t i = 300; i < 9000; ++i)
        ASSERT_NEAR (got[1][i], in[1][i - 300], 1e-6) << i;
}

TEST (HVNPartitionedConvolver, ProcessesWithoutAllocating)
{
    HVNPartitionedConvolver conv (2, 2048);
    const auto h = noise (2048, 9);
    conv.setImpulse (h.data(), 2048);
    std::vector<float> a (4096, 0.1f), b (4096, -0.1f);
    float* io[2] = {a.data(), b.data()};
    conv.process (io, io, 17); // warm up the vector library
    AllocationCounter count;
    for (uint32_t n : {1u, 127u, 128u, 4096u})
        conv.process (io, io, n);
    EXPECT_EQ (count.allocations(), 0u);
}

TEST (HVNPartitionedConvolver, SmallCallsShareThePartitionWorkEvenly)
{
    const uint32_t taps = 40 * 128; // 38 partitions beyond the direct head
    HVNPartitionedConvolver conv (2, taps);
    const auto h = noise (taps, 10);
    conv.setImpulse (h.data(), taps);
    std::vector<float> a (8, 0.5f), b (8, -0.5f);
    float* io[2] = {a.data(), b.data()};
    for (int i = 0; i < 16; ++i) // one whole block first, so that work is pending
        conv.process (io, io, 8);
    uint32_t most = 0;
    for (int block = 0; block < 4; ++block)
    {
        uint32_t before = conv.getProgress();
        for (int i = 0; i < 15; ++i) // the 16th call completes the block
        {
            conv.process (io, io, 8);
            most = std::max (most, conv.getProgress() - before);
            before = conv.getProgress();
        }
        EXPECT_EQ (conv.getProgress(), 38u) << "all work done before the block's last call";
        conv.process (io, io, 8);
        EXPECT_EQ (conv.getProgress(), 0u);
    }
    // 38 partitions over the first half of the block's 16 calls.
    EXPECT_LE (most, 5u);
}
