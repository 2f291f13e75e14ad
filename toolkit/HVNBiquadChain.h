#pragma once

#include "toolkit/HVNArray.h"
#include "toolkit/HVNEasingFloat.h"
#include "toolkit/vHVN_biquad.h"

#include <cstdint>
#include <memory>

// One channel of a filter whose design can change while audio runs. Without
// smoothing a new design replaces the old at the next block and starts from a
// clean memory. With smoothing the new design runs beside the old one and takes
// over through a 150 ms crossfade, then keeps the memory it built up.
class HVNBiquadChain
{
public:
    // blockSize is the largest block that process will see.
    HVNBiquadChain (uint32_t blockSize, double sampleRate, bool smooth, uint32_t maxSections = 1);

    // Takes count sections of 5 normalised values each (b0 b1 b2 a1 a2); applied
    // at the start of the next process call.
    void setDesigned (uint32_t count, const double* values);
    // Pass-through from the next block on.
    void clear();
    // In place; n at most blockSize.
    void process (double* samples, uint32_t n);
    // Drops the memory of both filters; a pending design stays pending.
    void reset();

    bool isDirty() const { return dirty; }
    bool isFading() const { return crossfade != nullptr && (crossfade->isActive() || fadeJustBegun); }
    const vHVN_biquad::Vectorized<double>& getActive() const { return active; }
    vHVN_biquad::RawSections& getRawSections() { return rawSections; }
    const double* getDesigned() const { return designed.data(); }
    uint32_t getDesignedSections() const { return designedSections; }

private:
    uint32_t maxSections;
    double sampleRate;
    bool smooth;
    uint32_t designedSections = 0;
    HVNArray<double> designed;
    HVNArray<double> scratch;
    vHVN_biquad::RawSections rawSections;
    vHVN_biquad::Vectorized<double> active;
    std::unique_ptr<vHVN_biquad::Vectorized<double>> incoming;
    HVNResetCallbacks noCallbacks;
    std::unique_ptr<HVNEasingFloat<double>> crossfade;
    bool dirty = false;
    bool fadeJustBegun = false;
};
