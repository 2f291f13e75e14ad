#pragma once

#include "toolkit/HVNArray.h"

#include <algorithm>
#include <cstdint>

// A statistic over a sliding window: for each i of the block, output[i] is taken
// over input[i] to input[i + windowLength - 1]. The caller passes
// numSamples + windowLength - 1 inputs.
template<typename T>
class HVNConsec
{
public:
    // capacity bounds numSamples + windowLength - 1.
    explicit HVNConsec (uint32_t capacity)
        : output (std::max (capacity, 1u))
    {
    }
    virtual ~HVNConsec() = default;

    virtual void process (const T* input, uint32_t windowLength, uint32_t numSamples) = 0;

    const T* getOutput() const { return output.data(); }

protected:
    HVNArray<T> output;
};
