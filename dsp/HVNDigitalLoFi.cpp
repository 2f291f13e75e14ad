#include "dsp/HVNDigitalLoFi.h"

#include "toolkit/HVNSIMD.h"
#include "toolkit/HVNVec.h"
#include "toolkit/vHVN.h"

#include <algorithm>
#include <vector>

namespace
{
uint32_t holdFor (double sampleRate, double rate)
{
    return std::max (1u, static_cast<uint32_t> (sampleRate / rate));
}

HVNDirectFIR makeAverage (uint32_t channels, uint32_t block, uint32_t taps)
{
    HVNDirectFIR fir (channels, block, taps);
    std::vector<float> box (taps, 1.0f / static_cast<float> (taps));
    fir.setImpulse (box.data(), taps);
    return fir;
}
} // namespace

HVNDigitalLoFi::HVNDigitalLoFi (uint32_t block, double rate, uint32_t numChannels)
    : blockSize (block)
    , channels (numChannels)
    , holdA (holdFor (rate, 22050.0))
    , holdB (holdFor (rate, 11025.0))
    , averageA (makeAverage (numChannels, block, holdA))
    , averageB (makeAverage (numChannels, block, holdB))
    , floatIn (numChannels, block)
    , floatA (numChannels, block)
    , floatB (numChannels, block)
    , digitalPair (2, block)
    , weightPair (2, block)
{
}

void HVNDigitalLoFi::reset()
{
    averageA.clear();
    averageB.clear();
}

void HVNDigitalLoFi::hold (double* x, uint32_t length, uint32_t n)
{
    const uint32_t groups = n / length;
    for (uint32_t j = 1; j < length; ++j)
        vHVN_vCopyStrided (x, length, x + j, length, groups);
}

void HVNDigitalLoFi::process (HVNAudioBuffer<double>& block, uint32_t n, const HVNEasingFloat<double>& amount,
                              const HVNEasingFloat<double>& type)
{
    n = std::min (n, blockSize);
    if (n == 0)
        return;
    auto& simd = HVNSIMD::instance();

    floatIn.convertFrom (block, n);
    if (!type.isActive() && type.getValue() == 0.0)
    {
        // "Analog": none of the degraded signal is heard, but the averages keep up.
        averageA.skip (floatIn.data(), n);
        averageB.skip (floatIn.data(), n);
        return;
    }
    averageA.process (floatIn, floatA, n);
    averageB.process (floatIn, floatB, n);

    // Below half the amount only the 22 kHz version; above it, a fade to 11 kHz.
    double* w = weightPair.channel (0);
    vHVN_vMulAddC (amount.getBuffer(), -2.0, 2.0, w, n);
    vHVN_vClip (w, 0.0, 1.0, w, n);

    double* first = digitalPair.channel (0);
    double* second = digitalPair.channel (1);
    for (uint32_t c = 0; c < channels; ++c)
    {
        HVNVec::convert (floatA.channel (c), first, n);
        hold (first, holdA, n);
        HVNVec::convert (floatB.channel (c), second, n);
        hold (second, holdB, n);
        simd.vLerp (first, second, w, first, n);
        type.crossfade (first, block.channel (c), block.channel (c), n);
    }
}
