#pragma once

#include "toolkit/HVNSIMD.h"

// The vector library for SSE3, 4 floats or 2 doubles per vector.
// Its definitions are compiled with their own instruction-set flags in
// toolkit/isa/HVNSSE3.cpp; nothing else may call it on a processor that lacks them.
class HVNSSE3 final : public HVNSIMD
{
public:
#define HVN_SIMD_DECLARE_OVERRIDE(result, name, params, args) result name params override;
    HVN_SIMD_ENTRIES (HVN_SIMD_DECLARE_OVERRIDE)
#undef HVN_SIMD_DECLARE_OVERRIDE

    ~HVNSSE3() override;

    static const HVNVecKernels& vectorKernels();
};
