#include "toolkit/HVNSIMD.h"

#include "toolkit/HVNAVX.h"
#include "toolkit/HVNAVX2FMA.h"
#include "toolkit/HVNAVXFMA.h"
#include "toolkit/HVNCPUFeatures.h"
#include "toolkit/HVNSSE3.h"
#include "toolkit/HVNSSE41.h"

#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace
{
constexpr const char* memberNames[] = {"sse3", "sse41", "avx", "avxfma", "avx2fma"};

bool processorCanRun (HVNSIMDMember member)
{
    return HVNSIMD::canRun (member, HVNCPUFeatures::level(), HVNCPUFeatures::hasFMA3());
}

// Each member is built only when first asked for, and only on a processor
// that runs it; the objects live until the process exits.
template<typename Member>
HVNSIMD* memberObject()
{
    static Member object;
    return &object;
}

HVNSIMDMember chooseForThisProcess()
{
    const HVNSIMDMember automatic = HVNSIMD::choose (HVNCPUFeatures::level(), HVNCPUFeatures::hasFMA3());
    HVNSIMDMember forced;
    if (const char* text = std::getenv ("ZOLK_SIMD_MEMBER"))
        if (HVNSIMD::parseName (text, forced) && processorCanRun (forced))
            return forced;
    return automatic;
}
} // namespace

HVNSIMDMember HVNSIMD::choose (int level, bool fma3)
{
    if (level >= 8)
        return fma3 ? HVNSIMDMember::avx2Fma : HVNSIMDMember::avx;
    if (level == 7)
        return fma3 ? HVNSIMDMember::avxFma : HVNSIMDMember::avx;
    if (level >= 5)
        return HVNSIMDMember::sse41;
    if (level >= 3)
        return HVNSIMDMember::sse3;
    throw std::runtime_error ("vHVN: CPU does not support SSE3");
}

bool HVNSIMD::canRun (HVNSIMDMember member, int level, bool fma3)
{
    switch (member)
    {
    case HVNSIMDMember::sse3:
        return level >= 3;
    case HVNSIMDMember::sse41:
        return level >= 5;
    case HVNSIMDMember::avx:
        return level >= 7;
    case HVNSIMDMember::avxFma:
        return level >= 7 && fma3;
    case HVNSIMDMember::avx2Fma:
        return level >= 8 && fma3;
    }
    return false;
}

HVNSIMDMember HVNSIMD::selected()
{
    static const HVNSIMDMember member = chooseForThisProcess();
    return member;
}

HVNSIMD& HVNSIMD::instance()
{
    static HVNSIMD* const object = member (selected());
    return *object;
}

const HVNVecKernels& HVNSIMD::kernels()
{
    static const HVNVecKernels* const table = kernels (selected());
    return *table;
}

HVNSIMD* HVNSIMD::member (HVNSIMDMember which)
{
    if (!processorCanRun (which))
        return nullptr;
    switch (which)
    {
    case HVNSIMDMember::sse3:
        return memberObject<HVNSSE3>();
    case HVNSIMDMember::sse41:
        return memberObject<HVNSSE41>();
    case HVNSIMDMember::avx:
        return memberObject<HVNAVX>();
    case HVNSIMDMember::avxFma:
        return memberObject<HVNAVXFMA>();
    case HVNSIMDMember::avx2Fma:
        return memberObject<HVNAVX2FMA>();
    }
    return nullptr;
}

const HVNVecKernels* HVNSIMD::kernels (HVNSIMDMember which)
{
    if (!processorCanRun (which))
        return nullptr;
    switch (which)
    {
    case HVNSIMDMember::sse3:
        return &HVNSSE3::vectorKernels();
    case HVNSIMDMember::sse41:
        return &HVNSSE41::vectorKernels();
    case HVNSIMDMember::avx:
        return &HVNAVX::vectorKernels();
    case HVNSIMDMember::avxFma:
        return &HVNAVXFMA::vectorKernels();
    case HVNSIMDMember::avx2Fma:
        return &HVNAVX2FMA::vectorKernels();
    }
    return nullptr;
}

const char* HVNSIMD::name (HVNSIMDMember member)
{
    return memberNames[static_cast<int> (member)];
}

bool HVNSIMD::parseName (const char* text, HVNSIMDMember& member)
{
    for (int i = 0; i < 5; ++i)
        if (std::strcmp (text, memberNames[i]) == 0)
        {
            member = static_cast<HVNSIMDMember> (i);
            return true;
        }
    return false;
}
