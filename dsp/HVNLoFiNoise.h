#pragma once

#include "toolkit/HVNArray.h"
#include "toolkit/HVNAudioBuffer.h"
#include "toolkit/HVNEasingFloat.h"

#include <cstdint>
#include <vector>

// Mains hum and tape hiss, added to the signal before the compressor so that
// it pumps with the music. The hum is one exact 60 Hz cycle of odd harmonics,
// the same in every channel; the hiss is triangular white noise from a bank of
// independent generators, arranged differently for even and odd channels, at
// a level per hertz that does not depend on the rate.
class HVNLoFiNoise
{
public:
    HVNLoFiNoise (uint32_t blockSize, double sampleRate, uint32_t channels);

    // The gain for a noise level in dB and the lo-fi amount in percent. The
    // lowest level does not switch off: it sits at 2^-24.
    static double targetGain (double lofiAmount, double noiseGainDb);

    // Adds noise times noiseGain (and times refGain, where given) to block.
    void process (HVNAudioBuffer<double>& block, uint32_t n, const HVNEasingFloat<double>& noiseGain,
                  const HVNEasingFloat<double>* refGain);

    uint32_t getHumLength() const { return humLength; }
    const double* getHumTable() const { return humTable.data(); }
    double getHissScale() const { return hissScale; }

private:
    uint32_t blockSize;
    uint32_t channels;
    uint32_t humLength;
    HVNArray<double> humTable;
    uint32_t humPosition = 0;
    double hissScale;
    std::vector<int32_t> noiseState;
    HVNArray<double> noiseBlock, gainBlock;
    HVNAudioBuffer<double> hissPair;
};
