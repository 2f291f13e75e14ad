#include "toolkit/HVNVec.h"

#include <cstring>

namespace HVNVec
{
int start()
{
    return 0;
}

void copy (const float* s, float* d, uint32_t n)
{
    if (n != 0 && s != d)
        std::memcpy (d, s, n * sizeof (float));
}

void copy (const double* s, double* d, uint32_t n)
{
    if (n != 0 && s != d)
        std::memcpy (d, s, n * sizeof (double));
}

void move (const float* s, float* d, uint32_t n)
{
    if (n != 0)
        std::memmove (d, s, n * sizeof (float));
}

void move (const double* s, double* d, uint32_t n)
{
    if (n != 0)
        std::memmove (d, s, n * sizeof (double));
}

void convert (const double* s, float* d, uint32_t n)
{
    for (uint32_t i = 0; i < n; ++i)
        d[i] = static_cast<float> (s[i]);
}

void convert (const float* s, double* d, uint32_t n)
{
    for (uint32_t i = 0; i < n; ++i)
        d[i] = static_cast<double> (s[i]);
}

void clear (float* d, uint32_t n)
{
    if (n != 0)
        std::memset (d, 0, n * sizeof (float));
}

void clear (double* d, uint32_t n)
{
    if (n != 0)
        std::memset (d, 0, n * sizeof (double));
}
} // namespace HVNVec
