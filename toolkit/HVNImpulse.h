#pragma once

#include "toolkit/HVNArray.h"

#include <cstdint>

// The impulse response of an FIR filter with the bookkeeping its runners use:
// how much of it is worth computing, and when it last changed.
class HVNImpulse
{
public:
    explicit HVNImpulse (uint32_t length);

    // 1.0 at index 0, or in the middle for a linear-phase filter.
    void setIdentity (bool linearPhase);
    // Copies up to length samples; the rest become 0.
    void setSamples (const float* source, uint32_t count);
    void copyFrom (const HVNImpulse& other);

    // With trim, taps after the last one whose magnitude exceeds the threshold
    // are not computed.
    void setTrim (bool on, double threshold);

    uint32_t length;
    bool changed = true;
    HVNArray<float> samples;
    double timestamp = 0.0; // milliseconds of the high-resolution clock
    uint32_t significantLength;
    uint32_t trailingZeros = 0;
    double trimThreshold = 0.0;
    bool trim = false;

private:
    void update();
};
