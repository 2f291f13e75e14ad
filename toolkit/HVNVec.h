#pragma once

#include <cstdint>

// Start-up of the vector library and the block primitives that the containers
// use (copies, moves, conversions, clearing). Everything else of the array math
// lives behind HVNSIMD and the vHVN_ functions.
namespace HVNVec
{
// Prepares the vector library for this process. Returns a negative status when
// it cannot run; callers turn that into "HVNVec: ipp init error". Safe to call
// from several threads and more than once.
int start();

void copy (const float* source, float* destination, uint32_t count);
void copy (const double* source, double* destination, uint32_t count);
void move (const float* source, float* destination, uint32_t count);
void move (const double* source, double* destination, uint32_t count);
void convert (const double* source, float* destination, uint32_t count);
void convert (const float* source, double* destination, uint32_t count);
void clear (float* destination, uint32_t count);
void clear (double* destination, uint32_t count);
} // namespace HVNVec
