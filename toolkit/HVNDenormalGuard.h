#pragma once

#if defined(__SSE__) || defined(_M_X64)
#include <xmmintrin.h>
#define HVN_HAS_MXCSR 1
#else
#define HVN_HAS_MXCSR 0
#endif

// Sets flush-to-zero and denormals-are-zero for the scope of one block and puts
// the caller's floating-point mode back at its end. This is the one place where
// denormals are handled: the recursive filters rely on it instead of adding noise.
class HVNDenormalGuard
{
public:
    static constexpr unsigned flushAndZeroMask = 0x8040;

    HVNDenormalGuard()
    {
#if HVN_HAS_MXCSR
        previous = _mm_getcsr();
        const unsigned wanted = previous | flushAndZeroMask;
        if (wanted != previous)
        {
            _mm_setcsr (wanted);
            changed = true;
        }
#endif
    }

    ~HVNDenormalGuard()
    {
#if HVN_HAS_MXCSR
        if (changed)
            _mm_setcsr (previous);
#endif
    }

    HVNDenormalGuard (const HVNDenormalGuard&) = delete;
    HVNDenormalGuard& operator= (const HVNDenormalGuard&) = delete;

private:
    unsigned previous = 0;
    bool changed = false;
};
