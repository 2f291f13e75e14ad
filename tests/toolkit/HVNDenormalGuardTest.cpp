#include "toolkit/HVNDenormalGuard.h"

#include <gtest/gtest.h>

#if HVN_HAS_MXCSR
TEST (HVNDenormalGuard, SetsFlushToZeroForItsScopeOnly)
{
    const unsigned before = _mm_getcsr();
    _mm_setcsr (before & ~HVNDenormalGuard::flushAndZeroMask);
    {
        HVNDenormalGuard guard;
        EXPECT_EQ (_mm_getcsr() & HVNDenormalGuard::flushAndZeroMask, HVNDenormalGuard::flushAndZeroMask);
        volatile float tiny = 1e-38f;
        volatile float smaller = tiny * 1e-3f;
        EXPECT_EQ (smaller, 0.0f);
    }
    EXPECT_EQ (_mm_getcsr() & HVNDenormalGuard::flushAndZeroMask, 0u);

    // Already set by the caller: left set at the end.
    _mm_setcsr (before | HVNDenormalGuard::flushAndZeroMask);
    {
        HVNDenormalGuard guard;
    }
    EXPECT_EQ (_mm_getcsr() & HVNDenormalGuard::flushAndZeroMask, HVNDenormalGuard::flushAndZeroMask);
    _mm_setcsr (before);
}
#endif
