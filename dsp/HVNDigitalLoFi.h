#pragma once

#include "toolkit/HVNArray.h"
#include "toolkit/HVNAudioBuffer.h"
#include "toolkit/HVNDirectFIR.h"
#include "toolkit/HVNEasingFloat.h"

#include <cstdint>

// Early-digital degrading: the signal averaged and held at about 22 kHz and at
// about 11 kHz, without any anti-alias filter, so that it aliases like the
// converters of the time. The lo-fi amount chooses between the two rates; the
// lo-fi type alone sets how much of the result replaces the clean signal.
class HVNDigitalLoFi
{
public:
    HVNDigitalLoFi (uint32_t blockSize, double sampleRate, uint32_t channels);

    // amount: LoFiAmount x 0.01 x mix per sample; type: LoFiType x 0.5.
    void process (HVNAudioBuffer<double>& block, uint32_t n, const HVNEasingFloat<double>& amount,
                  const HVNEasingFloat<double>& type);
    void reset();

    uint32_t getHoldA() const { return holdA; }
    uint32_t getHoldB() const { return holdB; }

    // The first sample of every group of hold stands for the group; a last,
    // shorter group stays as it is.
    static void hold (double* x, uint32_t hold, uint32_t n);

private:
    uint32_t blockSize, channels;
    uint32_t holdA, holdB;
    HVNDirectFIR averageA, averageB;
    HVNAudioBuffer<float> floatIn, floatA, floatB;
    HVNAudioBuffer<double> digitalPair, weightPair;
};
