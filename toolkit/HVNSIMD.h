#pragma once

#include "toolkit/HVNSIMDEntries.h"
#include "toolkit/HVNVecKernels.h"

#include <cstdint>

// The instruction sets the vector library is built for, narrowest first.
enum class HVNSIMDMember
{
    sse3,
    sse41,
    avx,
    avxFma,
    avx2Fma
};

// Array math over plain arrays, one implementation per instruction set. The
// process uses one of them, chosen from the processor on first use; callers
// fetch instance() right before each call and never keep the reference. The
// members hold no data, so every entry is a pure function and may be called
// from any thread at once (the floating-point control entries act on the
// calling thread's register).
class HVNSIMD
{
public:
#define HVN_SIMD_DECLARE_PURE(result, name, params, args) virtual result name params = 0;
    HVN_SIMD_ENTRIES (HVN_SIMD_DECLARE_PURE)
#undef HVN_SIMD_DECLARE_PURE

    virtual ~HVNSIMD() = default;

    // The process's implementation. Throws std::runtime_error
    // "vHVN: CPU does not support SSE3" on an older processor, and again on
    // every later call.
    static HVNSIMD& instance();

    // The vector helpers built for the same instruction set as instance().
    static const HVNVecKernels& kernels();

    // The member instance() uses. The environment variable ZOLK_SIMD_MEMBER
    // (sse3, sse41, avx, avxfma, avx2fma) narrows it for tests and benchmarks,
    // but only to a member the processor can run.
    static HVNSIMDMember selected();

    // Selection from a processor level and the FMA3 flag; throws below level 3.
    static HVNSIMDMember choose (int level, bool fma3);
    static bool canRun (HVNSIMDMember member, int level, bool fma3);

    // Direct access to one member, for tests and benchmarks; null when this
    // processor cannot run it.
    static HVNSIMD* member (HVNSIMDMember member);
    static const HVNVecKernels* kernels (HVNSIMDMember member);

    static const char* name (HVNSIMDMember member);
    static bool parseName (const char* text, HVNSIMDMember& member);
};
