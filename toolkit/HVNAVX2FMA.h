#pragma once

#include "toolkit/HVNSIMD.h"

// The vector library for AVX2 and fused multiply-add, with 256-bit integer entries.
// Its definitions are compiled with their own instruction-set flags in
// toolkit/isa/HVNAVX2FMA.cpp; nothing else may call it on a processor that lacks them.
class HVNAVX2FMA final : public HVNSIMD
{
public:
#define HVN_SIMD_DECLARE_OVERRIDE(result, name, params, args) result name params override;
    HVN_SIMD_ENTRIES (HVN_SIMD_DECLARE_OVERRIDE)
#undef HVN_SIMD_DECLARE_OVERRIDE

    ~HVNAVX2FMA() override;

    static const HVNVecKernels& vectorKernels();
};
