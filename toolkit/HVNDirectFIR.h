#pragma once

#include "toolkit/HVNArray.h"
#include "toolkit/HVNAudioBuffer.h"
#include "toolkit/HVNImpulse.h"

#include <cstdint>

// A plain FIR on float channels, each with its own history, for short filters
// and for the head of the partitioned convolver. Taps past the impulse's
// significant length cost nothing.
class HVNDirectFIR
{
public:
    HVNDirectFIR (uint32_t channels, uint32_t maxBlock, uint32_t taps);

    // Copies up to taps samples; the history stays.
    void setImpulse (const float* samples, uint32_t count);
    void setImpulse (const HVNImpulse& source);
    const HVNImpulse& getImpulse() const { return impulse; }

    // n samples of each channel, at most maxBlock; out may be in.
    void process (const float* const* in, float* const* out, uint32_t n);
    void process (const HVNAudioBuffer<float>& in, HVNAudioBuffer<float>& out, uint32_t n);
    // One channel.
    void processChannel (uint32_t channel, const float* in, float* out, uint32_t n);

    // Takes n samples into the history without computing any output, so that
    // a filter whose output is not wanted for a while is ready when it is again.
    void skip (const float* const* in, uint32_t n);

    void clear();

    uint32_t getChannels() const { return channels; }
    uint32_t getMaxBlock() const { return maxBlock; }
    uint32_t getTaps() const { return impulse.length; }

private:
    HVNImpulse impulse;
    uint32_t channels;
    uint32_t maxBlock;
    // Per channel: taps - 1 past samples, then room for a block.
    HVNAudioBuffer<float> history;
};
