#pragma once

#include <cstdint>

// Index sort shared by all members. It is scalar work, so it is compiled once
// at the baseline instruction set, where the standard library's templates it
// instantiates cannot pick up a member's instructions.
namespace HVNSortIndices
{
void sort (const double* values, uint32_t* indices, uint32_t n, bool descending);
void sort (const float* values, uint32_t* indices, uint32_t n, bool descending);
} // namespace HVNSortIndices
