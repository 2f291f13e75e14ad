#pragma once

// The body of one member: every entry forwards to the kernel of this
// translation unit's namespace. Included once, at the end of each member file,
// after HVN_ISA_CLASS names the class.
#include "toolkit/isa/HVNIsaComplex.h"
#include "toolkit/isa/HVNIsaElementwise.h"
#include "toolkit/isa/HVNIsaReduce.h"
#include "toolkit/isa/HVNIsaTable.h"
#include "toolkit/isa/HVNIsaVec.h"

#include <xmmintrin.h>

namespace HVN_ISA_NAMESPACE
{
inline uint32_t doubleLanes()
{
    return B<double>::size;
}
inline uint32_t floatLanes()
{
    return B<float>::size;
}
inline uint32_t getFPControl()
{
    return _mm_getcsr();
}
inline void setFPControl (uint32_t value)
{
    _mm_setcsr (value);
}

// DAZ (bit 6) and FTZ (bit 15).
inline void setFlushDenormals (bool on)
{
    constexpr uint32_t flushBits = 0x8040u;
    const uint32_t value = _mm_getcsr();
    _mm_setcsr (on ? (value | flushBits) : (value & ~flushBits));
}
} // namespace HVN_ISA_NAMESPACE

#define HVN_SIMD_DEFINE_ENTRY(result, name, params, args)                                                    \
    result HVN_ISA_CLASS::name params                                                                        \
    {                                                                                                        \
        return HVN_ISA_NAMESPACE::name args;                                                                 \
    }
HVN_SIMD_ENTRIES (HVN_SIMD_DEFINE_ENTRY)
#undef HVN_SIMD_DEFINE_ENTRY

HVN_ISA_CLASS::~HVN_ISA_CLASS() = default;

const HVNVecKernels& HVN_ISA_CLASS::vectorKernels()
{
    return HVN_ISA_NAMESPACE::vectorKernelTable;
}
