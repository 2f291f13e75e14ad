#include "tests/toolkit/HVNSIMDTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>

// Every entry of every member this processor runs, against the plain scalar
// formula, over counts 0..67 and a few large odd ones, aligned and misaligned,
// in place where the entry allows it, with guard words around every output.
// Element-wise entries must match exactly, except where a member with FMA fuses
// a product into a sum; reductions match to a tolerance.

namespace
{
using namespace hvn_test;

enum class Accuracy
{
    exact,     // every member, bit for bit
    fusedOnly, // exact unless the member has FMA, then within a few ulp
    reduction  // a sum of many products: tolerance that grows with the count
};

constexpr int maxInputs = 10, maxOutputs = 4;

template<typename T>
struct Case
{
    std::string name;
    int inputs, outputs;
    // in[] and out[] point to guarded arrays of n elements (out arrays hold
    // random values on entry, for the accumulating entries).
    std::function<void (HVNSIMD&, T* const* in, T* const* out, uint32_t n)> call;
    // expected outputs of element i from the inputs and the outputs on entry
    std::function<std::array<T, maxOutputs> (const T* in, const T* outBefore)> reference;
    Accuracy accuracy = Accuracy::exact;
    T low = T (-2), high = T (2);
    bool inPlace = false;      // out[0] may be in[0]
    bool awayFromZero = false; // inputs kept out of (-0.25, 0.25), for divisors
};

template<typename T>
bool close (T got, T want, Accuracy accuracy, bool fused, uint32_t n)
{
    if (Guarded<T>::same (got, want) || (got == want) || bothNaN (double (got), double (want)))
        return true;
    if (accuracy == Accuracy::exact || (accuracy == Accuracy::fusedOnly && !fused))
        return false;
    const T eps = ulpScale<T>();
    const T tolerance = accuracy == Accuracy::reduction ? eps * T (8) * T (n + 8) : eps * T (32);
    return std::abs (got - want) <= tolerance * (T (1) + std::abs (want));
}

template<typename T>
void runCase (const Case<T>& c, const Member& member)
{
    std::mt19937 random (1234);
    std::uniform_real_distribution<T> distribution (c.low, c.high);
    auto draw = [&]
    {
        T x = distribution (random);
        if (c.awayFromZero && std::abs (x) < T (0.25))
            x = x < 0 ? x - T (0.25) : x + T (0.25);
        return x;
    };

    for (uint32_t n : testCounts())
        for (int layout = 0; layout < (c.inPlace ? 4 : 3); ++layout)
        {
            // 0: all aligned, 1: all misaligned, 2: output aligned and inputs
            // not, 3: in place.
            const uint32_t inMisalign = layout == 0 ? 0 : 1;
            const uint32_t outMisalign = layout == 1 ? 1 : 0;
            std::vector<Guarded<T>> in, out;
            for (int k = 0; k < c.inputs; ++k)
                in.emplace_back (n, inMisalign + uint32_t (k % 2));
            for (int k = 0; k < c.outputs; ++k)
                out.emplace_back (n, outMisalign);
            for (auto& a : in)
                for (uint32_t i = 0; i < n; ++i)
                    a[i] = draw();
            for (auto& a : out)
                for (uint32_t i = 0; i < n; ++i)
                    a[i] = draw();

            std::vector<T> inValues (size_t (n) * maxInputs), outBefore (size_t (n) * maxOutputs);
            for (uint32_t i = 0; i < n; ++i)
            {
                for (int k = 0; k < c.inputs; ++k)
                    inValues[size_t (i) * maxInputs + k] = in[size_t (k)][i];
                for (int k = 0; k < c.outputs; ++k)
                    outBefore[size_t (i) * maxOutputs + k] = out[size_t (k)][i];
            }

            T* inPointers[maxInputs] = {};
            T* outPointers[maxOutputs] = {};
            for (int k = 0; k < c.inputs; ++k)
                inPointers[k] = in[size_t (k)].data();
            for (int k = 0; k < c.outputs; ++k)
                outPointers[k] = out[size_t (k)].data();
            if (layout == 3)
            {
                std::copy (in[0].data(), in[0].data() + n, out[0].data());
                inPointers[0] = out[0].data();
                for (uint32_t i = 0; i < n; ++i)
                    outBefore[size_t (i) * maxOutputs] = in[0][i];
            }

            c.call (*member.simd, inPointers, outPointers, n);

            for (int k = 0; k < c.outputs; ++k)
                ASSERT_TRUE (out[size_t (k)].guardsIntact())
                    << c.name << " wrote outside its output " << k << ", n=" << n << " layout " << layout;
            for (uint32_t i = 0; i < n; ++i)
            {
                const auto want =
                    c.reference (&inValues[size_t (i) * maxInputs], &outBefore[size_t (i) * maxOutputs]);
                for (int k = 0; k < c.outputs; ++k)
                    ASSERT_TRUE (close (out[size_t (k)][i], want[size_t (k)], c.accuracy, member.fused, n))
                        << c.name << " output " << k << " element " << i << " of " << n << " layout "
                        << layout << ": got " << out[size_t (k)][i] << ", want " << want[size_t (k)];
            }
        }
}

template<typename T>
std::array<T, maxOutputs> one (T x)
{
    return {x, T (0), T (0), T (0)};
}

// Shorthands for the common shapes.
template<typename T>
Case<T> unary (std::string name, void (HVNSIMD::*entry) (const T*, T*, uint32_t), std::function<T (T)> f,
               Accuracy accuracy = Accuracy::exact)
{
    return {name,
            1,
            1,
            [entry] (HVNSIMD& s, T* const* in, T* const* out, uint32_t n) { (s.*entry) (in[0], out[0], n); },
            [f] (const T* x, const T*) { return one (f (x[0])); },
            accuracy,
            T (-2),
            T (2),
            true};
}

template<typename T>
Case<T> binary (std::string name, void (HVNSIMD::*entry) (const T*, const T*, T*, uint32_t),
                std::function<T (T, T)> f, Accuracy accuracy = Accuracy::exact)
{
    return {name,
            2,
            1,
            [entry] (HVNSIMD& s, T* const* in, T* const* out, uint32_t n)
            { (s.*entry) (in[0], in[1], out[0], n); },
            [f] (const T* x, const T*) { return one (f (x[0], x[1])); },
            accuracy,
            T (-2),
            T (2),
            true};
}

template<typename T>
Case<T> ternary (std::string name, void (HVNSIMD::*entry) (const T*, const T*, const T*, T*, uint32_t),
                 std::function<T (T, T, T)> f, Accuracy accuracy = Accuracy::exact)
{
    return {name,
            3,
            1,
            [entry] (HVNSIMD& s, T* const* in, T* const* out, uint32_t n)
            { (s.*entry) (in[0], in[1], in[2], out[0], n); },
            [f] (const T* x, const T*) { return one (f (x[0], x[1], x[2])); },
            accuracy,
            T (-2),
            T (2),
            true};
}

template<typename T>
Case<T> quaternary (std::string name,
                    void (HVNSIMD::*entry) (const T*, const T*, const T*, const T*, T*, uint32_t),
                    std::function<T (T, T, T, T)> f, Accuracy accuracy = Accuracy::exact)
{
    return {name,
            4,
            1,
            [entry] (HVNSIMD& s, T* const* in, T* const* out, uint32_t n)
            { (s.*entry) (in[0], in[1], in[2], in[3], out[0], n); },
            [f] (const T* x, const T*) { return one (f (x[0], x[1], x[2], x[3])); },
            accuracy,
            T (-2),
            T (2),
            true};
}

template<typename T>
T halfAway (T x)
{
    return std::round (x);
}

template<typename T>
std::vector<Case<T>> elementCases()
{
    using S = HVNSIMD;
    const T s = T (0.75), t = T (-1.25);
    std::vector<Case<T>> cases;
    cases.push_back (unary<T> ("vAbs", &S::vAbs, [] (T x) { return std::abs (x); }));
    cases.push_back (binary<T> ("vAdd", &S::vAdd, [] (T a, T b) { return a + b; }));
    cases.push_back (ternary<T> ("vAddMul", &S::vAddMul, [] (T a, T b, T c) { return (a + b) * c; }));
    cases.push_back (binary<T> ("vCopySign", &S::vCopySign, [] (T a, T b) { return std::copysign (a, b); }));
    cases.push_back (ternary<T> (
        "vLerp", &S::vLerp, [] (T a, T b, T w) { return a * w + b - b * w; }, Accuracy::fusedOnly));
    cases.push_back (binary<T> ("vMax", &S::vMax, [] (T a, T b) { return a > b ? a : b; }));
    cases.push_back (
        binary<T> ("vMaxMag", &S::vMaxMag, [] (T a, T b) { return std::max (std::abs (a), std::abs (b)); }));
    cases.push_back (binary<T> ("vMul", &S::vMul, [] (T a, T b) { return a * b; }));
    cases.push_back (ternary<T> (
        "vMulAdd", &S::vMulAdd, [] (T a, T b, T c) { return a * b + c; }, Accuracy::fusedOnly));
    cases.push_back (ternary<T> ("vMulTriple", &S::vMulTriple, [] (T a, T b, T c) { return a * b * c; }));
    cases.push_back (quaternary<T> (
        "vMulMulAdd", &S::vMulMulAdd, [] (T a, T b, T c, T d) { return a * b + c * d; },
        Accuracy::fusedOnly));
    cases.push_back (
        quaternary<T> ("vMulMulSub", &S::vMulMulSub, [] (T a, T b, T c, T d) { return a * b - c * d; }));
    cases.push_back (ternary<T> ("vMulSub", &S::vMulSub, [] (T a, T b, T c) { return a * b - c; }));
    cases.push_back (unary<T> ("vNeg", &S::vNeg, [] (T x) { return -x; }));
    cases.push_back (binary<T> ("vSub", &S::vSub, [] (T a, T b) { return a - b; }));
    cases.push_back (unary<T> ("vSquare", &S::vSquare, [] (T x) { return x * x; }));
    cases.push_back (unary<T> ("vFloor", &S::vFloor, [] (T x) { return std::floor (x); }));
    cases.push_back (unary<T> ("vFrac", &S::vFrac, [] (T x) { return x - std::trunc (x); }));
    cases.push_back (unary<T> ("vUnitTriangle", &S::vUnitTriangle,
                               [] (T x) { return std::abs (T (2) * (x - std::floor (x + T (0.5)))); }));

    auto divisor = [] (Case<T> c)
    {
        c.awayFromZero = true;
        return c;
    };
    cases.push_back (divisor (binary<T> ("vDiv", &S::vDiv, [] (T a, T b) { return a / b; })));
    cases.push_back (divisor (unary<T> ("vRecip", &S::vRecip, [] (T x) { return T (1) / x; })));

    auto withScalar = [] (std::string name, std::function<void (S&, const T*, T*, uint32_t)> call,
                          std::function<T (T)> f, Accuracy accuracy = Accuracy::exact)
    {
        return Case<T>{name,
                       1,
                       1,
                       [call] (S& simd, T* const* in, T* const* out, uint32_t n)
                       { call (simd, in[0], out[0], n); },
                       [f] (const T* x, const T*) { return one (f (x[0])); },
                       accuracy,
                       T (-2),
                       T (2),
                       true};
    };
    cases.push_back (withScalar (
        "vClip", [] (S& m, const T* in, T* out, uint32_t n) { m.vClip (in, T (-0.5), T (1), out, n); },
        [] (T x) { return std::min (std::max (x, T (-0.5)), T (1)); }));
    cases.push_back (withScalar (
        "vScalarDiv", [s] (S& m, const T* in, T* out, uint32_t n) { m.vScalarDiv (in, s * T (3), out, n); },
        [s] (T x) { return (T (1) / (s * T (3))) * x; }));
    cases.push_back (withScalar (
        "vScalarAdd", [s] (S& m, const T* in, T* out, uint32_t n) { m.vScalarAdd (in, s, out, n); },
        [s] (T x) { return x + s; }));
    cases.push_back (withScalar (
        "vScalarMul", [s] (S& m, const T* in, T* out, uint32_t n) { m.vScalarMul (in, s, out, n); },
        [s] (T x) { return s * x; }));
    cases.push_back (withScalar (
        "vScalarMulScalarAdd",
        [s, t] (S& m, const T* in, T* out, uint32_t n) { m.vScalarMulScalarAdd (in, s, t, out, n); },
        [s, t] (T x) { return s * x + t; }, Accuracy::fusedOnly));
    cases.push_back (withScalar (
        "vThreshold", [] (S& m, const T* in, T* out, uint32_t n) { m.vThreshold (in, T (0.1), out, n); },
        [] (T x) { return std::max (x, T (0.1)); }));
    cases.push_back (withScalar (
        "vLimit", [] (S& m, const T* in, T* out, uint32_t n) { m.vLimit (in, T (0.1), T (3), out, n); },
        [] (T x) { return x < T (0.1) ? T (-3) : T (3); }));
    cases.push_back (withScalar (
        "vTriangle", [] (S& m, const T* in, T* out, uint32_t n) { m.vTriangle (in, T (1.5), T (2), out, n); },
        [] (T x) { return T (2) * T (1.5) * std::abs (std::round (T (2) * x) - T (2) * x); }));
    cases.push_back (withScalar (
        "vPoly",
        [] (S& m, const T* in, T* out, uint32_t n)
        {
            const T c[5] = {T (0.5), T (-1.25), T (2), T (0.125), T (-3)};
            m.vPoly (in, c, 5, out, n);
        },
        [] (T x)
        {
            const T c[5] = {T (0.5), T (-1.25), T (2), T (0.125), T (-3)};
            T acc = c[4], p = x;
            for (int j = 3; j >= 0; --j)
            {
                acc += p * c[j];
                p *= x;
            }
            return acc;
        },
        Accuracy::fusedOnly));
    cases.push_back (withScalar (
        "vFill", [] (S& m, const T*, T* out, uint32_t n) { m.vFill (out, T (0.3), n); },
        [] (T) { return T (0.3); }));
    cases.push_back (withScalar (
        "vClear", [] (S& m, const T*, T* out, uint32_t n) { m.vClear (out, n); }, [] (T) { return T (0); }));

    auto withTwo = [] (std::string name, std::function<void (S&, const T*, const T*, T*, uint32_t)> call,
                       std::function<T (T, T)> f, Accuracy accuracy = Accuracy::exact)
    {
        return Case<T>{name,
                       2,
                       1,
                       [call] (S& simd, T* const* in, T* const* out, uint32_t n)
                       { call (simd, in[0], in[1], out[0], n); },
                       [f] (const T* x, const T*) { return one (f (x[0], x[1])); },
                       accuracy,
                       T (-2),
                       T (2),
                       true};
    };
    cases.push_back (withTwo (
        "vScalarMulAdd",
        [s] (S& m, const T* a, const T* b, T* out, uint32_t n) { m.vScalarMulAdd (a, s, b, out, n); },
        [s] (T a, T b) { return s * a + b; }, Accuracy::fusedOnly));
    cases.push_back (withTwo (
        "vScalarMix",
        [s, t] (S& m, const T* a, const T* b, T* out, uint32_t n) { m.vScalarMix (a, s, b, t, out, n); },
        [s, t] (T a, T b) { return s * a + t * b; }, Accuracy::fusedOnly));
    cases.push_back (withTwo (
        "vSubScalarMul",
        [s] (S& m, const T* a, const T* b, T* out, uint32_t n) { m.vSubScalarMul (a, b, s, out, n); },
        [s] (T a, T b) { return (a - b) * s; }));

    // In-place forms: the output on entry is the second operand.
    cases.push_back ({"vAddInPlace", 1, 1,
                      [] (S& m, T* const* in, T* const* out, uint32_t n)
                      { m.vAddInPlace (in[0], out[0], n); },
                      [] (const T* x, const T* o) { return one (o[0] + x[0]); }});
    cases.push_back ({"vMulInPlace", 1, 1,
                      [] (S& m, T* const* in, T* const* out, uint32_t n)
                      { m.vMulInPlace (in[0], out[0], n); },
                      [] (const T* x, const T* o) { return one (o[0] * x[0]); }});
    cases.push_back ({"vSquareInPlace", 0, 1,
                      [] (S& m, T* const*, T* const* out, uint32_t n) { m.vSquareInPlace (out[0], n); },
                      [] (const T*, const T* o) { return one (o[0] * o[0]); }});
    cases.push_back ({"vSwap", 0, 2,
                      [] (S& m, T* const*, T* const* out, uint32_t n) { m.vSwap (out[0], out[1], n); },
                      [] (const T*, const T* o) {
                          return std::array<T, maxOutputs>{o[1], o[0], T (0), T (0)};
                      }});
    for (bool magnitude : {false, true})
        cases.push_back ({magnitude ? "vSignSplit magnitude" : "vSignSplit", 1, 2,
                          [magnitude] (S& m, T* const* in, T* const* out, uint32_t n)
                          { m.vSignSplit (in[0], out[0], out[1], n, magnitude); },
                          [magnitude] (const T* x, const T*)
                          {
                              const T pos = x[0] >= 0 ? x[0] : T (0);
                              const T neg = magnitude ? -(x[0] - pos) : x[0] - pos;
                              return std::array<T, maxOutputs>{pos, neg, T (0), T (0)};
                          },
                          Accuracy::exact, T (-2), T (2), true});

    // Complex forms.
    auto re = [] (T ar, T ai, T br, T bi) { return ar * br - ai * bi; };
    auto im = [] (T ar, T ai, T br, T bi) { return ar * bi + ai * br; };
    cases.push_back ({"zAdd", 4, 2,
                      [] (S& m, T* const* in, T* const* out, uint32_t n)
                      { m.zAdd (in[0], in[1], in[2], in[3], out[0], out[1], n); },
                      [] (const T* x, const T*) {
                          return std::array<T, maxOutputs>{x[0] + x[2], x[1] + x[3], T (0), T (0)};
                      },
                      Accuracy::exact, T (-2), T (2), true});
    cases.push_back ({"zMul", 4, 2,
                      [] (S& m, T* const* in, T* const* out, uint32_t n) {
                          m.zMul ({in[0], in[1]}, {in[2], in[3]}, {out[0], out[1]}, n);
                      },
                      [re, im] (const T* x, const T*) {
                          return std::array<T, maxOutputs>{re (x[0], x[1], x[2], x[3]),
                                                           im (x[0], x[1], x[2], x[3]), T (0), T (0)};
                      },
                      Accuracy::fusedOnly, T (-2), T (2), true});
    cases.push_back ({"zMulAcc", 4, 2,
                      [] (S& m, T* const* in, T* const* out, uint32_t n)
                      { m.zMulAcc (in[0], in[1], in[2], in[3], out[0], out[1], n); },
                      [re, im] (const T* x, const T* o)
                      {
                          return std::array<T, maxOutputs>{o[0] + re (x[0], x[1], x[2], x[3]),
                                                           o[1] + im (x[0], x[1], x[2], x[3]), T (0), T (0)};
                      },
                      Accuracy::fusedOnly});
    cases.push_back (
        {"zMulAccTwin", 6, 4,
         [] (S& m, T* const* in, T* const* out, uint32_t n)
         { m.zMulAccTwin (in[0], in[1], in[2], in[3], in[4], in[5], out[0], out[1], out[2], out[3], n); },
         [re, im] (const T* x, const T* o)
         {
             return std::array<T, maxOutputs>{
                 o[0] + re (x[0], x[1], x[4], x[5]), o[1] + im (x[0], x[1], x[4], x[5]),
                 o[2] + re (x[2], x[3], x[4], x[5]), o[3] + im (x[2], x[3], x[4], x[5])};
         },
         Accuracy::fusedOnly});
    return cases;
}

template<typename T>
void runElementCases()
{
    const auto members = runnableMembers();
    ASSERT_FALSE (members.empty());
    for (const auto& member : members)
        for (const auto& c : elementCases<T>())
        {
            SCOPED_TRACE (member.name + " " + c.name);
            runCase (c, member);
            if (::testing::Test::HasFatalFailure())
                return;
        }
}
} // namespace

TEST (HVNSIMDDifferential, EveryElementWiseEntryOfEveryMemberMatchesTheFormulaFloat)
{
    runElementCases<float>();
}

TEST (HVNSIMDDifferential, EveryElementWiseEntryOfEveryMemberMatchesTheFormulaDouble)
{
    runElementCases<double>();
}

TEST (HVNSIMDDifferential, MachineRunsAllFiveMembers)
{
    // CI runs on a processor with AVX2 and FMA; a smaller list here means the
    // wider members went untested.
    EXPECT_EQ (runnableMembers().size(), 5u);
}
