#pragma once

#include "toolkit/HVNArray.h"
#include "toolkit/HVNAudioBuffer.h"
#include "toolkit/HVNCircularBuffer.h"

#include <cstdint>
#include <memory>

// Converts a stream of multichannel float blocks between two fixed sample rates
// with a polyphase Kaiser-windowed sinc, designed in double and run in float.
//
// Going up (any ratio) and going down by a fractional ratio, every output sample
// is one branch of the filter against the source history; the branches are laid
// out once at set-up, padded to a whole number of vectors, with the
// interpolation gain folded in. Outputs of one branch within a block sit a fixed
// source stride apart, so a branch runs as one decimating FIR over the block, two
// channels per filter read. Going down by a whole ratio is one decimating FIR.
//
// The source history is primed with silence so that the first block after set-up
// or reset gives ratio times its length when going up by a whole ratio (and its
// length over ratio going down, once whole groups have arrived). The stream
// counters are rational and fall back by whole seconds, so the output rate stays
// exact over any length of stream.
//
// setup allocates; processSrc neither allocates nor locks. Errors are
// std::runtime_error with the texts below; processSrc throws only on misuse.
class HVNSRC
{
public:
    HVNSRC() = default;
    // Calls setup(); throws like it.
    HVNSRC (double sourceRate, uint32_t maxSourceLength, double destRate, uint32_t numChannels);
    ~HVNSRC();

    HVNSRC (const HVNSRC&) = delete;
    HVNSRC& operator= (const HVNSRC&) = delete;

    // Rates are taken as their floors and must lie in 8000..1536000. A converter is
    // set up once; a second call throws. maxSourceLength is the largest block that
    // processSrc will be given. Returns 0.
    int setup (double sourceRate, uint32_t& maxSourceLength, double destRate, uint32_t numChannels);

    bool isReady() const { return mSetupSuccess; }
    uint32_t getMaxSourceLength() const { return maxSourceLength; }
    uint32_t getMaxDestLength() const { return maxDestLength; }
    uint32_t getChannels() const { return channels; }
    uint32_t getFilterLength() const { return filterLength; }
    bool isFractional() const { return fractional; }
    uint32_t getUp() const { return up; }
    uint32_t getDown() const { return down; }
    int32_t getMode() const { return mode; }
    double getCutoff() const { return cutoff; }
    // The designed filter, time-reversed, at unity gain; filterLength taps.
    const float* getTaps() const { return taps.data(); }

    // Delay through the converter, in samples of the output rate; 0 before setup.
    double getLatency() const;

    // Forgets the stream: silence in the history, counters at 0.
    void reset();

    // Converts sourceLength samples of each channel into dest and tells in
    // destLength how many it delivered. Throws before setup, for a block above
    // maxSourceLength, or when the output would exceed maxDest or dest.
    void processSrc (const HVNAudioBuffer<float>& source, uint32_t sourceLength, HVNAudioBuffer<float>& dest,
                     uint32_t& destLength, uint32_t maxDest);

    // The same with maxDest = dest.frames(); returns the count delivered.
    uint32_t process (const HVNAudioBuffer<float>& source, uint32_t sourceLength,
                      HVNAudioBuffer<float>& dest);

private:
    void design();
    void layOutBranches();
    uint32_t outputsAfter (uint32_t fill) const;
    uint32_t runBranches (HVNAudioBuffer<float>& dest);
    uint32_t runDecimator (HVNAudioBuffer<float>& dest);

    uint32_t channels = 0;
    bool mSetupSuccess = false;
    std::unique_ptr<HVNCircularBuffer<float>> mSourceCirc;
    uint32_t maxSourceLength = 0;
    HVNAudioBuffer<float> branchOut; // one branch's outputs, before they interleave
    uint32_t maxDestLength = 0;
    double sourceRate = 0.0, destRate = 0.0;
    int32_t mode = 0; // 0 same rate, 1 upsampling, 2 downsampling
    double ratio = 1.0;
    bool fractional = false;
    uint32_t up = 1, down = 1, lcm = 0, gcd = 0;
    double attenuationDb = 0.0;
    double cutoff = 0.0;
    double beta = 0.0;
    int32_t minimumPhase = 0;
    HVNArray<float> taps;
    uint32_t filterLength = 0;
    uint32_t paddedLength = 0; // taps of one branch, or of the decimator, rounded up to whole vectors
    uint32_t historyLength = 0;
    // Stream positions: the source sample at the ring's read position is
    // sourceConsumed - historyLength; destProduced outputs have been delivered.
    int64_t sourceConsumed = 0, destProduced = 0;
    HVNArray<float> phaseTaps; // up rows of paddedLength, one per branch phase
};
