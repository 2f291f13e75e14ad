#include "toolkit/HVNSSE3.h"

#define HVN_ISA_NAMESPACE hvn_isa_sse3
#define HVN_ISA_ARCH xsimd::sse3
#define HVN_ISA_FUSED 0
#define HVN_ISA_INT_ARCH xsimd::sse3
#define HVN_ISA_CLASS HVNSSE3
#include "toolkit/isa/HVNIsaMember.h"
