#include "toolkit/HVNCPUFeatures.h"

#include <atomic>
#include <cpuid.h>
#include <initializer_list>

namespace
{
std::atomic<int> cachedLevel{-1};

bool bit (uint32_t word, int index)
{
    return ((word >> index) & 1u) != 0;
}

bool allBits (uint32_t word, std::initializer_list<int> indices)
{
    for (int index : indices)
        if (!bit (word, index))
            return false;
    return true;
}
} // namespace

HVNCPUFeatures::Registers HVNCPUFeatures::cpuid (uint32_t leaf, uint32_t subleaf)
{
    Registers r;
    __cpuid_count (leaf, subleaf, r.eax, r.ebx, r.ecx, r.edx);
    return r;
}

uint64_t HVNCPUFeatures::xgetbv (uint32_t index)
{
    uint32_t eax = 0, edx = 0;
    // Encoded by hand so that this file builds without -mxsave.
    __asm__ volatile(".byte 0x0f, 0x01, 0xd0" : "=a"(eax), "=d"(edx) : "c"(index));
    return (uint64_t (edx) << 32) | eax;
}

int HVNCPUFeatures::computeLevel (CpuidFunction cpuidOf, XgetbvFunction xgetbvOf)
{
    const uint32_t highestLeaf = cpuidOf (0, 0).eax;
    if (highestLeaf == 0)
        return 0;

    const Registers one = cpuidOf (1, 0);
    if (!allBits (one.edx, {0, 15, 23, 24, 25}))
        return 0;
    if (!bit (one.edx, 26))
        return 1;
    if (!bit (one.ecx, 0))
        return 2;
    if (!bit (one.ecx, 9))
        return 3;
    if (!bit (one.ecx, 19))
        return 4;
    if (!allBits (one.ecx, {20, 23}))
        return 5;
    if (!bit (one.ecx, 27))
        return 6;
    if ((xgetbvOf (0) & 6u) != 6u || !bit (one.ecx, 28))
        return 6;
    if (highestLeaf < 7 || !bit (cpuidOf (7, 0).ebx, 5))
        return 7;
    if (highestLeaf < 13 || !allBits (cpuidOf (13, 0).eax, {5, 6}))
        return 8;
    return 9;
}

bool HVNCPUFeatures::computeFMA3 (int level, CpuidFunction cpuidOf)
{
    return level >= 7 && bit (cpuidOf (1, 0).ecx, 12);
}

int HVNCPUFeatures::level()
{
    int value = cachedLevel.load (std::memory_order_acquire);
    if (value < 0)
    {
        value = computeLevel (&cpuid, &xgetbv);
        cachedLevel.store (value, std::memory_order_release);
    }
    return value;
}

bool HVNCPUFeatures::hasFMA3()
{
    return computeFMA3 (level(), &cpuid);
}
