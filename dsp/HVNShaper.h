#pragma once

#include "toolkit/HVNArray.h"
#include "toolkit/HVNAudioBuffer.h"
#include "toolkit/HVNEasingFloat.h"

#include <cstdint>

// The tape-like soft clipper after the compressor: transparent up to about
// three quarters of full scale, then bending smoothly into a ceiling a little
// above it.
class HVNShaper
{
public:
    explicit HVNShaper (uint32_t blockSize);

    // mix crossfades the shaped signal against the input.
    void process (HVNAudioBuffer<double>& block, uint32_t n, const HVNEasingFloat<double>& mix);

    // The curve for a block of samples.
    static void shape (const double* in, double* out, uint32_t n);

private:
    uint32_t blockSize;
    HVNArray<double> scratch;
};
