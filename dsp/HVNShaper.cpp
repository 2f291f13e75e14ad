#include "dsp/HVNShaper.h"

#include "dsp/generated/HVNLoFiTables.h"
#include "toolkit/vHVN.h"

namespace HVNShaper
{
void shape (const double* in, double* out, uint32_t n)
{
    // Full scale spans half the table, whose ends hold the ceiling for |x| >= 2.
    vHVN_vTableLookup (in, -1.0, 1.0, 511.5, 1534.5, HVNLoFiTables::shaper, HVNLoFiTables::shaperSize, out,
                       n);
}

void process (HVNAudioBuffer<double>& block, uint32_t n, const HVNEasingFloat<double>& mix, double* scratch)
{
    for (uint32_t c = 0; c < block.channels(); ++c)
    {
        double* x = block.channel (c);
        shape (x, scratch, n);
        mix.crossfade (scratch, x, x, n);
    }
}
} // namespace HVNShaper
