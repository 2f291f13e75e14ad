#include "dsp/HVNZC1DSP.h"

#include "toolkit/HVNVec.h"

#include <algorithm>
#include <cmath>

uint32_t HVNZC1DSP::lookAheadFor (double rate)
{
    return 4u + static_cast<uint32_t> (std::lround (0.000272 * rate));
}

HVNZC1DSP::HVNZC1DSP (uint32_t block, double rate, uint32_t inputs, uint32_t outputs, uint32_t sidechains,
                      uint32_t factor)
    : HVNAbstractDSP (block, rate, inputs, outputs, sidechains, factor)
    , routed (outputs, block)
    , delay (outputs, lookAheadFor (rate) + block, true)
{
    setLatency (lookAheadFor (rate));
}

void HVNZC1DSP::process (const HVNAudioBuffer<float>& input, HVNAudioBuffer<float>& output,
                         const HVNAudioBuffer<float>&, uint32_t numSamples, bool)
{
    const uint32_t n = std::min (numSamples, blockSize);
    if (n == 0)
        return;

    routed.copyFrom (input, n);
    delay.write (routed, 0, n);

    const uint32_t start = delay.positionBeforeLastWrite (getLatencySamples());
    const uint32_t channels = std::min (output.channels(), numOutputs);
    for (uint32_t c = 0; c < channels; ++c)
        if (float* out = output.channel (c))
            HVNVec::copy (delay.lane (c) + start, out, n);
}

void HVNZC1DSP::reset()
{
    delay.reset();
    HVNAbstractDSP::reset();
}
