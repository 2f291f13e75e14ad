#pragma once

#include "dsp/HVNAbstractDSP.h"
#include "toolkit/HVNArray.h"
#include "toolkit/HVNAudioBuffer.h"
#include "toolkit/HVNCircularBuffer.h"
#include "toolkit/HVNEasingFloat.h"

#include <cstdint>

// A turntable's wandering speed: a delay line read at a position that two slow,
// fully periodic oscillators push back. Both run at multiples of the record's
// rotation and their depth in samples falls as the rotation speeds up, so that
// the pitch deviation is the same at every speed. At rest the stage is a plain
// delay of 4 samples (2 at the high rates, where linear reads suffice).
class HVNWowFlutter
{
public:
    struct Oscillator
    {
        double phase; // cycles
        double depth; // ms at full amount and one turn per second
        double rate;  // cycles per turn
    };

    // Takes its configuration from owner and registers its easings there.
    explicit HVNWowFlutter (HVNAbstractDSP& owner);

    // Audio thread: replaces main by the modulated, delayed signal.
    void process (HVNAudioBuffer<double>& main, uint32_t numSamples);
    void reset();
    void resetPhases();

    // The fixed delay of the stage in samples of its own rate.
    uint32_t getFixedDelay() const { return fixedDelay; }
    const Oscillator& getWow() const { return wow; }
    const Oscillator& getFlutter() const { return flutter; }
    // Turns per second for a WowFlutterSpeed index; 0 outside the table.
    static double speedFor (float index);
    static uint32_t capacityFor (uint32_t blockSize, double sampleRate);

    HVNEasingFloat<double> wowSpeedEase, wowPhaseEase, wowAmountEase, wowMixEase;

private:
    void updateParameters();
    void runOscillator (Oscillator& oscillator, bool add, uint32_t n);
    void shape (double* phase, uint32_t n);
    void interpolate (const double* line, const double* offsets, double base, double* out, uint32_t n);

    HVNAbstractDSP& owner;
    const uint32_t numChannels;
    const double sampleRate;
    const uint32_t fixedDelay;
    HVNCircularBuffer<double> wowDelay;
    double maxOffset;
    Oscillator wow{0.0, 13.8, 1.0};
    Oscillator flutter{0.0, 2.14, 18.0};
    HVNAudioBuffer<double> oscillatorBlock, offsetBlock, pair, dryBlock;
    HVNArray<double> speedFloor, scratch;
};
