#pragma once

#include "toolkit/HVNSIMD.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace hvn_test
{
struct Member
{
    std::string name;
    HVNSIMD* simd;
    const HVNVecKernels* kernels;
    bool fused;
};

// Every member this processor runs.
inline std::vector<Member> runnableMembers()
{
    std::vector<Member> members;
    for (int i = 0; i < 5; ++i)
    {
        const auto m = static_cast<HVNSIMDMember> (i);
        if (HVNSIMD* simd = HVNSIMD::member (m))
            members.push_back ({HVNSIMD::name (m), simd, HVNSIMD::kernels (m),
                                m == HVNSIMDMember::avxFma || m == HVNSIMDMember::avx2Fma});
    }
    return members;
}

// An array with guard words on both sides and a chosen misalignment (in
// elements) from a 64-byte boundary, to catch overruns and to reach both the
// aligned and the unaligned loops.
template<typename T>
class Guarded
{
public:
    static constexpr uint32_t guard = 24;

    Guarded (uint32_t count, uint32_t misalign)
        : n (count)
        , storage (count + 2 * guard + 64)
    {
        auto address = reinterpret_cast<uintptr_t> (storage.data() + guard);
        const uintptr_t alignedAddress = (address + 63) & ~uintptr_t (63);
        begin = reinterpret_cast<T*> (alignedAddress) + misalign;
        for (T& x : storage)
            x = sentinel();
    }

    T* data() { return begin; }
    const T* data() const { return begin; }
    T& operator[] (uint32_t i) { return begin[i]; }

    bool guardsIntact() const
    {
        for (uint32_t i = 1; i <= guard; ++i)
            if (!same (begin[-int64_t (i)], sentinel()) || !same (begin[n + i - 1], sentinel()))
                return false;
        return true;
    }

    static T sentinel() { return T (-12345.5); }

    static bool same (T a, T b) { return std::memcmp (&a, &b, sizeof (T)) == 0; }

    uint32_t n;

private:
    std::vector<T> storage;
    T* begin;
};

// The counts every entry is run with: all from 0 to 67 and a few large odd ones.
inline std::vector<uint32_t> testCounts()
{
    std::vector<uint32_t> counts;
    for (uint32_t n = 0; n <= 67; ++n)
        counts.push_back (n);
    counts.push_back (257);
    counts.push_back (1001);
    counts.push_back (4099);
    return counts;
}

template<typename T>
T ulpScale()
{
    return std::numeric_limits<T>::epsilon();
}

inline bool bothNaN (double a, double b)
{
    return std::isnan (a) && std::isnan (b);
}
} // namespace hvn_test
