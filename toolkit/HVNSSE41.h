#pragma once

#include "toolkit/HVNSIMD.h"

// The vector library for SSE4.1, 4 floats or 2 doubles per vector, with rounding and blending instructions.
// Its definitions are compiled with their own instruction-set flags in
// toolkit/isa/HVNSSE41.cpp; nothing else may call it on a processor that lacks them.
class HVNSSE41 final : public HVNSIMD
{
public:
#define HVN_SIMD_DECLARE_OVERRIDE(result, name, params, args) result name params override;
    HVN_SIMD_ENTRIES (HVN_SIMD_DECLARE_OVERRIDE)
#undef HVN_SIMD_DECLARE_OVERRIDE

    ~HVNSSE41() override;

    static const HVNVecKernels& vectorKernels();
};
