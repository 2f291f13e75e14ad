#include "toolkit/isa/HVNSortIndices.h"

#include <algorithm>

namespace
{
template<typename T>
void sortIndices (const T* values, uint32_t* indices, uint32_t n, bool descending)
{
    for (uint32_t i = 0; i < n; ++i)
        indices[i] = i;
    if (descending)
        std::sort (indices, indices + n, [values] (uint32_t a, uint32_t b) { return values[a] > values[b]; });
    else
        std::sort (indices, indices + n, [values] (uint32_t a, uint32_t b) { return values[a] < values[b]; });
}
} // namespace

namespace HVNSortIndices
{
void sort (const double* values, uint32_t* indices, uint32_t n, bool descending)
{
    sortIndices (values, indices, n, descending);
}

void sort (const float* values, uint32_t* indices, uint32_t n, bool descending)
{
    sortIndices (values, indices, n, descending);
}
} // namespace HVNSortIndices
