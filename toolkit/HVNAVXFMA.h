#pragma once

#include "toolkit/HVNSIMD.h"

// The vector library for AVX with fused multiply-add wherever a product feeds a sum.
// Its definitions are compiled with their own instruction-set flags in
// toolkit/isa/HVNAVXFMA.cpp; nothing else may call it on a processor that lacks them.
class HVNAVXFMA final : public HVNSIMD
{
public:
#define HVN_SIMD_DECLARE_OVERRIDE(result, name, params, args) result name params override;
    HVN_SIMD_ENTRIES (HVN_SIMD_DECLARE_OVERRIDE)
#undef HVN_SIMD_DECLARE_OVERRIDE

    ~HVNAVXFMA() override;

    static const HVNVecKernels& vectorKernels();
};
