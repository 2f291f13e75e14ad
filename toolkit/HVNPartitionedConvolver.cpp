#include "toolkit/HVNPartitionedConvolver.h"

#include "toolkit/HVNSIMD.h"
#include "toolkit/HVNVec.h"
#include "toolkit/vHVN.h"

#include <algorithm>

namespace
{
constexpr uint32_t headTaps = 2 * HVNPartitionedConvolver::partitionLength;
}

HVNPartitionedConvolver::HVNPartitionedConvolver (uint32_t numChannels, uint32_t taps)
    : channels (numChannels)
    , partitionCount (std::max (1u, (taps + partitionLength - 1) / partitionLength))
    , activePartitions (partitionCount)
    , head (numChannels, partitionLength, headTaps)
    , fft (fftLength)
    , impulseRe (partitionCount * partitionLength)
    , impulseIm (partitionCount * partitionLength)
    , accumulatorRe (numChannels, partitionLength)
    , accumulatorIm (numChannels, partitionLength)
    , inputs (numChannels, fftLength)
    , outputs (numChannels, partitionLength)
    , scratch (fftLength)
    , headOut (partitionLength)
{
    spectra.reserve (numChannels);
    for (uint32_t c = 0; c < numChannels; ++c)
        spectra.push_back (
            std::make_unique<HVNCircularBuffer<float>> (2, (partitionCount + 1) * partitionLength, true));
    HVNImpulse unit (1);
    setImpulse (unit);
    clear();
}

void HVNPartitionedConvolver::setImpulse (const HVNImpulse& impulse)
{
    setImpulse (impulse.samples.data(), impulse.significantLength);
}

void HVNPartitionedConvolver::setImpulse (const float* samples, uint32_t count)
{
    count = std::min (count, partitionCount * partitionLength);
    head.setImpulse (samples, std::min (count, headTaps));
    activePartitions = (count + partitionLength - 1) / partitionLength;

    float* block = scratch.data();
    for (uint32_t b = 0; b < partitionCount; ++b)
    {
        const uint32_t start = b * partitionLength;
        const uint32_t taken = start < count ? std::min (partitionLength, count - start) : 0;
        HVNVec::clear (block, fftLength);
        HVNVec::copy (samples + start, block, taken);
        const uint32_t at = (partitionCount - 1 - b) * partitionLength;
        fft.forwardSplit (block, impulseRe.data() + at, impulseIm.data() + at);
    }
}

void HVNPartitionedConvolver::clear()
{
    for (auto& ring : spectra)
        ring->reset();
    head.clear();
    accumulatorRe.clear();
    accumulatorIm.clear();
    inputs.clear();
    outputs.clear();
    inputFill = 0;
    progress = 0;
    pending = false;
}

void HVNPartitionedConvolver::process (const HVNAudioBuffer<float>& in, HVNAudioBuffer<float>& out,
                                       uint32_t n)
{
    process (in.data(), out.data(), n);
}

void HVNPartitionedConvolver::process (const float* const* in, float* const* out, uint32_t n)
{
    uint32_t offset = 0;
    while (offset < n)
    {
        const uint32_t m = std::min (n - offset, partitionLength - inputFill);
        processPiece (in, out, offset, m);
        offset += m;
    }
}

void HVNPartitionedConvolver::processPiece (const float* const* in, float* const* out, uint32_t offset,
                                            uint32_t m)
{
    const bool completes = inputFill + m == partitionLength;

    // The multiply-accumulate work of the next block's output runs ahead of the
    // input at twice its pace, so that it is done by mid-block and the call that
    // completes the block pays only for the transforms.
    if (!completes)
    {
        const uint32_t work = activePartitions > 2 ? activePartitions - 2 : 0;
        accumulateUpTo ((work * 2 * (inputFill + m) + partitionLength - 1) / partitionLength);
    }

    for (uint32_t c = 0; c < channels; ++c)
    {
        float* x = inputs.channel (c) + partitionLength + inputFill;
        HVNVec::copy (in[c] + offset, x, m);
        head.processChannel (c, x, headOut.data(), m);
        vHVN_vAddInPlace (outputs.channel (c) + inputFill, headOut.data(), m);
        HVNVec::copy (headOut.data(), out[c] + offset, m);
    }

    inputFill += m;
    if (completes)
        finishBlock();
}

void HVNPartitionedConvolver::accumulateUpTo (uint32_t target)
{
    // Partitions 0 and 1 belong to the direct head; progress counts from 2.
    if (!pending)
        return;
    const uint32_t work = activePartitions > 2 ? activePartitions - 2 : 0;
    target = std::min (target, work);
    while (progress < target)
        accumulatePartition (2 + progress++);
}

void HVNPartitionedConvolver::accumulatePartition (uint32_t p)
{
    // Partition p meets the input block p blocks before the output block being
    // prepared, which is p - 2 blocks before the newest spectrum.
    const uint32_t at = (partitionCount - 1 - p) * partitionLength;
    const float* hRe = impulseRe.data() + at;
    const float* hIm = impulseIm.data() + at;
    auto& simd = HVNSIMD::instance();

    uint32_t c = 0;
    for (; c + 1 < channels; c += 2)
    {
        auto& rx = *spectra[c];
        auto& ry = *spectra[c + 1];
        const uint32_t px = rx.positionBeforeLastWrite ((p - 2) * partitionLength);
        const uint32_t py = ry.positionBeforeLastWrite ((p - 2) * partitionLength);
        const float* xRe = rx.lane (0) + px;
        const float* xIm = rx.lane (1) + px;
        const float* yRe = ry.lane (0) + py;
        const float* yIm = ry.lane (1) + py;
        float* axRe = accumulatorRe.channel (c);
        float* axIm = accumulatorIm.channel (c);
        float* ayRe = accumulatorRe.channel (c + 1);
        float* ayIm = accumulatorIm.channel (c + 1);
        // Element 0 carries two real values (DC and Nyquist) that multiply on their own.
        const float qx = xIm[0] * hIm[0];
        const float qy = yIm[0] * hIm[0];
        const float nx = qx + axIm[0];
        const float ny = qy + ayIm[0];
        simd.zMulAccTwin (xRe, xIm, yRe, yIm, hRe, hIm, axRe, axIm, ayRe, ayIm, partitionLength);
        axRe[0] += qx;
        axIm[0] = nx;
        ayRe[0] += qy;
        ayIm[0] = ny;
    }
    if (c < channels)
    {
        auto& r = *spectra[c];
        const uint32_t pos = r.positionBeforeLastWrite ((p - 2) * partitionLength);
        vHVN_zMulAccPacked (r.lane (0) + pos, r.lane (1) + pos, hRe, hIm, accumulatorRe.channel (c),
                            accumulatorIm.channel (c), partitionLength);
    }
}

void HVNPartitionedConvolver::finishBlock()
{
    accumulateUpTo (partitionCount);

    const bool transforms = activePartitions > 2;
    float* time = scratch.data();
    for (uint32_t c = 0; c < channels; ++c)
    {
        float* x = inputs.channel (c);
        if (transforms)
        {
            // Overlap-save: the second half of the circular result is the linear one.
            if (pending)
            {
                fft.inverseReal (accumulatorRe.channel (c), accumulatorIm.channel (c), time);
                HVNVec::copy (time + partitionLength, outputs.channel (c), partitionLength);
            }
            else
                HVNVec::clear (outputs.channel (c), partitionLength);

            fft.forwardSplit (x, time, time + partitionLength);
            const float* parts[2] = {time, time + partitionLength};
            spectra[c]->write (parts, 0, partitionLength);
        }
        else
            HVNVec::clear (outputs.channel (c), partitionLength);

        HVNVec::copy (x + partitionLength, x, partitionLength);
    }
    accumulatorRe.clear();
    accumulatorIm.clear();
    inputFill = 0;
    progress = 0;
    pending = transforms;
}
