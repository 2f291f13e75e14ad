#include "toolkit/vHVN_FFT.h"

#include "toolkit/HVNSIMD.h"
#include "toolkit/HVNVec.h"

#include <fftw3.h>
#include <stdexcept>

namespace vHVN_FFT
{
namespace
{
// The two precisions of FFTW behind one set of names.
template<typename T>
struct Fftw;

template<>
struct Fftw<float>
{
    static void* r2c (int n, float* in, float* out)
    {
        return fftwf_plan_dft_r2c_1d (n, in, reinterpret_cast<fftwf_complex*> (out), FFTW_ESTIMATE);
    }
    static void* c2r (int n, float* in, float* out)
    {
        return fftwf_plan_dft_c2r_1d (n, reinterpret_cast<fftwf_complex*> (in), out, FFTW_ESTIMATE);
    }
    static void execute (void* plan) { fftwf_execute (static_cast<fftwf_plan> (plan)); }
    static void destroy (void* plan) { fftwf_destroy_plan (static_cast<fftwf_plan> (plan)); }
};

template<>
struct Fftw<double>
{
    static void* r2c (int n, double* in, double* out)
    {
        return fftw_plan_dft_r2c_1d (n, in, reinterpret_cast<fftw_complex*> (out), FFTW_ESTIMATE);
    }
    static void* c2r (int n, double* in, double* out)
    {
        return fftw_plan_dft_c2r_1d (n, reinterpret_cast<fftw_complex*> (in), out, FFTW_ESTIMATE);
    }
    static void* c2c (int n, double* in, double* out, int sign)
    {
        return fftw_plan_dft_1d (n, reinterpret_cast<fftw_complex*> (in),
                                 reinterpret_cast<fftw_complex*> (out), sign, FFTW_ESTIMATE);
    }
    static void execute (void* plan) { fftw_execute (static_cast<fftw_plan> (plan)); }
    static void destroy (void* plan) { fftw_destroy_plan (static_cast<fftw_plan> (plan)); }
};

uint32_t checkedOrder (uint32_t n)
{
    // Round up to a power of two by smearing the bits below the highest one.
    uint32_t p = n - 1;
    p |= p >> 1;
    p |= p >> 2;
    p |= p >> 4;
    p |= p >> 8;
    p |= p >> 16;
    ++p;
    if (n < 2 || p != n)
        throw std::runtime_error ("vHVN_FFT: FFT length is not a power of two");
    uint32_t order = 0;
    while ((1u << order) < n)
        ++order;
    return order;
}

template<typename T>
void interleave (const T* re, const T* im, T* out, uint32_t n)
{
    for (uint32_t k = 0; k < n; ++k)
    {
        out[2 * k] = re[k];
        out[2 * k + 1] = im[k];
    }
}
} // namespace

template<typename T>
FFTDataBase<T>::FFTDataBase (uint32_t n)
    : length (n)
    , order (checkedOrder (n))
{
    // Plans may be made on several threads at once only after this.
    HVNVec::start();
}

template<typename T>
FFTData<0, T>::FFTData (uint32_t n)
    : FFTDataBase<T> (n)
    , real (n)
    , complex (n + 2)
{
    forwardPlan = Fftw<T>::r2c (static_cast<int> (n), real.data(), complex.data());
    inversePlan = Fftw<T>::c2r (static_cast<int> (n), complex.data(), real.data());
}

template<typename T>
FFTData<0, T>::~FFTData()
{
    Fftw<T>::destroy (forwardPlan);
    Fftw<T>::destroy (inversePlan);
}

template<typename T>
void FFTData<0, T>::forwardSplit (const T* in, T* re, T* im)
{
    const uint32_t half = this->length / 2;
    HVNVec::copy (in, real.data(), this->length);
    Fftw<T>::execute (forwardPlan);
    const T* c = complex.data();
    re[0] = c[0];
    im[0] = c[2 * half];
    HVNSIMD::instance().vDeinterleave (c + 2, re + 1, im + 1, half - 1);
}

template<typename T>
void FFTData<0, T>::forwardReal (const T* in, T* packed)
{
    HVNVec::copy (in, real.data(), this->length);
    Fftw<T>::execute (forwardPlan);
    const T* c = complex.data();
    packed[0] = c[0];
    packed[1] = c[this->length];
    HVNVec::copy (c + 2, packed + 2, this->length - 2);
}

template<typename T>
void FFTData<0, T>::splitPacked (const T* packed, T* re, T* im, uint32_t n)
{
    HVNSIMD::instance().vDeinterleave (packed, re, im, n / 2);
}

template<typename T>
void FFTData<0, T>::inverseReal (const T* re, const T* im, T* out)
{
    const uint32_t half = this->length / 2;
    T* c = complex.data();
    c[0] = re[0];
    c[1] = 0;
    c[2 * half] = im[0];
    c[2 * half + 1] = 0;
    interleave (re + 1, im + 1, c + 2, half - 1);
    Fftw<T>::execute (inversePlan); // destroys complex, which is ours
    HVNSIMD::instance().vScalarMul (real.data(), T (1) / static_cast<T> (this->length), out, this->length);
}

template<typename T>
FFTData<1, T>::FFTData (uint32_t n)
    : FFTDataBase<T> (n)
    , input (2 * n)
    , output (2 * n)
{
    forwardPlan = Fftw<T>::c2c (static_cast<int> (n), input.data(), output.data(), FFTW_FORWARD);
    inversePlan = Fftw<T>::c2c (static_cast<int> (n), input.data(), output.data(), FFTW_BACKWARD);
}

template<typename T>
FFTData<1, T>::~FFTData()
{
    Fftw<T>::destroy (forwardPlan);
    Fftw<T>::destroy (inversePlan);
}

template<typename T>
void FFTData<1, T>::run (void* plan, const T* re, const T* im, T* outRe, T* outIm, T scale)
{
    const uint32_t n = this->length;
    interleave (re, im, input.data(), n);
    Fftw<T>::execute (plan);
    auto& simd = HVNSIMD::instance();
    simd.vDeinterleave (output.data(), outRe, outIm, n);
    if (scale != T (1))
    {
        simd.vScalarMul (outRe, scale, outRe, n);
        simd.vScalarMul (outIm, scale, outIm, n);
    }
}

template<typename T>
void FFTData<1, T>::forwardComplex (const T* re, const T* im, T* outRe, T* outIm)
{
    run (forwardPlan, re, im, outRe, outIm, T (1));
}

template<typename T>
void FFTData<1, T>::inverseComplex (const T* re, const T* im, T* outRe, T* outIm)
{
    run (inversePlan, re, im, outRe, outIm, T (1) / static_cast<T> (this->length));
}

template class FFTDataBase<float>;
template class FFTDataBase<double>;
template class FFTData<0, float>;
template class FFTData<0, double>;
template class FFTData<1, double>;
} // namespace vHVN_FFT
