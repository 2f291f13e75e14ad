#pragma once

#include "toolkit/HVNAudioBuffer.h"

#include <cstdint>
#include <vector>

// Converts a stream of multichannel float blocks between two fixed sample rates.
//
// This is a temporary converter for whole ratios only: linear interpolation on
// the way up and plain decimation on the way down. It has no anti-alias filter
// and is only good enough to run the HQ path end to end. The polyphase converter
// takes its place with the same public interface.
class HVNSRC
{
public:
    HVNSRC() = default;
    // Calls setup(); throws like it.
    HVNSRC (double sourceRate, uint32_t maxSourceLength, double destRate, uint32_t numChannels);

    // Rates are taken as their floors and must lie in 8000..1536000. A converter is
    // set up once; a second call throws. maxSourceLength is the largest block that
    // processSrc will be given. Returns 0.
    int setup (double sourceRate, uint32_t& maxSourceLength, double destRate, uint32_t numChannels);

    bool isReady() const { return mSetupSuccess; }
    uint32_t getMaxSourceLength() const { return maxSourceLength; }
    uint32_t getMaxDestLength() const { return maxDestLength; }
    uint32_t getChannels() const { return channels; }

    // Delay through the converter, in samples of the output rate; 0 before setup.
    double getLatency() const;

    // Forgets the stream: the converter starts again as after setup.
    void reset();

    // Converts sourceLength samples of each channel into dest and tells in
    // destLength how many it delivered. Throws before setup, for a block above
    // maxSourceLength, or when the output would exceed maxDest.
    void processSrc (const HVNAudioBuffer<float>& source, uint32_t sourceLength, HVNAudioBuffer<float>& dest,
                     uint32_t& destLength, uint32_t maxDest);

    // The same with maxDest = dest.frames(); returns the count delivered.
    uint32_t process (const HVNAudioBuffer<float>& source, uint32_t sourceLength,
                      HVNAudioBuffer<float>& dest);

private:
    uint32_t channels = 0;
    bool mSetupSuccess = false;
    uint32_t maxSourceLength = 0;
    uint32_t maxDestLength = 0;
    double sourceRate = 0.0, destRate = 0.0;
    int32_t mode = 0; // 0 same rate, 1 up, 2 down
    uint32_t ratio = 1;
    std::vector<float> lastSample; // per channel, for interpolation up
    uint32_t phase = 0;            // position in the decimation cycle down
};
