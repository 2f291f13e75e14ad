#pragma once

#include <cstdint>

// The processor's instruction level, from CPUID and XGETBV. Level 7 and up
// also require that the operating system saves the AVX registers, which is why
// this does not trust the CPUID feature bits alone.
//
//  0 nothing usable   1 FPU CMOV MMX FXSR SSE   2 SSE2   3 SSE3   4 SSSE3
//  5 SSE4.1   6 SSE4.2 POPCNT   7 AVX with OS support   8 AVX2   9 AVX-512 state
class HVNCPUFeatures
{
public:
    struct Registers
    {
        uint32_t eax = 0, ebx = 0, ecx = 0, edx = 0;
    };

    // The probes are injectable so that the level table can be tested with
    // made-up processors.
    using CpuidFunction = Registers (*) (uint32_t leaf, uint32_t subleaf);
    using XgetbvFunction = uint64_t (*) (uint32_t index);

    // Computed once per process and cached.
    static int level();
    static bool hasFMA3();

    static int computeLevel (CpuidFunction cpuid, XgetbvFunction xgetbv);
    static bool computeFMA3 (int level, CpuidFunction cpuid);

    static Registers cpuid (uint32_t leaf, uint32_t subleaf);
    // Only valid once CPUID reported OSXSAVE.
    static uint64_t xgetbv (uint32_t index);
};
