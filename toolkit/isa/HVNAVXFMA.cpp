#include "toolkit/HVNAVXFMA.h"

#define HVN_ISA_NAMESPACE hvn_isa_avxfma
#define HVN_ISA_ARCH xsimd::fma3<xsimd::avx>
#define HVN_ISA_FUSED 1
#define HVN_ISA_INT_ARCH xsimd::sse4_1
#define HVN_ISA_CLASS HVNAVXFMA
#include "toolkit/isa/HVNIsaMember.h"
