#include "toolkit/HVNAVX.h"

#define HVN_ISA_NAMESPACE hvn_isa_avx
#define HVN_ISA_ARCH xsimd::avx
#define HVN_ISA_FUSED 0
#define HVN_ISA_INT_ARCH xsimd::sse4_1
#define HVN_ISA_CLASS HVNAVX
#include "toolkit/isa/HVNIsaMember.h"
