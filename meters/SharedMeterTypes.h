#pragma once

#include "meters/MeterData.h"
#include "toolkit/HVNAudioBuffer.h"

#include <cstdint>
#include <memory>

namespace SharedMeterTypes
{
// One figure per block, such as a gain reduction.
template<typename T>
class DataPoint : public MeterData
{
public:
    T value{};
};

// The samples of one block. The buffer is sized once, when the store is made from
// a prototype; records are copied only then, never on the audio thread.
template<typename T>
class HVNAudioBufferMeter : public MeterData
{
public:
    HVNAudioBufferMeter (uint32_t numChannels, uint32_t maxFrames)
        : buffer (std::make_unique<HVNAudioBuffer<T>> (numChannels, maxFrames))
    {
    }

    HVNAudioBufferMeter (const HVNAudioBufferMeter& other)
        : buffer (std::make_unique<HVNAudioBuffer<T>> (*other.buffer))
        , frames (other.frames)
    {
    }

    HVNAudioBufferMeter& operator= (const HVNAudioBufferMeter& other)
    {
        if (this != &other)
        {
            *buffer = *other.buffer;
            frames = other.frames;
        }
        return *this;
    }

    std::unique_ptr<HVNAudioBuffer<T>> buffer;
    uint32_t frames = 0;
};
} // namespace SharedMeterTypes
