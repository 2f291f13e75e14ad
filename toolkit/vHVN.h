#pragma once

#include "toolkit/HVNSIMDEntries.h"

#include <cstdint>

// Array functions of the DSP: each forwards to the process's HVNSIMD member or
// to the vector helpers compiled beside it. Pointers and a 32-bit count, inputs
// first and the output last; nothing is reported and nothing allocates.

void vHVN_vAddC (const double* in, double s, double* out, uint32_t n);
// out = s*a + (1 - s)*b
void vHVN_vBlend (const float* a, const float* b, float s, float* out, uint32_t n);
void vHVN_vBlend (const double* a, const double* b, double s, double* out, uint32_t n);
void vHVN_vQuadInterp (const double* table, const double* positions, double* out, uint32_t n);
void vHVN_vTriangle (const double* in, double amplitude, double frequency, double* out, uint32_t n);
// Running maximum from the first element, or from the last when backward is set.
void vHVN_vRunningMax (const double* in, double* out, uint32_t n, bool backward);
// out[0] = 0, out[i] = out[i-1] + in[i], then all of it times s.
void vHVN_vRunningSum (const double* in, double s, double* out, uint32_t n);
// sin(pi x) / (pi x), 1 at 0.
void vHVN_vSinc (const double* in, double* out, uint32_t n);
void vHVN_vGather (const int32_t* in, uint32_t stride, int32_t* out, uint32_t n);
void vHVN_vCopyStrided (const double* in, uint32_t inStride, double* out, uint32_t outStride, uint32_t n);
void vHVN_vIntToDouble (const int32_t* in, uint32_t stride, double* out, uint32_t n);
void vHVN_vLinToDb (const double* in, double* out, uint32_t n);
void vHVN_vDbToLin (const float* in, float* out, uint32_t n);
void vHVN_vDbToLin (const double* in, double* out, uint32_t n);
// low where in < low, high where in > high; NaN passes through.
void vHVN_vClip (const float* in, float low, float high, float* out, uint32_t n);
void vHVN_vClip (const double* in, double low, double high, double* out, uint32_t n);
void vHVN_vMulC (const float* in, float s, float* out, uint32_t n);
void vHVN_vMulC (const double* in, double s, double* out, uint32_t n);
void vHVN_vScalarMulAdd (const double* a, double s, const double* b, double* out, uint32_t n);
// out = s*a + t*b
void vHVN_vMix (const float* a, float s, const float* b, float t, float* out, uint32_t n);
void vHVN_vMix (const double* a, double s, const double* b, double t, double* out, uint32_t n);
// out = s*in + t
void vHVN_vMulAddC (const double* in, double s, double t, double* out, uint32_t n);
// out = exp(s * ln(in))
void vHVN_vPowC (const double* in, double s, double* out, uint32_t n);
void vHVN_vOneMinus (const float* in, float* out, uint32_t n);
void vHVN_vFill (float* out, float value, uint32_t n);
void vHVN_vFill (double* out, double value, uint32_t n);
// zMulAcc on spectra in packed real format: element 0 holds the real DC value
// in re and the real Nyquist value in im, and they multiply independently.
void vHVN_zMulAccPacked (const float* aRe, const float* aIm, const float* bRe, const float* bIm, float* outRe,
                         float* outIm, uint32_t n);
// Linear map of [inLow, inHigh] onto [outLow, outHigh].
void vHVN_vRemap (const float* in, float inLow, float inHigh, float outLow, float outHigh, float* out,
                  uint32_t n);
void vHVN_vLimit (const double* in, double threshold, double value, double* out, uint32_t n);
// out = max(in, level) and out = min(in, level); NaN passes through.
void vHVN_vLowerBound (const float* in, float level, float* out, uint32_t n);
void vHVN_vLowerBound (const double* in, double level, double* out, uint32_t n);
void vHVN_vUpperBound (const float* in, float level, float* out, uint32_t n);
void vHVN_vUpperBound (const double* in, double level, double* out, uint32_t n);
// out[i] = start + i*step
void vHVN_vRamp (float start, float step, float* out, uint32_t n);
void vHVN_vRamp (double start, double step, double* out, uint32_t n);
// Maps in from [a0, a1] onto the table positions [b0, b1], then looks up linearly.
void vHVN_vTableLookup (const double* in, double a0, double a1, double b0, double b1, const double* table,
                        uint32_t tableLength, double* out, uint32_t n);

// Block helpers of the FFT, filter and converter code.
void vHVN_vAddInPlace (const float* in, float* inout, uint32_t n);
void vHVN_vMul (const float* a, const float* b, float* out, uint32_t n);
void vHVN_vMulInPlace (const float* in, float* inout, uint32_t n);
void vHVN_vMulInPlace (const double* in, double* inout, uint32_t n);
void vHVN_vDiv (const double* a, const double* b, double* out, uint32_t n);
void vHVN_vMagnitude (const double* re, const double* im, double* out, uint32_t n);
void vHVN_vFlip (double* inout, uint32_t n);
double vHVN_vNormInf (const double* in, uint32_t n);
void vHVN_vAddC (const float* in, float s, float* out, uint32_t n);
void vHVN_vSqrt (const float* in, float* out, uint32_t n);
void vHVN_vSqrt (const double* in, double* out, uint32_t n);
void vHVN_vLn (const double* in, double* out, uint32_t n);
void vHVN_vExp (const float* in, float* out, uint32_t n);
void vHVN_vExp (const double* in, double* out, uint32_t n);
void vHVN_vSin (const double* in, double* out, uint32_t n);
void vHVN_vSinCos (const double* in, double* sinOut, double* cosOut, uint32_t n);
