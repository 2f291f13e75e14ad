#pragma once

#include <cstdint>

// Vector helpers outside the HVNSIMD interface, compiled once per instruction
// set beside it: transcendental functions, conversions and the block helpers
// the vHVN_ layer and the containers build on. Reached through
// HVNSIMD::kernels(); each table is constant and holds plain function pointers.
struct HVNVecKernels
{
    // out = exp(scale * in); the product is rounded before the exponential.
    void (*expScaledF) (const float* in, float scale, float* out, uint32_t n);
    void (*expScaledD) (const double* in, double scale, double* out, uint32_t n);
    // out = scale * ln(in)
    void (*lnScaledD) (const double* in, double scale, double* out, uint32_t n);
    void (*sinD) (const double* in, double* out, uint32_t n);
    void (*sinCosD) (const double* in, double* sinOut, double* cosOut, uint32_t n);
    // x = pi * in; out = sin(x) / x, and 1 where x is exactly 0
    void (*sincD) (const double* in, double* out, uint32_t n);
    void (*sqrtF) (const float* in, float* out, uint32_t n);
    void (*sqrtD) (const double* in, double* out, uint32_t n);
    // out = sqrt(re^2 + im^2)
    void (*magnitudeD) (const double* re, const double* im, double* out, uint32_t n);
    // largest absolute value, 0 for an empty array
    double (*normInfD) (const double* in, uint32_t n);
    // reverses in place
    void (*flipD) (double* inout, uint32_t n);
    void (*convertDF) (const double* in, float* out, uint32_t n);
    void (*convertFD) (const float* in, double* out, uint32_t n);
    // out = start + i * step
    void (*rampF) (float start, float step, float* out, uint32_t n);
    void (*rampD) (double start, double step, double* out, uint32_t n);
    // Threshold forms that let NaN through: out = level where in < level (lower),
    // where in > level (upper), and both for clip.
    void (*lowerBoundF) (const float* in, float level, float* out, uint32_t n);
    void (*lowerBoundD) (const double* in, double level, double* out, uint32_t n);
    void (*upperBoundF) (const float* in, float level, float* out, uint32_t n);
    void (*upperBoundD) (const double* in, double level, double* out, uint32_t n);
    void (*clipF) (const float* in, float low, float high, float* out, uint32_t n);
    void (*clipD) (const double* in, double low, double high, double* out, uint32_t n);
    // A six-point quintic read of line that moves along with the output: sample
    // i lies at i + offsets[i], whose whole part k needs line[k - 2] to line[k + 3].
    void (*quinticReadD) (const double* line, const double* offsets, double* out, uint32_t n);
};
