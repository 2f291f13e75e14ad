#pragma once

#include "dsp/HVNConsec.h"

// Sliding-window maximum by the van Herk method: the input is cut into chunks of
// the window's length, running maxima are taken forward and backward within
// each chunk, and every window then straddles at most one chunk boundary, so one
// comparison per sample gives its maximum whatever the window's length.
template<typename T>
class HVNConsecMax : public HVNConsec<T>
{
public:
    explicit HVNConsecMax (uint32_t capacity);

    void process (const T* input, uint32_t windowLength, uint32_t numSamples) override;

private:
    HVNArray<T> forward, backward;
};

extern template class HVNConsecMax<double>;
