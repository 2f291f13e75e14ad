#pragma once

#include "toolkit/HVNArray.h"
#include "toolkit/HVNAudioBuffer.h"
#include "toolkit/HVNFAMEQ.h"

#include <cstdint>

// The frequency response of old analog gear, as a minimum-phase FIR: a fixed
// base curve that is always there, plus a treble loss that deepens with the
// lo-fi amount. MasterMix scales the whole curve in decibels.
class HVNAnalogResponse
{
public:
    HVNAnalogResponse (uint32_t blockSize, double sampleRate, uint32_t channels);

    // 512 taps up to 48 kHz, doubled for every doubling of the rate above it.
    static uint32_t filterSizeFor (double sampleRate);

    // Parameters in percent, each with its block's changed flag. Redesigns only
    // when one of them changed (and once at the start).
    void update (bool amountChanged, double lofiAmount, bool mixChanged, double masterMix);
    void process (HVNAudioBuffer<double>& block, uint32_t n);
    void reset();

    uint32_t getFilterSize() const { return filterSize; }
    const HVNArray<double>& getFrequencies() const { return frequencies; }
    const HVNArray<double>& getResponse() const { return response; }
    const HVNArray<double>& getAmountResponse() const { return amountResponse; }
    const HVNFAMEQ<float, double>& getFilter() const { return filter; }

private:
    void lookup (const double* table, uint32_t entries, double* out);

    uint32_t filterSize, binCount;
    HVNArray<double> frequencies, baseResponse, amountResponse, response, scratch;
    bool baseResponseReady = false;
    HVNFAMEQ<float, double> filter;
};
