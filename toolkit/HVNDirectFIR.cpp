#include "toolkit/HVNDirectFIR.h"

#include "toolkit/HVNSIMD.h"
#include "toolkit/HVNVec.h"

#include <algorithm>

HVNDirectFIR::HVNDirectFIR (uint32_t numChannels, uint32_t block, uint32_t taps)
    : impulse (std::max (taps, 1u))
    , channels (numChannels)
    , maxBlock (block)
    , history (numChannels, block + std::max (taps, 1u) - 1)
{
}

void HVNDirectFIR::setImpulse (const float* samples, uint32_t count)
{
    impulse.setSamples (samples, count);
}

void HVNDirectFIR::setImpulse (const HVNImpulse& source)
{
    impulse.setTrim (source.trim, source.trimThreshold);
    impulse.setSamples (source.samples.data(), source.length);
}

void HVNDirectFIR::processChannel (uint32_t c, const float* in, float* out, uint32_t n)
{
    n = std::min (n, maxBlock);
    if (n == 0)
        return;
    const uint32_t past = impulse.length - 1;
    float* h = history.channel (c);
    HVNVec::copy (in, h + past, n);

    // Whole vector groups of taps: the zeros or near-zeros past the significant
    // length cost less than a scalar tail would.
    const uint32_t taps = std::min (impulse.length, (impulse.significantLength + 7u) & ~7u);
    if (taps == 0)
        HVNVec::clear (out, n);
    else
        // Stride -1 from the last significant tap: out[i] = sum_k h[k] x[i - k].
        HVNSIMD::instance().vConv (h + (past - (taps - 1)), 1, impulse.samples.data() + (taps - 1), -1, out,
                                   1, n, taps);

    HVNVec::move (h + n, h, past);
}

void HVNDirectFIR::skip (const float* const* in, uint32_t n)
{
    n = std::min (n, maxBlock);
    const uint32_t past = impulse.length - 1;
    if (past == 0)
        return;
    for (uint32_t c = 0; c < channels; ++c)
    {
        float* h = history.channel (c);
        HVNVec::copy (in[c], h + past, n);
        HVNVec::move (h + n, h, past);
    }
}

void HVNDirectFIR::process (const float* const* in, float* const* out, uint32_t n)
{
    for (uint32_t c = 0; c < channels; ++c)
        processChannel (c, in[c], out[c], n);
}

void HVNDirectFIR::process (const HVNAudioBuffer<float>& in, HVNAudioBuffer<float>& out, uint32_t n)
{
    process (in.data(), out.data(), n);
}

void HVNDirectFIR::clear()
{
    history.clear();
}
