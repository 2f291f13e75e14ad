#pragma once

#include "toolkit/HVNArray.h"
#include "toolkit/HVNAudioBuffer.h"
#include "toolkit/HVNEasingFloat.h"

#include <cstdint>

// An asymmetric, level-dependent distortion of the pre-emphasised signal: the
// loud part of the wave is thinned on its positive side and the quiet band
// about -42 dBFS is lifted, so that low-level detail crackles. The curve runs
// between a treble lift and its exact inverse, then a DC blocker.
class HVNCrunch
{
public:
    HVNCrunch (uint32_t blockSize, double sampleRate, uint32_t channels);

    // The ease's target for LoFiCrunch in percent; never a straight line.
    static double target (double crunchPercent) { return crunchPercent * 0.01 * 0.5 + 0.0165; }

    // crunch holds r per sample (its buffer after process); mix crossfades the
    // result against the input.
    void process (HVNAudioBuffer<double>& block, uint32_t n, const HVNEasingFloat<double>& crunch,
                  const HVNEasingFloat<double>& mix);
    void reset();

    // The curve on one pre-emphasised sample v, whose unfiltered sample had the
    // sign given by negative.
    static double curve (double v, bool negative, double r);

    // First-order or second-order section, a-coefficients with a0 = 1 and the
    // feedback subtracted. The crunch runs its three sections in one fused pass
    // per sample rather than as three biquad chains: the recursions then overlap.
    struct Section
    {
        double b0, b1, b2, a1, a2;
    };
    const Section& getPre() const { return pre; }
    const Section& getPost() const { return post; }
    const Section& getDC() const { return dc; }

private:
    uint32_t blockSize, channels;
    HVNAudioBuffer<double> crunchBlock;
    HVNArray<double> crunchGain;
    Section pre, post, dc;
    // Two state values per channel for each filter (transposed direct form II;
    // the first-order ones use the first).
    HVNArray<double> preState, postState, dcState;
};
