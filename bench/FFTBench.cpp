// The 256-point real transform of the convolver against a plain radix-2
// complex transform written here, and the convolvers per stereo frame.
#include "toolkit/HVNPartitionedConvolver.h"
#include "toolkit/vHVN_FFT.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <complex>
#include <random>
#include <vector>

namespace
{
// Iterative decimation in time with a twiddle table: the textbook transform.
class Radix2
{
public:
    explicit Radix2 (uint32_t n)
        : size (n)
        , twiddles (n / 2)
        , reversed (n)
    {
        for (uint32_t k = 0; k < n / 2; ++k)
            twiddles[k] = std::polar (1.0f, float (-2.0 * M_PI * k / n));
        uint32_t bits = 0;
        while ((1u << bits) < n)
            ++bits;
        for (uint32_t i = 0; i < n; ++i)
        {
            uint32_t r = 0;
            for (uint32_t b = 0; b < bits; ++b)
                r |= ((i >> b) & 1u) << (bits - 1 - b);
            reversed[i] = r;
        }
    }

    void forward (const float* in, std::complex<float>* out) const
    {
        for (uint32_t i = 0; i < size; ++i)
            out[reversed[i]] = in[i];
        for (uint32_t half = 1; half < size; half *= 2)
        {
            const uint32_t step = size / (2 * half);
            for (uint32_t start = 0; start < size; start += 2 * half)
                for (uint32_t k = 0; k < half; ++k)
                {
                    const auto t = twiddles[k * step] * out[start + k + half];
                    out[start + k + half] = out[start + k] - t;
                    out[start + k] += t;
                }
        }
    }

private:
    uint32_t size;
    std::vector<std::complex<float>> twiddles;
    std::vector<uint32_t> reversed;
};

std::vector<float> noise (size_t n)
{
    std::mt19937 gen (1);
    std::uniform_real_distribution<float> d (-1.0f, 1.0f);
    std::vector<float> v (n);
    for (auto& x : v)
        x = d (gen);
    return v;
}

void realForward (benchmark::State& state)
{
    vHVN_FFT::FFTData<0, float> fft (256);
    const auto x = noise (256);
    std::vector<float> re (128), im (128);
    for (auto _ : state)
    {
        fft.forwardSplit (x.data(), re.data(), im.data());
        benchmark::DoNotOptimize (re.data());
    }
}

void realInverse (benchmark::State& state)
{
    vHVN_FFT::FFTData<0, float> fft (256);
    const auto re = noise (128), im = noise (128);
    std::vector<float> out (256);
    for (auto _ : state)
    {
        fft.inverseReal (re.data(), im.data(), out.data());
        benchmark::DoNotOptimize (out.data());
    }
}

void radix2Reference (benchmark::State& state)
{
    Radix2 fft (256);
    const auto x = noise (256);
    std::vector<std::complex<float>> out (256);
    for (auto _ : state)
    {
        fft.forward (x.data(), out.data());
        benchmark::DoNotOptimize (out.data());
    }
}

// Stereo convolution with a 512-tap response (the analog stage at 48 kHz), per frame.
void convolver (benchmark::State& state)
{
    const auto block = static_cast<uint32_t> (state.range (0));
    const auto taps = static_cast<uint32_t> (state.range (1));
    HVNPartitionedConvolver conv (2, taps);
    const auto h = noise (taps);
    conv.setImpulse (h.data(), taps);
    auto a = noise (block), b = noise (block);
    float* io[2] = {a.data(), b.data()};
    for (auto _ : state)
    {
        conv.process (io, io, block);
        benchmark::DoNotOptimize (a.data());
    }
    state.counters["ns_per_frame"] = benchmark::Counter (
        double (state.iterations()) * block, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
} // namespace

BENCHMARK (realForward)->Name ("FFT/real256/forward");
BENCHMARK (realInverse)->Name ("FFT/real256/inverse");
BENCHMARK (radix2Reference)->Name ("FFT/real256/radix2_reference");
BENCHMARK (convolver)
    ->Name ("Convolver/stereo")
    ->Args ({1, 512})
    ->Args ({64, 512})
    ->Args ({256, 512})
    ->Args ({1024, 512})
    ->Args ({256, 4096});
