#pragma once

#include "toolkit/HVNArray.h"
#include "toolkit/vHVN_FFT.h"

#include <cstdint>

// Turns a magnitude response on an even frequency grid into an impulse
// response: linear phase (peak in the middle), or minimum phase by the real
// cepstrum (energy at the start). Allocates at construction only.
class HVNMagnitudeDesigner
{
public:
    // length is rounded up to a power of two.
    HVNMagnitudeDesigner (uint32_t length, double sampleRate, bool linearPhase);

    // input: binCount magnitudes for the frequencies i * sampleRate / fftLength,
    // in dB or linear; output: fftLength samples.
    void design (const double* input, double* output, bool inDecibels);

    uint32_t getFFTLength() const { return fftLength; }
    uint32_t getBinCount() const { return binCount; }
    bool isLinearPhase() const { return linearPhase; }

private:
    // Fills a with the full, mirrored spectrum of binCount values.
    void mirror (double* a) const;
    void designLinear (const double* input, double* output, bool inDecibels);
    void designMinimum (const double* input, double* output, bool inDecibels);

    bool linearPhase;
    uint32_t fftLength;
    uint32_t binCount;
    double sampleRate;
    HVNArray<double> re, im, outRe, outIm, zeros;
    vHVN_FFT::FFTData<1, double> complexFFT;
    vHVN_FFT::FFTData<0, double> realFFT;
};
