#pragma once

#include "toolkit/HVNArray.h"
#include "toolkit/HVNAudioBuffer.h"
#include "toolkit/HVNChecked.h"

#include <cstdint>
#include <functional>
#include <vector>

// Callbacks that a DSP runs on reset; every easing of the DSP registers one.
using HVNResetCallbacks = std::vector<std::function<void()>>;

// Applied to the buffer after the ramp, in the order added.
enum class HVNEasingConversion : uint32_t
{
    decibelsToLinear = 0,
    exponential = 1,
    absolute = 2
};

// Combines an easing with another one's buffer, sample by sample.
enum class HVNEasingLink : uint32_t
{
    multiply = 0,
    divide = 1,
    power = 2
};

// A smoothed control value with one entry per sample of the block. A new target
// starts a cubic ramp that leaves with the slope of the last two samples and
// arrives flat, so that a control can turn round in mid-ramp without a corner.
// The ramp lasts at least a quarter of the time that a swing over `range` takes
// at `ratePerSample`, and longer if the change needs more at that rate.
//
// Everything is allocated in the constructor; the rest is real-time safe.
template<typename T>
class HVNEasingFloat
{
public:
    // sampleRate is read once (44100 when null). With resetCallbacks, a reset of the
    // owner makes the next setTarget land in one step.
    explicit HVNEasingFloat (uint32_t capacity, const double* sampleRate = nullptr,
                             HVNResetCallbacks* resetCallbacks = nullptr);

    HVNEasingFloat (const HVNEasingFloat&) = delete;
    HVNEasingFloat& operator= (const HVNEasingFloat&) = delete;

    void setTarget (T v);
    // Jumps to v: no ramp, no overshoot bounds.
    void setInstant (T v);
    // Fills the buffer with numSamples values of this block (at most capacity).
    void process (uint32_t numSamples);

    // Easing, or linked to something that is.
    bool isActive() const;

    // Scale each channel by the value; a settled 1.0 costs nothing.
    void multiply (T* const* channels, uint32_t numChannels, uint32_t numSamples) const;
    void multiply (HVNAudioBuffer<T>& channels, uint32_t numSamples) const;
    void divide (T* const* channels, uint32_t numChannels, uint32_t numSamples) const;
    void divide (HVNAudioBuffer<T>& channels, uint32_t numSamples) const;

    // destination = wet * g + dry * (1 - g). destination may alias wet or dry.
    void crossfade (const T* wet, const T* dry, T* destination, uint32_t numSamples) const;
    // destination = wet * sin(g pi/2) + dry * cos(g pi/2); scratch holds numSamples.
    void crossfadeEqualPower (T* scratch, const T* wet, const T* dry, T* destination,
                              uint32_t numSamples) const;

    // Ignored when other already links to this object.
    void link (HVNEasingLink operation, HVNEasingFloat& other);
    void addConversion (HVNEasingConversion conversion);

    void setRange (T newRange) { range = newRange; }
    // Greatest change per sample; infinity turns the object into a plain value.
    void setRatePerSample (T rate) { ratePerSample = rate; }
    void setMinimum (T v) { minimum = v; }
    void setMaximum (T v) { maximum = v; }
    void setJumpNext() { jumpNext = true; }

    // The last finished value, after links and conversions.
    T getValue() const { return value; }
    T getCurrent() const { return current; }
    T getTarget() const { return target; }
    bool isEasing() const { return easing; }
    bool isDirty() const { return dirty; }
    void clearDirty() { dirty = false; }
    bool willJump() const { return jumpNext; }
    uint32_t getRampLength() const { return rampLength; }
    T getSampleRate() const { return sampleRate; }
    T getRatePerSample() const { return ratePerSample; }
    uint32_t getCapacity() const { return capacity; }
    const T* getBuffer() const { return buffer.data(); }

private:
    void bounds (HVNChecked<T>& lower, HVNChecked<T>& upper) const;
    void applyLinksAndConversions (uint32_t numSamples);
    T convertScalar (T x) const;

    HVNArray<T> buffer;
    uint32_t capacity;
    T current = 0, target = 0;
    bool easing = false;
    T previous = 0;
    T range = 1;
    T sampleRate;
    T ratePerSample;
    uint32_t rampLength = 0, rampPosition = 0;
    T a3 = 0, a2 = 0, a1 = 0, a0 = 0;
    bool jumpNext = false, dirty = true;
    HVNChecked<T> minimum, maximum;
    HVNChecked<T> overshootFloor, overshootCeiling;
    T value = 0;
    // The first settledCount entries of the buffer hold settledValue.
    T settledValue = 0;
    uint32_t settledCount = 0;
    std::vector<HVNEasingConversion> conversions;
    struct Link
    {
        HVNEasingLink operation;
        HVNEasingFloat* other;
    };
    std::vector<Link> links;
};

extern template class HVNEasingFloat<float>;
extern template class HVNEasingFloat<double>;
