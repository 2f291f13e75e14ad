#include "toolkit/vHVN.h"

#include "toolkit/HVNSIMD.h"

#include <cstddef>

namespace
{
HVNSIMD& simd()
{
    return HVNSIMD::instance();
}
const HVNVecKernels& kernels()
{
    return HVNSIMD::kernels();
}
} // namespace

void vHVN_vAddC (const double* in, double s, double* out, uint32_t n)
{
    simd().vScalarAdd (in, s, out, n);
}
void vHVN_vAddC (const float* in, float s, float* out, uint32_t n)
{
    simd().vScalarAdd (in, s, out, n);
}

void vHVN_vBlend (const float* a, const float* b, float s, float* out, uint32_t n)
{
    simd().vScalarMix (a, s, b, 1.0f - s, out, n);
}

void vHVN_vBlend (const double* a, const double* b, double s, double* out, uint32_t n)
{
    simd().vScalarMix (a, s, b, 1.0 - s, out, n);
}

void vHVN_vQuadInterp (const double* table, const double* positions, double* out, uint32_t n)
{
    simd().vQuadInterp (table, positions, out, n);
}

void vHVN_vTriangle (const double* in, double amplitude, double frequency, double* out, uint32_t n)
{
    simd().vTriangle (in, amplitude, frequency, out, n);
}

void vHVN_vRunningMax (const double* in, double* out, uint32_t n, bool backward)
{
    if (n == 0)
        return;
    if (backward)
    {
        out[n - 1] = in[n - 1];
        for (uint32_t i = n - 1; i-- > 0;)
            out[i] = in[i] > out[i + 1] ? in[i] : out[i + 1];
    }
    else
    {
        out[0] = in[0];
        for (uint32_t i = 1; i < n; ++i)
            out[i] = in[i] > out[i - 1] ? in[i] : out[i - 1];
    }
}

void vHVN_vRunningSum (const double* in, double s, double* out, uint32_t n)
{
    if (n == 0)
        return;
    double sum = 0.0;
    out[0] = 0.0;
    for (uint32_t i = 1; i < n; ++i)
    {
        sum += in[i];
        out[i] = sum;
    }
    simd().vScalarMul (out, s, out, n);
}

void vHVN_vSinc (const double* in, double* out, uint32_t n)
{
    kernels().sincD (in, out, n);
}

void vHVN_vGather (const int32_t* in, uint32_t stride, int32_t* out, uint32_t n)
{
    for (uint32_t i = 0; i < n; ++i)
        out[i] = in[std::size_t (i) * stride];
}

void vHVN_vCopyStrided (const double* in, uint32_t inStride, double* out, uint32_t outStride, uint32_t n)
{
    for (uint32_t i = 0; i < n; ++i)
        out[std::size_t (i) * outStride] = in[std::size_t (i) * inStride];
}

void vHVN_vIntToDouble (const int32_t* in, uint32_t stride, double* out, uint32_t n)
{
    for (uint32_t i = 0; i < n; ++i)
        out[i] = double (in[std::size_t (i) * stride]);
}

void vHVN_vLinToDb (const double* in, double* out, uint32_t n)
{
    kernels().lnScaledD (in, 8.685889638065037, out, n);
}

void vHVN_vDbToLin (const float* in, float* out, uint32_t n)
{
    kernels().expScaledF (in, 0.115129254758358f, out, n);
}

void vHVN_vDbToLin (const double* in, double* out, uint32_t n)
{
    kernels().expScaledD (in, 0.11512925464970228, out, n);
}

void vHVN_vClip (const float* in, float low, float high, float* out, uint32_t n)
{
    kernels().clipF (in, low, high, out, n);
}

void vHVN_vClip (const double* in, double low, double high, double* out, uint32_t n)
{
    kernels().clipD (in, low, high, out, n);
}

void vHVN_vMulC (const float* in, float s, float* out, uint32_t n)
{
    simd().vScalarMul (in, s, out, n);
}
void vHVN_vMulC (const double* in, double s, double* out, uint32_t n)
{
    simd().vScalarMul (in, s, out, n);
}

void vHVN_vScalarMulAdd (const double* a, double s, const double* b, double* out, uint32_t n)
{
    simd().vScalarMulAdd (a, s, b, out, n);
}

void vHVN_vMix (const float* a, float s, const float* b, float t, float* out, uint32_t n)
{
    simd().vScalarMix (a, s, b, t, out, n);
}

void vHVN_vMix (const double* a, double s, const double* b, double t, double* out, uint32_t n)
{
    simd().vScalarMix (a, s, b, t, out, n);
}

void vHVN_vMulAddC (const double* in, double s, double t, double* out, uint32_t n)
{
    simd().vScalarMulScalarAdd (in, s, t, out, n);
}

void vHVN_vPowC (const double* in, double s, double* out, uint32_t n)
{
    kernels().lnScaledD (in, 1.0, out, n);
    kernels().expScaledD (out, s, out, n);
}

void vHVN_vOneMinus (const float* in, float* out, uint32_t n)
{
    simd().vScalarMulScalarAdd (in, -1.0f, 1.0f, out, n);
}

void vHVN_vFill (float* out, float value, uint32_t n)
{
    simd().vFill (out, value, n);
}
void vHVN_vFill (double* out, double value, uint32_t n)
{
    simd().vFill (out, value, n);
}

void vHVN_zMulAccPacked (const float* aRe, const float* aIm, const float* bRe, const float* bIm, float* outRe,
                         float* outIm, uint32_t n)
{
    if (n == 0)
        return;
    const float q = aIm[0] * bIm[0];
    const float p = q + outIm[0];
    simd().zMulAcc (aRe, aIm, bRe, bIm, outRe, outIm, n);
    outRe[0] += q;
    outIm[0] = p;
}

void vHVN_vRemap (const float* in, float inLow, float inHigh, float outLow, float outHigh, float* out,
                  uint32_t n)
{
    const float scale = (outHigh - outLow) / (inHigh - inLow);
    simd().vScalarAdd (in, -inLow, out, n);
    simd().vScalarMulScalarAdd (out, scale, outLow, out, n);
}

void vHVN_vLimit (const double* in, double threshold, double value, double* out, uint32_t n)
{
    simd().vLimit (in, threshold, value, out, n);
}

void vHVN_vLowerBound (const float* in, float level, float* out, uint32_t n)
{
    kernels().lowerBoundF (in, level, out, n);
}
void vHVN_vLowerBound (const double* in, double level, double* out, uint32_t n)
{
    kernels().lowerBoundD (in, level, out, n);
}
void vHVN_vUpperBound (const float* in, float level, float* out, uint32_t n)
{
    kernels().upperBoundF (in, level, out, n);
}
void vHVN_vUpperBound (const double* in, double level, double* out, uint32_t n)
{
    kernels().upperBoundD (in, level, out, n);
}

void vHVN_vRamp (float start, float step, float* out, uint32_t n)
{
    kernels().rampF (start, step, out, n);
}
void vHVN_vRamp (double start, double step, double* out, uint32_t n)
{
    kernels().rampD (start, step, out, n);
}

void vHVN_vTableLookup (const double* in, double a0, double a1, double b0, double b1, const double* table,
                        uint32_t tableLength, double* out, uint32_t n)
{
    const double scale = (b1 - b0) / (a1 - a0);
    const double offset = b0 - a0 * scale;
    simd().vTableLookup (in, scale, offset, table, tableLength, out, n);
}

void vHVN_vAddInPlace (const float* in, float* inout, uint32_t n)
{
    simd().vAddInPlace (in, inout, n);
}
void vHVN_vMul (const float* a, const float* b, float* out, uint32_t n)
{
    simd().vMul (a, b, out, n);
}
void vHVN_vMulInPlace (const float* in, float* inout, uint32_t n)
{
    simd().vMulInPlace (in, inout, n);
}
void vHVN_vMulInPlace (const double* in, double* inout, uint32_t n)
{
    simd().vMulInPlace (in, inout, n);
}
void vHVN_vDiv (const double* a, const double* b, double* out, uint32_t n)
{
    simd().vDiv (a, b, out, n);
}

void vHVN_vMagnitude (const double* re, const double* im, double* out, uint32_t n)
{
    kernels().magnitudeD (re, im, out, n);
}

void vHVN_vFlip (double* inout, uint32_t n)
{
    kernels().flipD (inout, n);
}
double vHVN_vNormInf (const double* in, uint32_t n)
{
    return kernels().normInfD (in, n);
}
void vHVN_vSqrt (const float* in, float* out, uint32_t n)
{
    kernels().sqrtF (in, out, n);
}
void vHVN_vSqrt (const double* in, double* out, uint32_t n)
{
    kernels().sqrtD (in, out, n);
}
void vHVN_vLn (const double* in, double* out, uint32_t n)
{
    kernels().lnScaledD (in, 1.0, out, n);
}
void vHVN_vExp (const float* in, float* out, uint32_t n)
{
    kernels().expScaledF (in, 1.0f, out, n);
}
void vHVN_vExp (const double* in, double* out, uint32_t n)
{
    kernels().expScaledD (in, 1.0, out, n);
}
void vHVN_vSin (const double* in, double* out, uint32_t n)
{
    kernels().sinD (in, out, n);
}

void vHVN_vSinCos (const double* in, double* sinOut, double* cosOut, uint32_t n)
{
    kernels().sinCosD (in, sinOut, cosOut, n);
}
