#pragma once

#include "dsp/HVNAbstractDSP.h"
#include "dsp/HVNZC1DSP.h"
#include "toolkit/HVNAudioBuffer.h"
#include "toolkit/HVNCircularBuffer.h"
#include "toolkit/HVNVec.h"

#include <algorithm>
#include <atomic>

// A pure delay with the signal path's latency and a gain on its output, so that
// the host's tests can tell the processed signal from the dry one without
// depending on the sound; counts its resets.
class ProbeDSP : public HVNAbstractDSP
{
public:
    ProbeDSP (uint32_t blockSize, double sampleRate, uint32_t numInputs, uint32_t numOutputs,
              uint32_t numSidechains, uint32_t upsampleFactor, float outputGain)
        : HVNAbstractDSP (blockSize, sampleRate, numInputs, numOutputs, numSidechains, upsampleFactor)
        , gain (outputGain)
        , routed (numOutputs, blockSize)
        , delay (numOutputs, HVNZC1DSP::latencyFor (sampleRate, upsampleFactor) + blockSize, true)
    {
        setLatency (HVNZC1DSP::latencyFor (sampleRate, upsampleFactor));
    }

    void process (const HVNAudioBuffer<float>& input, HVNAudioBuffer<float>& output,
                  const HVNAudioBuffer<float>& sidechain, uint32_t numSamples, bool sidechainActive) override
    {
        const uint32_t n = std::min (numSamples, blockSize);
        if (n == 0)
            return;
        routed.copyFrom (input, n);
        delay.write (routed, 0, n);
        const uint32_t start = delay.positionBeforeLastWrite (getLatencySamples());
        for (uint32_t c = 0; c < std::min (output.channels(), numOutputs); ++c)
            if (float* out = output.channel (c))
                for (uint32_t i = 0; i < n; ++i)
                    out[i] = delay.lane (c)[start + i] * gain;
        sidechainSeen = sidechainActive && sidechain.channels() > 0 ? sidechain.channel (0)[0] : -1.0f;
    }

    void reset() override
    {
        ++resets;
        delay.reset();
        HVNAbstractDSP::reset();
    }

    void resetPhases() override { ++phaseResets; }

    const float gain;
    float sidechainSeen = 0.0f;
    std::atomic<int> resets{0}, phaseResets{0};

private:
    HVNAudioBuffer<float> routed;
    HVNCircularBuffer<float> delay;
};
