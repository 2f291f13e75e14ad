#include "dsp/HVNZC1DSP.h"

#include "dsp/HVNParameterIndex.h"
#include "dsp/HVNShaper.h"
#include "toolkit/HVNVec.h"

#include <algorithm>
#include <cmath>

namespace
{
using namespace HVNParameterIndex;

// DigitalRefLevel is measured against this level inside the chain.
constexpr double referenceDb = -18.0;

void configure (HVNEasingFloat<double>& ease, double range, double ratePerSecond, double sampleRate)
{
    ease.setRange (range);
    ease.setRatePerSample (ratePerSecond / sampleRate);
}
} // namespace

uint32_t HVNZC1DSP::latencyFor (double rate, uint32_t factor)
{
    const uint32_t lookAhead = HVNCompressor::lookAheadFor (rate);
    if (factor > 1)
        return (lookAhead + 2 + factor - 1) / factor * factor;
    return lookAhead + 4;
}

HVNZC1DSP::HVNZC1DSP (uint32_t block, double rate, uint32_t inputs, uint32_t outputs, uint32_t sidechains,
                      uint32_t factor)
    : HVNAbstractDSP (block, rate, inputs, outputs, sidechains, factor)
    , mixEase (block, &sampleRate, &resetCallbacks)
    , inputGainEase (block, &sampleRate, &resetCallbacks)
    , outputGainEase (block, &sampleRate, &resetCallbacks)
    , refGainEase (block, &sampleRate, &resetCallbacks)
    , listenEase (block, &sampleRate, &resetCallbacks)
    , noiseGainEase (block, &sampleRate, &resetCallbacks)
    , lofiAmountEase (block, &sampleRate, &resetCallbacks)
    , lofiTypeEase (block, &sampleRate, &resetCallbacks)
    , crunchEase (block, &sampleRate, &resetCallbacks)
    , mainBlock (outputs, block)
    , sidechainBlock (outputs, block)
    , shaperScratch (1, block)
    , wowFlutter (*this)
    , analogResponse (block, rate, outputs)
    , noise (block, rate, outputs)
    , digitalLoFi (block, rate, outputs)
    , crunch (block, rate, outputs)
    , compressor (*this, mixEase, refGainEase)
{
    const double sr = sampleRate;
    configure (mixEase, 1.0, 6.6666666666666670, sr);
    for (auto* gain : {&inputGainEase, &outputGainEase, &refGainEase})
    {
        configure (*gain, 12.0, 80.0, sr);
        // The plain value first: the conversion applies from the first block on.
        gain->setInstant (1.0);
        gain->addConversion (HVNEasingConversion::decibelsToLinear);
    }
    configure (listenEase, 1.0, 6.6666666666666670, sr);
    configure (noiseGainEase, 1.0, 6.6666666666666670, sr);
    noiseGainEase.link (HVNEasingLink::multiply, mixEase);
    configure (lofiAmountEase, 1.0, 6.6666666666666670, sr);
    lofiAmountEase.link (HVNEasingLink::multiply, mixEase);
    configure (lofiTypeEase, 1.0, 6.6666666666666670, sr);
    configure (crunchEase, 0.33, 2.2, sr);

    if (factor > 1)
    {
        setLatency (latencyFor (sr, factor));
        alignSamples = getLatencySamples() - (compressor.getLookAhead() + 2);
        alignDelay = std::make_unique<HVNCircularBuffer<double>> (outputs, alignSamples + block, true);
    }
    else
    {
        setLatency (latencyFor (sr, factor));
        alignSamples = 0;
    }
}

void HVNZC1DSP::reset()
{
    wowFlutter.reset();
    // Hum position and noise generators run on: a reset must not repeat the noise.
    analogResponse.reset();
    digitalLoFi.reset();
    crunch.reset();
    compressor.reset();
    if (alignDelay)
        alignDelay->reset();
    HVNAbstractDSP::reset();
}

void HVNZC1DSP::resetPhases()
{
    wowFlutter.resetPhases();
}

void HVNZC1DSP::updateGains()
{
    if (parameterChanged (MasterMix))
        mixEase.setTarget (parameterValue (MasterMix) * 0.01);
    if (parameterChanged (InputGain))
        inputGainEase.setTarget (parameterValue (InputGain));
    if (parameterChanged (OutputGain))
        outputGainEase.setTarget (parameterValue (OutputGain));
    if (parameterChanged (DigitalRefLevel))
        refGainEase.setTarget (referenceDb - parameterValue (DigitalRefLevel));
}

void HVNZC1DSP::process (const HVNAudioBuffer<float>& input, HVNAudioBuffer<float>& output,
                         const HVNAudioBuffer<float>& sidechain, uint32_t numSamples, bool sidechainActive)
{
    const uint32_t n = std::min (numSamples, blockSize);
    if (n == 0)
        return;

    // 1-2
    updateGains();
    mixEase.process (n);
    mainBlock.convertFrom (input, n);

    // 3
    const bool external = sidechainActive && numSidechains > 0 && sidechain.channels() > 0;
    sidechainState.update (external);
    if (external)
        sidechainBlock.convertFrom (sidechain, n);

    // 4: input level tap
    inputGainEase.process (n);
    inputGainEase.multiply (mainBlock, n);
    if (meterMessaging)
        meterMessaging->writeBuffer (0, mainBlock, n);

    // 5: from here on DigitalRefLevel sits at the chain's reference level
    refGainEase.process (n);
    refGainEase.multiply (mainBlock, n);
    if (external)
        refGainEase.multiply (sidechainBlock, n);

    // 6-7
    runNoiseAndCrunch (n);

    // 8
    compressor.process (mainBlock, sidechainBlock, sidechainState, n);

    // 9-11
    runLoFiAfterCompressor (n);

    // 12
    wowFlutter.process (mainBlock, n);

    // 13-15: output level tap
    outputGainEase.process (n);
    outputGainEase.multiply (mainBlock, n);
    refGainEase.divide (mainBlock, n);
    if (meterMessaging)
        meterMessaging->writeBuffer (1, mainBlock, n);

    // 16-17
    runListen (n);

    // 18-19
    writeOutput (output, n);
}

void HVNZC1DSP::runNoiseAndCrunch (uint32_t n)
{
    if (parameterChanged (LoFiAmount) || parameterChanged (LoFiNoiseGain) ||
        parameterChanged (DigitalRefLevel))
        noiseGainEase.setTarget (
            HVNLoFiNoise::targetGain (parameterValue (LoFiAmount), parameterValue (LoFiNoiseGain)));
    noiseGainEase.process (n);
    noise.process (mainBlock, n, noiseGainEase, &refGainEase);

    if (parameterChanged (LoFiCrunch))
        crunchEase.setTarget (HVNCrunch::target (parameterValue (LoFiCrunch)));
    crunchEase.process (n);
    crunch.process (mainBlock, n, crunchEase, mixEase);
}

void HVNZC1DSP::runLoFiAfterCompressor (uint32_t n)
{
    HVNShaper::process (mainBlock, n, mixEase, shaperScratch.channel (0));

    if (parameterChanged (LoFiAmount))
        lofiAmountEase.setTarget (parameterValue (LoFiAmount) * 0.01);
    if (parameterChanged (LoFiType))
        lofiTypeEase.setTarget (parameterValue (LoFiType) * 0.5);
    lofiAmountEase.process (n);
    lofiTypeEase.process (n);
    digitalLoFi.process (mainBlock, n, lofiAmountEase, lofiTypeEase);

    analogResponse.update (parameterChanged (LoFiAmount), parameterValue (LoFiAmount),
                           parameterChanged (MasterMix), parameterValue (MasterMix));
    analogResponse.process (mainBlock, n);
}

void HVNZC1DSP::runListen (uint32_t n)
{
    if (parameterChanged (SidechainListen) || sidechainState.changed)
    {
        if (sidechainState.active)
            retarget (listenEase, parameterValue (SidechainListen) == 1.0f ? 1.0 : 0.0);
        else
            listenEase.setInstant (0.0);
    }
    if (!sidechainState.active)
        return;

    listenEase.process (n);
    if (!listenEase.isActive() && listenEase.getValue() == 0.0)
        return;
    // What the detector hears, back at the outside level, in place of the chain.
    refGainEase.divide (sidechainBlock, n);
    for (uint32_t c = 0; c < numOutputs; ++c)
        listenEase.crossfade (sidechainBlock.channel (c), mainBlock.channel (c), mainBlock.channel (c), n);
}

void HVNZC1DSP::writeOutput (HVNAudioBuffer<float>& output, uint32_t n)
{
    const uint32_t channels = std::min (output.channels(), numOutputs);
    if (!alignDelay)
    {
        for (uint32_t c = 0; c < channels; ++c)
            if (float* out = output.channel (c))
                HVNVec::convert (mainBlock.channel (c), out, n);
        return;
    }
    // At the high rates the latency is filled up to whole host samples.
    alignDelay->write (mainBlock, 0, n);
    const uint32_t start = alignDelay->positionBeforeLastWrite (alignSamples);
    for (uint32_t c = 0; c < channels; ++c)
        if (float* out = output.channel (c))
            HVNVec::convert (alignDelay->lane (c) + start, out, n);
}
