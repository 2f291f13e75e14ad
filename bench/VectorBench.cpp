#include "toolkit/HVNSIMD.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <vector>

// Vector/<entry>/<member>/<n>: every member this processor runs, the plain
// scalar loop (one element at a time, the compiler's own vectoriser off) and,
// as the memory-bound reference, a copy of the same arrays. There are 168 of
// them: run with a small --benchmark_min_time (0.02 is plenty).

namespace
{
constexpr uint32_t convTaps = 64, decimateTaps = 396, decimateFactor = 2, polyCount = 8, tableLength = 1024;

struct Arrays
{
    explicit Arrays (uint32_t n)
    {
        std::mt19937 random (42);
        std::uniform_real_distribution<float> d (-1.0f, 1.0f);
        const size_t longest = size_t (n) * decimateFactor + decimateTaps;
        for (auto* v : {&a, &b, &c, &d4, &e, &f, &out, &out2, &out3, &out4})
        {
            v->resize (longest);
            for (float& x : *v)
                x = d (random);
        }
        filter.resize (decimateTaps);
        for (float& x : filter)
            x = d (random) * 0.01f;
        table.resize (tableLength);
        for (uint32_t i = 0; i < tableLength; ++i)
            table[i] = std::sin (float (i) * 0.01f);
    }
    std::vector<float> a, b, c, d4, e, f, out, out2, out3, out4, filter, table;
};

const float polyCoefficients[polyCount] = {0.01f, -0.02f, 0.05f, -0.1f, 0.2f, -0.5f, 1.0f, 0.25f};

using Body = std::function<void (Arrays&, uint32_t)>;

// The scalar forms. The vectoriser is off so that these stay one element at a
// time, as the reference for what the members gain.
#define SCALAR_LOOP __attribute__ ((noinline, optimize ("no-tree-vectorize")))

SCALAR_LOOP void scalarMulAdd (const float* a, const float* b, const float* c, float* out, uint32_t n)
{
    for (uint32_t i = 0; i < n; ++i)
        out[i] = a[i] * b[i] + c[i];
}

SCALAR_LOOP float scalarDot (const float* a, const float* b, uint32_t n)
{
    float sum = 0;
    for (uint32_t i = 0; i < n; ++i)
        sum += a[i] * b[i];
    return sum;
}

SCALAR_LOOP void scalarConv (const float* in, const float* h, float* out, uint32_t n, uint32_t taps)
{
    for (uint32_t i = 0; i < n; ++i)
    {
        float sum = 0;
        for (uint32_t t = 0; t < taps; ++t)
            sum += in[i + t] * h[t];
        out[i] = sum;
    }
}

SCALAR_LOOP void scalarDecimateTwin (const float* a, const float* b, const float* h, float* outA, float* outB,
                                     uint32_t n)
{
    for (uint32_t i = 0; i < n; ++i)
    {
        float sa = 0, sb = 0;
        for (uint32_t t = 0; t < decimateTaps; ++t)
        {
            sa += a[i * decimateFactor + t] * h[t];
            sb += b[i * decimateFactor + t] * h[t];
        }
        outA[i] = sa;
        outB[i] = sb;
    }
}

SCALAR_LOOP void scalarTableLookup (const float* in, float scale, float offset, const float* table,
                                    float* out, uint32_t n)
{
    const float last = float (tableLength - 1);
    for (uint32_t i = 0; i < n; ++i)
    {
        const float x = scale * in[i] + offset;
        if (!(x >= 0))
            out[i] = table[0];
        else if (x >= last)
            out[i] = table[tableLength - 1];
        else
        {
            const uint32_t k = uint32_t (x);
            const float f = x - float (k);
            out[i] = (1 - f) * table[k] + f * table[k + 1];
        }
    }
}

SCALAR_LOOP void scalarPoly (const float* in, float* out, uint32_t n)
{
    for (uint32_t i = 0; i < n; ++i)
    {
        const float x = in[i];
        float acc = polyCoefficients[polyCount - 1], p = x;
        for (uint32_t j = polyCount - 1; j-- > 0;)
        {
            acc += p * polyCoefficients[j];
            p *= x;
        }
        out[i] = acc;
    }
}

SCALAR_LOOP void scalarZMulAccTwin (Arrays& s, uint32_t n)
{
    for (uint32_t i = 0; i < n; ++i)
    {
        const float hr = s.e[i], hi = s.f[i];
        s.out[i] += s.a[i] * hr - s.b[i] * hi;
        s.out2[i] += s.a[i] * hi + s.b[i] * hr;
        s.out3[i] += s.c[i] * hr - s.d4[i] * hi;
        s.out4[i] += s.c[i] * hi + s.d4[i] * hr;
    }
}

SCALAR_LOOP void scalarDbToLin (const float* in, float* out, uint32_t n)
{
    for (uint32_t i = 0; i < n; ++i)
        out[i] = std::exp (0.115129254758358f * in[i]);
}

void copyArrays (std::initializer_list<const std::vector<float>*> from, std::vector<float>& to, size_t count)
{
    for (const auto* v : from)
        std::memcpy (to.data(), v->data(), count * sizeof (float));
}

struct Entry
{
    std::string name;
    std::function<void (HVNSIMD&, const HVNVecKernels&, Arrays&, uint32_t)> member;
    std::function<void (Arrays&, uint32_t)> scalar;
    std::function<void (Arrays&, uint32_t)> copy;
};

std::vector<Entry> entries()
{
    return {
        {"vMulAdd",
         [] (HVNSIMD& m, const HVNVecKernels&, Arrays& s, uint32_t n)
         { m.vMulAdd (s.a.data(), s.b.data(), s.c.data(), s.out.data(), n); },
         [] (Arrays& s, uint32_t n) { scalarMulAdd (s.a.data(), s.b.data(), s.c.data(), s.out.data(), n); },
         [] (Arrays& s, uint32_t n) {
             copyArrays ({&s.a, &s.b, &s.c}, s.out, n);
         }},
        {"vDot",
         [] (HVNSIMD& m, const HVNVecKernels&, Arrays& s, uint32_t n)
         { m.vDot (s.a.data(), s.b.data(), s.out.data(), n); },
         [] (Arrays& s, uint32_t n) { s.out[0] = scalarDot (s.a.data(), s.b.data(), n); },
         [] (Arrays& s, uint32_t n) {
             copyArrays ({&s.a, &s.b}, s.out, n);
         }},
        {"vConv",
         [] (HVNSIMD& m, const HVNVecKernels&, Arrays& s, uint32_t n)
         { m.vConv (s.a.data(), 1, s.filter.data(), 1, s.out.data(), 1, n, convTaps); },
         [] (Arrays& s, uint32_t n) { scalarConv (s.a.data(), s.filter.data(), s.out.data(), n, convTaps); },
         [] (Arrays& s, uint32_t n) { copyArrays ({&s.a}, s.out, n + convTaps); }},
        {"vDecimateTwin",
         [] (HVNSIMD& m, const HVNVecKernels&, Arrays& s, uint32_t n)
         {
             m.vDecimateTwin (s.a.data(), s.b.data(), decimateFactor, s.filter.data(), decimateTaps,
                              s.out.data(), s.out2.data(), n);
         },
         [] (Arrays& s, uint32_t n)
         { scalarDecimateTwin (s.a.data(), s.b.data(), s.filter.data(), s.out.data(), s.out2.data(), n); },
         [] (Arrays& s, uint32_t n) {
             copyArrays ({&s.a, &s.b}, s.out, n * decimateFactor + decimateTaps);
         }},
        {"vTableLookup",
         [] (HVNSIMD& m, const HVNVecKernels&, Arrays& s, uint32_t n)
         { m.vTableLookup (s.a.data(), 600.0f, 512.0f, s.table.data(), tableLength, s.out.data(), n); },
         [] (Arrays& s, uint32_t n)
         { scalarTableLookup (s.a.data(), 600.0f, 512.0f, s.table.data(), s.out.data(), n); },
         [] (Arrays& s, uint32_t n) { copyArrays ({&s.a}, s.out, n); }},
        {"vPoly",
         [] (HVNSIMD& m, const HVNVecKernels&, Arrays& s, uint32_t n)
         { m.vPoly (s.a.data(), polyCoefficients, polyCount, s.out.data(), n); },
         [] (Arrays& s, uint32_t n) { scalarPoly (s.a.data(), s.out.data(), n); },
         [] (Arrays& s, uint32_t n) { copyArrays ({&s.a}, s.out, n); }},
        {"zMulAccTwin",
         [] (HVNSIMD& m, const HVNVecKernels&, Arrays& s, uint32_t n)
         {
             m.zMulAccTwin (s.a.data(), s.b.data(), s.c.data(), s.d4.data(), s.e.data(), s.f.data(),
                            s.out.data(), s.out2.data(), s.out3.data(), s.out4.data(), n);
         },
         [] (Arrays& s, uint32_t n) { scalarZMulAccTwin (s, n); },
         [] (Arrays& s, uint32_t n)
         {
             copyArrays ({&s.a, &s.b, &s.c}, s.out, n);
             copyArrays ({&s.d4, &s.e, &s.f}, s.out2, n);
         }},
        {"vHVN_vDbToLin",
         [] (HVNSIMD&, const HVNVecKernels& k, Arrays& s, uint32_t n)
         { k.expScaledF (s.a.data(), 0.115129254758358f, s.out.data(), n); },
         [] (Arrays& s, uint32_t n) { scalarDbToLin (s.a.data(), s.out.data(), n); },
         [] (Arrays& s, uint32_t n) { copyArrays ({&s.a}, s.out, n); }},
    };
}

void run (benchmark::State& state, uint32_t n, const std::function<void (Arrays&, uint32_t)>& body)
{
    Arrays arrays (n);
    for (auto _ : state)
    {
        body (arrays, n);
        benchmark::DoNotOptimize (arrays.out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed (int64_t (state.iterations()) * n);
}

void registerAll()
{
    for (const Entry& entry : entries())
    {
        auto add = [&] (const std::string& member, std::function<void (Arrays&, uint32_t)> body)
        {
            for (int n : {64, 512, 4096})
                benchmark::RegisterBenchmark (
                    ("Vector/" + entry.name + "/" + member + "/" + std::to_string (n)).c_str(),
                    [body, n] (benchmark::State& state) { run (state, uint32_t (n), body); });
        };
        add ("scalar", entry.scalar);
        for (int i = 0; i < 5; ++i)
        {
            const auto which = static_cast<HVNSIMDMember> (i);
            HVNSIMD* member = HVNSIMD::member (which);
            if (member == nullptr)
                continue;
            const HVNVecKernels* kernels = HVNSIMD::kernels (which);
            auto body = entry.member;
            add (HVNSIMD::name (which),
                 [member, kernels, body] (Arrays& s, uint32_t n) { body (*member, *kernels, s, n); });
        }
        add ("copy", entry.copy);
    }
}

const bool registered = (registerAll(), true);
} // namespace
