#include "toolkit/HVNFPGuard.h"

#include "toolkit/HVNSIMD.h"

HVNFPGuard::HVNFPGuard()
{
    saved = HVNSIMD::instance().getFPControl();
    const uint32_t wanted = saved | flushBits;
    changed = wanted != saved;
    if (changed)
        HVNSIMD::instance().setFPControl (wanted);
}

HVNFPGuard::~HVNFPGuard()
{
    if (changed)
        HVNSIMD::instance().setFPControl (saved);
}
