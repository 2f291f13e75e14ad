#include "toolkit/HVNCircularBuffer.h"

#include "toolkit/HVNVec.h"

#include <algorithm>

template<typename T>
HVNCircularBuffer<T>::HVNCircularBuffer (uint32_t channels, uint32_t capacity, bool overwriteOldest)
    : numChannels (channels)
    , ringCapacity (capacity)
    , overwrite (overwriteOldest)
{
    lanes.reserve (numChannels);
    for (uint32_t c = 0; c < numChannels; ++c)
        lanes.emplace_back (2 * ringCapacity);
    reset();
}

template<typename T>
void HVNCircularBuffer<T>::reset()
{
    readPosition = 0;
    lastWritePosition = 0;
    writePosition = 0;

    if (overwrite)
    {
        for (auto& lane : lanes)
            HVNVec::clear (lane.data(), lane.size());
        filled = ringCapacity;
    }
    else
    {
        filled = 0;
    }
}

template<typename T>
template<typename Writer>
bool HVNCircularBuffer<T>::writeWith (uint32_t count, Writer writer)
{
    if (overwrite)
    {
        const uint32_t dropped = std::min (count, filled);
        readPosition += dropped;
        while (readPosition >= ringCapacity)
            readPosition -= ringCapacity;
        filled -= dropped;
    }

    if (count > ringCapacity - filled)
        return false;

    if (writePosition + count < ringCapacity)
    {
        for (uint32_t c = 0; c < numChannels; ++c)
        {
            writer (c, 0, lanes[c].data() + writePosition, count);
            writer (c, 0, lanes[c].data() + writePosition + ringCapacity, count);
        }
        lastWritePosition = writePosition;
        writePosition += count;
    }
    else
    {
        // The whole span runs on into the second half, which mirrors the wrapped
        // part; the head is mirrored into the second half and the tail into the first.
        const uint32_t head = ringCapacity - writePosition;
        const uint32_t tail = count - head;
        for (uint32_t c = 0; c < numChannels; ++c)
        {
            T* lane = lanes[c].data();
            writer (c, 0, lane + writePosition, count);
            if (head != 0)
                writer (c, 0, lane + writePosition + ringCapacity, head);
            writer (c, head, lane, tail);
        }
        lastWritePosition = writePosition % ringCapacity;
        writePosition = tail;
    }

    filled += count;
    return true;
}

template<typename T>
bool HVNCircularBuffer<T>::write (const T* const* sources, uint32_t offset, uint32_t count)
{
    return writeWith (count, [sources, offset] (uint32_t c, uint32_t from, T* destination, uint32_t n)
                      { HVNVec::copy (sources[c] + offset + from, destination, n); });
}

template<typename T>
bool HVNCircularBuffer<T>::write (const HVNAudioBuffer<T>& source, uint32_t offset, uint32_t count)
{
    if (source.channels() < numChannels)
        return false;
    return write (source.data(), offset, count);
}

template<typename T>
bool HVNCircularBuffer<T>::writeSilence (uint32_t count)
{
    return writeWith (count, [] (uint32_t, uint32_t, T* destination, uint32_t n)
                      { HVNVec::clear (destination, n); });
}

template<typename T>
void HVNCircularBuffer<T>::advanceRead (uint32_t count)
{
    count = std::min (count, filled);
    readPosition += count;
    while (readPosition >= ringCapacity)
        readPosition -= ringCapacity;
    filled -= count;
}

template<typename T>
uint32_t HVNCircularBuffer<T>::positionBeforeLastWrite (uint32_t delay) const
{
    delay = std::min (delay, ringCapacity);
    return (lastWritePosition + ringCapacity - delay) % ringCapacity;
}

template class HVNCircularBuffer<float>;
template class HVNCircularBuffer<double>;
