#pragma once

#include "toolkit/HVNArray.h"
#include "toolkit/HVNAudioBuffer.h"

#include <cstdint>
#include <vector>

// A multichannel ring kept twice in memory: lane[k] == lane[k + capacity] for
// every written k. Any span of up to capacity samples that starts below capacity
// is therefore one contiguous pointer range, with no split at the wrap. Each
// sample costs two writes; readers that pull long spans many times per block
// (converters, filters, delay lines) get a wrap-free inner loop in return.
//
// Readers take lane(c) + position directly and move the read side with
// advanceRead(), or address a span relative to the last write.
template<typename T>
class HVNCircularBuffer
{
public:
    // With overwrite the ring keeps the newest data, never refuses a write, and
    // starts full of silence (which is how a delay line gets its latency).
    HVNCircularBuffer (uint32_t numChannels, uint32_t capacity, bool overwrite);

    // Positions back to 0. An overwrite ring is cleared and counts as full; any
    // other ring keeps its samples and counts as empty.
    void reset();

    // Appends count samples of each source channel, starting at offset. Returns
    // false, changing nothing, when a ring without overwrite has no room.
    bool write (const T* const* sources, uint32_t offset, uint32_t count);
    bool write (const HVNAudioBuffer<T>& source, uint32_t offset, uint32_t count);
    bool writeSilence (uint32_t count);

    // Drops up to count of the oldest samples.
    void advanceRead (uint32_t count);
    void setReadPosition (uint32_t position) { readPosition = position % ringCapacity; }

    // Index of the sample that lies delay samples before the start of the latest
    // write; a span of the latest write's length read from there is that write
    // delayed by delay samples. delay must not exceed capacity.
    uint32_t positionBeforeLastWrite (uint32_t delay) const;

    T* lane (uint32_t c) { return lanes[c].data(); }
    const T* lane (uint32_t c) const { return lanes[c].data(); }

    uint32_t channels() const { return numChannels; }
    uint32_t capacity() const { return ringCapacity; }
    bool overwrites() const { return overwrite; }
    uint32_t getReadPosition() const { return readPosition; }
    uint32_t getWritePosition() const { return writePosition; }
    uint32_t getLastWritePosition() const { return lastWritePosition; }
    uint32_t fill() const { return filled; }
    uint32_t freeSpace() const { return ringCapacity - filled; }

private:
    template<typename Writer>
    bool writeWith (uint32_t count, Writer writer);

    uint32_t numChannels;
    uint32_t ringCapacity;
    bool overwrite;
    uint32_t readPosition = 0;
    uint32_t lastWritePosition = 0;
    uint32_t writePosition = 0;
    uint32_t filled = 0;
    std::vector<HVNArray<T>> lanes;
};

extern template class HVNCircularBuffer<float>;
extern template class HVNCircularBuffer<double>;
