#pragma once

#include "toolkit/HVNSIMD.h"

// The vector library for AVX, 8 floats or 4 doubles per vector; integer entries on 128-bit halves.
// Its definitions are compiled with their own instruction-set flags in
// toolkit/isa/HVNAVX.cpp; nothing else may call it on a processor that lacks them.
class HVNAVX final : public HVNSIMD
{
public:
#define HVN_SIMD_DECLARE_OVERRIDE(result, name, params, args) result name params override;
    HVN_SIMD_ENTRIES (HVN_SIMD_DECLARE_OVERRIDE)
#undef HVN_SIMD_DECLARE_OVERRIDE

    ~HVNAVX() override;

    static const HVNVecKernels& vectorKernels();
};
