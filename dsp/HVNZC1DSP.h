#pragma once

#include "dsp/HVNAbstractDSP.h"
#include "dsp/HVNAnalogResponse.h"
#include "dsp/HVNCompressor.h"
#include "dsp/HVNCrunch.h"
#include "dsp/HVNDigitalLoFi.h"
#include "dsp/HVNLoFiNoise.h"
#include "dsp/HVNSidechainState.h"
#include "dsp/HVNWowFlutter.h"
#include "toolkit/HVNAudioBuffer.h"
#include "toolkit/HVNCircularBuffer.h"
#include "toolkit/HVNEasingFloat.h"

#include <cstdint>
#include <memory>

// The plug-in's signal path, in 64-bit floats on whole blocks: input gain,
// reference gain, hum and hiss, crunch, compressor, shaper, digital lo-fi,
// analog response, wow and flutter, output gain, sidechain listen. Between the
// reference gain and its removal at the end the chain works at a level where
// DigitalRefLevel counts as -18 dB, which fixes the constants of every stage.
//
// There is no parallel dry path: MasterMix acts inside each stage, so at 0 the
// chain is transparent apart from its delay.
class HVNZC1DSP : public HVNAbstractDSP
{
public:
    HVNZC1DSP (uint32_t blockSize, double sampleRate, uint32_t numInputs, uint32_t numOutputs,
               uint32_t numSidechains, uint32_t upsampleFactor);

    void process (const HVNAudioBuffer<float>& input, HVNAudioBuffer<float>& output,
                  const HVNAudioBuffer<float>& sidechain, uint32_t numSamples, bool sidechainActive) override;
    void reset() override;
    void resetPhases() override;
    uint32_t getNumParameters() const override { return numParameters; }

    // In samples of the DSP's own rate: the look-ahead plus the wow stage's fixed
    // delay, rounded up to whole host samples at the high rates.
    static uint32_t latencyFor (double sampleRate, uint32_t upsampleFactor);

    HVNCompressor& getCompressor() { return compressor; }
    HVNWowFlutter& getWowFlutter() { return wowFlutter; }
    HVNAnalogResponse& getAnalogResponse() { return analogResponse; }
    uint32_t getAlignSamples() const { return alignSamples; }
    const HVNSidechainState& getSidechainState() const { return sidechainState; }

    // The chain's easings; the lo-fi stages read and drive their own ones here.
    HVNEasingFloat<double> mixEase, inputGainEase, outputGainEase, refGainEase, listenEase;
    HVNEasingFloat<double> noiseGainEase, lofiAmountEase, lofiTypeEase, crunchEase;

private:
    void updateGains();
    void runNoiseAndCrunch (uint32_t n);
    void runLoFiAfterCompressor (uint32_t n);
    void runListen (uint32_t n);
    void writeOutput (HVNAudioBuffer<float>& output, uint32_t n);

    HVNAudioBuffer<double> mainBlock, sidechainBlock;
    HVNSidechainState sidechainState;
    HVNAudioBuffer<double> shaperScratch;
    HVNWowFlutter wowFlutter;
    HVNAnalogResponse analogResponse;
    HVNLoFiNoise noise;
    HVNDigitalLoFi digitalLoFi;
    HVNCrunch crunch;
    HVNCompressor compressor;
    uint32_t alignSamples = 0;
    std::unique_ptr<HVNCircularBuffer<double>> alignDelay;
};
