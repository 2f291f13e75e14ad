#include "toolkit/HVNSSE41.h"

#define HVN_ISA_NAMESPACE hvn_isa_sse41
#define HVN_ISA_ARCH xsimd::sse4_1
#define HVN_ISA_FUSED 0
#define HVN_ISA_INT_ARCH xsimd::sse4_1
#define HVN_ISA_CLASS HVNSSE41
#include "toolkit/isa/HVNIsaMember.h"
