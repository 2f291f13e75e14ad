#include "dsp/HVNShaper.h"

#include "dsp/generated/HVNLoFiTables.h"
#include "toolkit/vHVN.h"

#include <algorithm>

HVNShaper::HVNShaper (uint32_t block)
    : blockSize (block)
    , scratch (std::max (block, 1u))
{
}

void HVNShaper::shape (const double* in, double* out, uint32_t n)
{
    // Full scale spans half the table, whose ends hold the ceiling for |x| >= 2.
    vHVN_vTableLookup (in, -1.0, 1.0, 511.5, 1534.5, HVNLoFiTables::shaper, HVNLoFiTables::shaperSize, out,
                       n);
}

void HVNShaper::process (HVNAudioBuffer<double>& block, uint32_t n, const HVNEasingFloat<double>& mix)
{
    n = std::min (n, blockSize);
    for (uint32_t c = 0; c < block.channels(); ++c)
    {
        double* x = block.channel (c);
        shape (x, scratch.data(), n);
        mix.crossfade (scratch.data(), x, x, n);
    }
}
