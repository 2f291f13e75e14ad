#pragma once

#include "dsp/HVNAbstractDSP.h"
#include "dsp/HVNConsecMax.h"
#include "dsp/HVNSidechainState.h"
#include "toolkit/HVNArray.h"
#include "toolkit/HVNAudioBuffer.h"
#include "toolkit/HVNBiquadBank.h"
#include "toolkit/HVNCircularBuffer.h"
#include "toolkit/HVNEasingFloat.h"

#include <cstdint>
#include <vector>

// The look-ahead compressor of the chain. CompressionAmount picks, between 21
// fitted rows, a transfer curve with its own threshold and makeup; the gain
// moves with time constants that depend on the reduction, on the level and on
// how far the wanted reduction lies from the recent average, scaled by the
// attack and release controls. The detector sees a peak over the next quarter
// millisecond, of the main input or of a blend with the external sidechain,
// through a tilt shelf.
// Sets a target unless a ramp is already heading there.
void retarget (HVNEasingFloat<double>& ease, double target);

class HVNCompressor
{
public:
    static constexpr uint32_t timeColumns = 23;
    // meterValues[0] is the reduction in dB over this: 36 dB fill the meter.
    static constexpr double meterRangeDb = 36.0;

    // Takes its configuration from owner and registers its easings there. mixEase
    // and refGainEase are the chain's; the compressor only reads them.
    HVNCompressor (HVNAbstractDSP& owner, HVNEasingFloat<double>& mixEase,
                   HVNEasingFloat<double>& refGainEase);

    // Audio thread. On return main holds the delayed, gain-controlled signal and
    // sidechain the detector signal (blend, tilt filter and tilt gain applied).
    void process (HVNAudioBuffer<double>& main, HVNAudioBuffer<double>& sidechain,
                  const HVNSidechainState& sidechainState, uint32_t numSamples);
    // Clears the delay lines, the reduction history and the tilt filters.
    void reset();

    // The gain loop runs fused multiply-adds where the processor has them, which
    // moves results in their last bits; tests and benchmarks can turn that off.
    void useFusedChain (bool fused);
    bool usesFusedChain() const { return fusedChain; }

    uint32_t getLookAhead() const { return lookAhead; }
    uint32_t getWindow() const { return window; }
    bool isStereoLinked() const { return stereoLink; }
    // The block's mean gain in dB (negative when reducing), mix applied.
    float getChannelGainReduction (uint32_t channel) const { return channelGainReduction[channel]; }

    static uint32_t lookAheadFor (double sampleRate);
    static uint32_t windowFor (double sampleRate);

private:
    void updateParameters (const HVNSidechainState& sidechainState);
    void setTilt (double tiltPercent);
    void buildDetector (HVNAudioBuffer<double>& main, HVNAudioBuffer<double>& sidechain,
                        const HVNSidechainState& sidechainState, uint32_t n);
    void updateThresholdAndMakeup (uint32_t n);
    void rebuildTimeRows (double amount);
    // What one sample of the gain computer takes from the level alone: the
    // reduction, the level index's fraction, and at each of the index's two
    // neighbours the pole's exponent without its e term (attack and release
    // scale), the e slope and the goal's share of e.
    struct Step
    {
        double gr, fraction, attack1, attack2, release1, release2, slope1, slope2, share1, share2;
    };
    void prepareBlock (uint32_t n);
    Step stepAt (const double* level, uint32_t i, bool amountMoving) const;
    void computeGain (uint32_t channel, uint32_t n);

    HVNAbstractDSP& owner;
    HVNEasingFloat<double>& mixEase;
    HVNEasingFloat<double>& refGainEase;
    const uint32_t numChannels;
    const uint32_t blockSize;
    const uint32_t lookAhead, window;
    const double timeFactor;

    HVNCircularBuffer<double> mainDelay, detectDelay;
    HVNAudioBuffer<double> detectScratch;
    HVNAudioBuffer<double> gainBlock;
    // Per channel the last `window` reductions in dB, followed by room for one
    // block's new ones; the tail moves to the front after each block.
    HVNAudioBuffer<double> history;
    HVNArray<double> levelBlock, thresholdBlock, makeupBlock, blockScratch;
    // ln(timeFactor / scale) per sample for the attack and the release scales.
    HVNAudioBuffer<double> logScales;
    bool fusedChain;
    double threshold = 0.0, makeup = 1.0;
    bool perSampleCurve = false;
    std::vector<float> channelGainReduction;
    bool stereoLink = false;
    HVNConsecMax<double> peak;
    HVNBiquadBank tiltFilter;

public:
    HVNEasingFloat<double> tiltGainEase, sidechainBlendEase, amountEase, attackEase, releaseEase;

private:
    const double* gainRows[21];
    double timeA[timeColumns], timeB[timeColumns], timeC[timeColumns];
    double cachedAmount = 0.0;
    bool cachedAmountValid = false;
};
