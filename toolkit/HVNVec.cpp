#include "toolkit/HVNVec.h"

#include "toolkit/HVNSIMD.h"

#include <cstring>
#include <fftw3.h>
#include <mutex>

namespace HVNVec
{
int start()
{
    // DSP objects are built on a worker thread while another may be planning
    // transforms; FFTW's planner is only safe for that once this has run.
    static std::once_flag once;
    std::call_once (once,
                    []
                    {
                        fftw_make_planner_thread_safe();
                        fftwf_make_planner_thread_safe();
                    });
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
    HVNSIMD::kernels().convertDF (s, d, n);
}

void convert (const float* s, double* d, uint32_t n)
{
    HVNSIMD::kernels().convertFD (s, d, n);
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
