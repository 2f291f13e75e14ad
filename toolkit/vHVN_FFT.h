#pragma once

#include "toolkit/HVNArray.h"

#include <cstdint>

// Forward and inverse transforms of one power-of-two length, planned once at
// construction. Real spectra are handed out in packed split form: N/2 complex
// values where re[0] holds DC and im[0] the Nyquist bin, both real, and
// re[k], im[k] bin k for 1 <= k < N/2. Forward transforms are unscaled; every
// inverse divides by N, so that inverse(forward(x)) == x.
//
// Each object owns its work arrays: one object per thread. Construction plans
// and allocates; the transforms neither allocate nor lock.
namespace vHVN_FFT
{
template<typename T>
class FFTDataBase
{
public:
    // Throws std::runtime_error "vHVN_FFT: FFT length is not a power of two".
    explicit FFTDataBase (uint32_t length);
    virtual ~FFTDataBase() = default;

    FFTDataBase (const FFTDataBase&) = delete;
    FFTDataBase& operator= (const FFTDataBase&) = delete;

    uint32_t getLength() const { return length; }
    uint32_t getOrder() const { return order; }

protected:
    uint32_t length;
    uint32_t order;
};

// Kind 0 is a real transform, Kind 1 a complex one.
template<int Kind, typename T>
class FFTData;

template<typename T>
class FFTData<0, T> : public FFTDataBase<T>
{
public:
    explicit FFTData (uint32_t length);
    ~FFTData() override;

    // length real samples to length/2 packed complex values.
    void forwardSplit (const T* in, T* re, T* im);
    // The same spectrum interleaved: packed[0] = DC, packed[1] = Nyquist, then
    // (re, im) of bins 1 to N/2 - 1.
    void forwardReal (const T* in, T* packed);
    static void splitPacked (const T* packed, T* re, T* im, uint32_t length);
    // Packed split spectrum back to length real samples, scaled by 1/length.
    // The inputs are left untouched.
    void inverseReal (const T* re, const T* im, T* out);

private:
    HVNArray<T> real;    // time-domain side of both plans
    HVNArray<T> complex; // length/2 + 1 interleaved bins
    void* forwardPlan = nullptr;
    void* inversePlan = nullptr;
};

template<typename T>
class FFTData<1, T> : public FFTDataBase<T>
{
public:
    explicit FFTData (uint32_t length);
    ~FFTData() override;

    // Unscaled forward transform of split complex input.
    void forwardComplex (const T* re, const T* im, T* outRe, T* outIm);
    // Inverse transform, scaled by 1/length.
    void inverseComplex (const T* re, const T* im, T* outRe, T* outIm);

private:
    void run (void* plan, const T* re, const T* im, T* outRe, T* outIm, T scale);

    HVNArray<T> input;  // interleaved
    HVNArray<T> output; // interleaved
    void* forwardPlan = nullptr;
    void* inversePlan = nullptr;
};

extern template class FFTDataBase<float>;
extern template class FFTDataBase<double>;
extern template class FFTData<0, float>;
extern template class FFTData<0, double>;
extern template class FFTData<1, double>;
} // namespace vHVN_FFT
