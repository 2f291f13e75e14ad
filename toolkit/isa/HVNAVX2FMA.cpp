#include "toolkit/HVNAVX2FMA.h"

#define HVN_ISA_NAMESPACE hvn_isa_avx2fma
#define HVN_ISA_ARCH xsimd::fma3<xsimd::avx2>
#define HVN_ISA_FUSED 1
#define HVN_ISA_INT_ARCH xsimd::fma3<xsimd::avx2>
#define HVN_ISA_CLASS HVNAVX2FMA
#include "toolkit/isa/HVNIsaMember.h"
