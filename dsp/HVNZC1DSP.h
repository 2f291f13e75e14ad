#pragma once

#include "dsp/HVNAbstractDSP.h"
#include "toolkit/HVNCircularBuffer.h"

#include <cstdint>

// The plug-in's signal path.
//
// For now this is a pass-through with the chain's look-ahead delay
// (4 + round(0.000272 x sampleRate) samples of its own rate), so that the host
// side, latency reporting and bypass can be built and tested against the right
// timing before the stages arrive. A mono input feeds every output channel.
class HVNZC1DSP : public HVNAbstractDSP
{
public:
    HVNZC1DSP (uint32_t blockSize, double sampleRate, uint32_t numInputs, uint32_t numOutputs,
               uint32_t numSidechains, uint32_t upsampleFactor);

    void process (const HVNAudioBuffer<float>& input, HVNAudioBuffer<float>& output,
                  const HVNAudioBuffer<float>& sidechain, uint32_t numSamples, bool sidechainActive) override;
    void reset() override;
    uint32_t getNumParameters() const override { return numParameters; }

    static uint32_t lookAheadFor (double sampleRate);

private:
    HVNAudioBuffer<float> routed; // input mapped onto the output channels
    HVNCircularBuffer<float> delay;
};
