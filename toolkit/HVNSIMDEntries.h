#pragma once

#include <cstdint>

// The entries of HVNSIMD in virtual-table order, one line each, so that the
// interface, the five members and their definitions are expanded from a single
// list and can never drift apart. X(result, name, parameters, arguments).
// Where an entry exists for both element types the double form comes first.
// The virtual destructor follows the list as the last entry.
// clang-format off
#define HVN_SIMD_ENTRIES(X) \
    X(uint32_t, doubleLanes, (), ()) \
    X(uint32_t, floatLanes, (), ()) \
    X(void, vMean, (const double* in, double* out, uint32_t n), (in, out, n)) \
    X(void, vMean, (const float* in, float* out, uint32_t n), (in, out, n)) \
    X(void, vAbs, (const double* in, double* out, uint32_t n), (in, out, n)) \
    X(void, vAbs, (const float* in, float* out, uint32_t n), (in, out, n)) \
    X(void, vAdd, (const double* a, const double* b, double* out, uint32_t n), (a, b, out, n)) \
    X(void, vAdd, (const float* a, const float* b, float* out, uint32_t n), (a, b, out, n)) \
    X(void, vAddInPlace, (const double* in, double* inout, uint32_t n), (in, inout, n)) \
    X(void, vAddInPlace, (const float* in, float* inout, uint32_t n), (in, inout, n)) \
    X(void, vAddMul, (const double* a, const double* b, const double* c, double* out, uint32_t n), (a, b, c, out, n)) \
    X(void, vAddMul, (const float* a, const float* b, const float* c, float* out, uint32_t n), (a, b, c, out, n)) \
    X(void, vDeinterleave, (const double* in, double* outA, double* outB, uint32_t n), (in, outA, outB, n)) \
    X(void, vDeinterleave, (const float* in, float* outA, float* outB, uint32_t n), (in, outA, outB, n)) \
    X(void, vConv, (const double* in, int32_t inStride, const double* filter, int32_t filterStride, double* out, int32_t outStride, uint32_t n, uint32_t taps), (in, inStride, filter, filterStride, out, outStride, n, taps)) \
    X(void, vConv, (const float* in, int32_t inStride, const float* filter, int32_t filterStride, float* out, int32_t outStride, uint32_t n, uint32_t taps), (in, inStride, filter, filterStride, out, outStride, n, taps)) \
    X(void, vCopySign, (const double* a, const double* b, double* out, uint32_t n), (a, b, out, n)) \
    X(void, vCopySign, (const float* a, const float* b, float* out, uint32_t n), (a, b, out, n)) \
    X(void, vLerp, (const double* a, const double* b, const double* t, double* out, uint32_t n), (a, b, t, out, n)) \
    X(void, vLerp, (const float* a, const float* b, const float* t, float* out, uint32_t n), (a, b, t, out, n)) \
    X(void, vDiv, (const double* a, const double* b, double* out, uint32_t n), (a, b, out, n)) \
    X(void, vDiv, (const float* a, const float* b, float* out, uint32_t n), (a, b, out, n)) \
    X(void, vDot, (const double* a, const double* b, double* out, uint32_t n), (a, b, out, n)) \
    X(void, vDot, (const float* a, const float* b, float* out, uint32_t n), (a, b, out, n)) \
    X(void, vDotTwin, (const double* a1, const double* a2, const double* b, double* out1, double* out2, uint32_t n), (a1, a2, b, out1, out2, n)) \
    X(void, vDotTwin, (const float* a1, const float* a2, const float* b, float* out1, float* out2, uint32_t n), (a1, a2, b, out1, out2, n)) \
    X(uint32_t, getFPControl, (), ()) \
    X(void, setFPControl, (uint32_t value), (value)) \
    X(void, setFlushDenormals, (bool on), (on)) \
    X(void, vClip, (const double* in, double low, double high, double* out, uint32_t n), (in, low, high, out, n)) \
    X(void, vClip, (const float* in, float low, float high, float* out, uint32_t n), (in, low, high, out, n)) \
    X(void, vClear, (double* out, uint32_t n), (out, n)) \
    X(void, vClear, (float* out, uint32_t n), (out, n)) \
    X(void, vDecimate, (const double* in, uint32_t factor, const double* filter, uint32_t taps, double* out, uint32_t n), (in, factor, filter, taps, out, n)) \
    X(void, vDecimate, (const float* in, uint32_t factor, const float* filter, uint32_t taps, float* out, uint32_t n), (in, factor, filter, taps, out, n)) \
    X(void, vDecimateTwin, (const double* inA, const double* inB, uint32_t factor, const double* filter, uint32_t taps, double* outA, double* outB, uint32_t n), (inA, inB, factor, filter, taps, outA, outB, n)) \
    X(void, vDecimateTwin, (const float* inA, const float* inB, uint32_t factor, const float* filter, uint32_t taps, float* outA, float* outB, uint32_t n), (inA, inB, factor, filter, taps, outA, outB, n)) \
    X(void, vFill, (double* out, double value, uint32_t n), (out, value, n)) \
    X(void, vFill, (float* out, float value, uint32_t n), (out, value, n)) \
    X(void, vFloor, (const double* in, double* out, uint32_t n), (in, out, n)) \
    X(void, vFloor, (const float* in, float* out, uint32_t n), (in, out, n)) \
    X(void, vFrac, (const double* in, double* out, uint32_t n), (in, out, n)) \
    X(void, vFrac, (const float* in, float* out, uint32_t n), (in, out, n)) \
    X(void, vQuadInterp, (const double* table, const double* positions, double* out, uint32_t n), (table, positions, out, n)) \
    X(void, vQuadInterp, (const float* table, const float* positions, float* out, uint32_t n), (table, positions, out, n)) \
    X(void, vMax, (const double* a, const double* b, double* out, uint32_t n), (a, b, out, n)) \
    X(void, vMax, (const float* a, const float* b, float* out, uint32_t n), (a, b, out, n)) \
    X(void, vMaxMag, (const double* a, const double* b, double* out, uint32_t n), (a, b, out, n)) \
    X(void, vMaxMag, (const float* a, const float* b, float* out, uint32_t n), (a, b, out, n)) \
    X(void, vScaleInt, (const int32_t* ints, const double* scale, int32_t* outInts, uint32_t n), (ints, scale, outInts, n)) \
    X(void, vScaleInt, (const int32_t* ints, const float* scale, int32_t* outInts, uint32_t n), (ints, scale, outInts, n)) \
    X(void, vMul, (const double* a, const double* b, double* out, uint32_t n), (a, b, out, n)) \
    X(void, vMul, (const float* a, const float* b, float* out, uint32_t n), (a, b, out, n)) \
    X(void, vMulInPlace, (const double* in, double* inout, uint32_t n), (in, inout, n)) \
    X(void, vMulInPlace, (const float* in, float* inout, uint32_t n), (in, inout, n)) \
    X(void, vMulAdd, (const double* a, const double* b, const double* c, double* out, uint32_t n), (a, b, c, out, n)) \
    X(void, vMulAdd, (const float* a, const float* b, const float* c, float* out, uint32_t n), (a, b, c, out, n)) \
    X(void, vMulTriple, (const double* a, const double* b, const double* c, double* out, uint32_t n), (a, b, c, out, n)) \
    X(void, vMulTriple, (const float* a, const float* b, const float* c, float* out, uint32_t n), (a, b, c, out, n)) \
    X(void, vMulMulAdd, (const double* a, const double* b, const double* c, const double* d, double* out, uint32_t n), (a, b, c, d, out, n)) \
    X(void, vMulMulAdd, (const float* a, const float* b, const float* c, const float* d, float* out, uint32_t n), (a, b, c, d, out, n)) \
    X(void, vMulMulSub, (const double* a, const double* b, const double* c, const double* d, double* out, uint32_t n), (a, b, c, d, out, n)) \
    X(void, vMulMulSub, (const float* a, const float* b, const float* c, const float* d, float* out, uint32_t n), (a, b, c, d, out, n)) \
    X(void, vMulSub, (const double* a, const double* b, const double* c, double* out, uint32_t n), (a, b, c, out, n)) \
    X(void, vMulSub, (const float* a, const float* b, const float* c, float* out, uint32_t n), (a, b, c, out, n)) \
    X(void, vNeg, (const double* in, double* out, uint32_t n), (in, out, n)) \
    X(void, vNeg, (const float* in, float* out, uint32_t n), (in, out, n)) \
    X(void, vPoly, (const double* in, const double* coefficients, uint32_t count, double* out, uint32_t n), (in, coefficients, count, out, n)) \
    X(void, vPoly, (const float* in, const float* coefficients, uint32_t count, float* out, uint32_t n), (in, coefficients, count, out, n)) \
    X(void, vRecip, (const double* in, double* out, uint32_t n), (in, out, n)) \
    X(void, vRecip, (const float* in, float* out, uint32_t n), (in, out, n)) \
    X(void, vScalarDiv, (const double* in, double s, double* out, uint32_t n), (in, s, out, n)) \
    X(void, vScalarDiv, (const float* in, float s, float* out, uint32_t n), (in, s, out, n)) \
    X(void, vSignSplit, (const double* in, double* positive, double* negative, uint32_t n, bool magnitude), (in, positive, negative, n, magnitude)) \
    X(void, vSignSplit, (const float* in, float* positive, float* negative, uint32_t n, bool magnitude), (in, positive, negative, n, magnitude)) \
    X(void, vSortIndices, (const double* values, uint32_t* indices, uint32_t n, bool descending), (values, indices, n, descending)) \
    X(void, vSortIndices, (const float* values, uint32_t* indices, uint32_t n, bool descending), (values, indices, n, descending)) \
    X(void, vSub, (const double* a, const double* b, double* out, uint32_t n), (a, b, out, n)) \
    X(void, vSub, (const float* a, const float* b, float* out, uint32_t n), (a, b, out, n)) \
    X(void, vScalarAddInt, (const int32_t* in, int32_t s, int32_t* out, uint32_t n), (in, s, out, n)) \
    X(void, vScalarAdd, (const double* in, double s, double* out, uint32_t n), (in, s, out, n)) \
    X(void, vScalarAdd, (const float* in, float s, float* out, uint32_t n), (in, s, out, n)) \
    X(void, vScalarMulInt, (const int32_t* in, int32_t s, int32_t* out, uint32_t n), (in, s, out, n)) \
    X(void, vScalarMul, (const double* in, double s, double* out, uint32_t n), (in, s, out, n)) \
    X(void, vScalarMul, (const float* in, float s, float* out, uint32_t n), (in, s, out, n)) \
    X(void, vScalarMulAdd, (const double* a, double s, const double* b, double* out, uint32_t n), (a, s, b, out, n)) \
    X(void, vScalarMulAdd, (const float* a, float s, const float* b, float* out, uint32_t n), (a, s, b, out, n)) \
    X(void, vScalarMulScalarAdd, (const double* in, double s, double t, double* out, uint32_t n), (in, s, t, out, n)) \
    X(void, vScalarMulScalarAdd, (const float* in, float s, float t, float* out, uint32_t n), (in, s, t, out, n)) \
    X(void, vScalarMix, (const double* a, double s, const double* b, double t, double* out, uint32_t n), (a, s, b, t, out, n)) \
    X(void, vScalarMix, (const float* a, float s, const float* b, float t, float* out, uint32_t n), (a, s, b, t, out, n)) \
    X(void, vSubScalarMul, (const double* a, const double* b, double s, double* out, uint32_t n), (a, b, s, out, n)) \
    X(void, vSubScalarMul, (const float* a, const float* b, float s, float* out, uint32_t n), (a, b, s, out, n)) \
    X(void, vSquare, (const double* in, double* out, uint32_t n), (in, out, n)) \
    X(void, vSquare, (const float* in, float* out, uint32_t n), (in, out, n)) \
    X(void, vSquareInPlace, (double* inout, uint32_t n), (inout, n)) \
    X(void, vSquareInPlace, (float* inout, uint32_t n), (inout, n)) \
    X(void, vSwap, (double* a, double* b, uint32_t n), (a, b, n)) \
    X(void, vSwap, (float* a, float* b, uint32_t n), (a, b, n)) \
    X(void, vTableLookup, (const double* in, double scale, double offset, const double* table, uint32_t tableLength, double* out, uint32_t n), (in, scale, offset, table, tableLength, out, n)) \
    X(void, vTableLookup, (const float* in, float scale, float offset, const float* table, uint32_t tableLength, float* out, uint32_t n), (in, scale, offset, table, tableLength, out, n)) \
    X(void, vThreshold, (const double* in, double t, double* out, uint32_t n), (in, t, out, n)) \
    X(void, vThreshold, (const float* in, float t, float* out, uint32_t n), (in, t, out, n)) \
    X(void, vLimit, (const double* in, double threshold, double value, double* out, uint32_t n), (in, threshold, value, out, n)) \
    X(void, vLimit, (const float* in, float threshold, float value, float* out, uint32_t n), (in, threshold, value, out, n)) \
    X(void, vTriangle, (const double* in, double amplitude, double frequency, double* out, uint32_t n), (in, amplitude, frequency, out, n)) \
    X(void, vTriangle, (const float* in, float amplitude, float frequency, float* out, uint32_t n), (in, amplitude, frequency, out, n)) \
    X(void, vUnitTriangle, (const double* in, double* out, uint32_t n), (in, out, n)) \
    X(void, vUnitTriangle, (const float* in, float* out, uint32_t n), (in, out, n)) \
    X(void, zAdd, (const double* aRe, const double* aIm, const double* bRe, const double* bIm, double* outRe, double* outIm, uint32_t n), (aRe, aIm, bRe, bIm, outRe, outIm, n)) \
    X(void, zAdd, (const float* aRe, const float* aIm, const float* bRe, const float* bIm, float* outRe, float* outIm, uint32_t n), (aRe, aIm, bRe, bIm, outRe, outIm, n)) \
    X(void, zMul, (HVNSplitIn<double> a, HVNSplitIn<double> b, HVNSplitOut<double> out, uint32_t n), (a, b, out, n)) \
    X(void, zMul, (HVNSplitIn<float> a, HVNSplitIn<float> b, HVNSplitOut<float> out, uint32_t n), (a, b, out, n)) \
    X(void, cMul, (const double* a, const double* b, double* out, uint32_t n), (a, b, out, n)) \
    X(void, cMul, (const float* a, const float* b, float* out, uint32_t n), (a, b, out, n)) \
    X(void, zMulAcc, (const double* aRe, const double* aIm, const double* bRe, const double* bIm, double* outRe, double* outIm, uint32_t n), (aRe, aIm, bRe, bIm, outRe, outIm, n)) \
    X(void, zMulAcc, (const float* aRe, const float* aIm, const float* bRe, const float* bIm, float* outRe, float* outIm, uint32_t n), (aRe, aIm, bRe, bIm, outRe, outIm, n)) \
    X(void, cMulAcc, (const double* a, const double* b, double* inout, uint32_t n), (a, b, inout, n)) \
    X(void, cMulAcc, (const float* a, const float* b, float* inout, uint32_t n), (a, b, inout, n)) \
    X(void, zMulAccTwin, (const double* xRe, const double* xIm, const double* yRe, const double* yIm, const double* hRe, const double* hIm, double* accXRe, double* accXIm, double* accYRe, double* accYIm, uint32_t n), (xRe, xIm, yRe, yIm, hRe, hIm, accXRe, accXIm, accYRe, accYIm, n)) \
    X(void, zMulAccTwin, (const float* xRe, const float* xIm, const float* yRe, const float* yIm, const float* hRe, const float* hIm, float* accXRe, float* accXIm, float* accYRe, float* accYIm, uint32_t n), (xRe, xIm, yRe, yIm, hRe, hIm, accXRe, accXIm, accYRe, accYIm, n))
// clang-format on

// A split-complex array: real and imaginary parts in two arrays of equal length.
template<typename T>
struct HVNSplitIn
{
    const T* re;
    const T* im;
};

template<typename T>
struct HVNSplitOut
{
    T* re;
    T* im;
};
