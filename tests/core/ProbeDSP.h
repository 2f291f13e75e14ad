#pragma once

#include "dsp/HVNZC1DSP.h"

#include <atomic>

// The stand-in signal path with a gain on its output, so that tests can tell the
// processed signal from the dry one, and counters of its resets.
class ProbeDSP : public HVNZC1DSP
{
public:
    ProbeDSP (uint32_t blockSize, double sampleRate, uint32_t numInputs, uint32_t numOutputs,
              uint32_t numSidechains, uint32_t upsampleFactor, float outputGain)
        : HVNZC1DSP (blockSize, sampleRate, numInputs, numOutputs, numSidechains, upsampleFactor)
        , gain (outputGain)
    {
    }

    void process (const HVNAudioBuffer<float>& input, HVNAudioBuffer<float>& output,
                  const HVNAudioBuffer<float>& sidechain, uint32_t numSamples, bool sidechainActive) override
    {
        HVNZC1DSP::process (input, output, sidechain, numSamples, sidechainActive);
        for (uint32_t c = 0; c < output.channels(); ++c)
            for (uint32_t i = 0; i < numSamples; ++i)
                output.channel (c)[i] *= gain;
        sidechainSeen = sidechainActive && sidechain.channels() > 0 ? sidechain.channel (0)[0] : -1.0f;
    }

    void reset() override
    {
        ++resets;
        HVNZC1DSP::reset();
    }

    void resetPhases() override { ++phaseResets; }

    const float gain;
    float sidechainSeen = 0.0f;
    std::atomic<int> resets{0}, phaseResets{0};
};
