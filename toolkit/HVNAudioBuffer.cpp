#include "toolkit/HVNAudioBuffer.h"

#include "toolkit/HVNVec.h"

#include <algorithm>

namespace
{
// The channel rule shared by copies and conversions.
template<typename Source, typename Destination, typename Op>
void forPairedChannels (const HVNAudioBuffer<Source>& source, HVNAudioBuffer<Destination>& destination,
                        uint32_t count, Op op)
{
    count = std::min ({count, source.frames(), destination.frames()});
    if (count == 0)
        return;

    const uint32_t sourceChannels = source.channels();
    const uint32_t destinationChannels = destination.channels();

    if (sourceChannels == 1)
    {
        for (uint32_t c = 0; c < destinationChannels; ++c)
            if (source.channel (0) != nullptr && destination.channel (c) != nullptr)
                op (source.channel (0), destination.channel (c), count);
        return;
    }

    const uint32_t paired = std::min (sourceChannels, destinationChannels);
    for (uint32_t c = 0; c < paired; ++c)
        if (source.channel (c) != nullptr && destination.channel (c) != nullptr)
            op (source.channel (c), destination.channel (c), count);
}
} // namespace

template<typename T>
HVNAudioBuffer<T>::HVNAudioBuffer (uint32_t channels)
    : numChannels (channels)
    , channelPointers (channels, nullptr)
{
}

template<typename T>
HVNAudioBuffer<T>::HVNAudioBuffer (uint32_t channels, uint32_t frames)
    : HVNAudioBuffer (channels)
{
    resize (frames);
}

template<typename T>
HVNAudioBuffer<T>::HVNAudioBuffer (HVNAudioBuffer& source, uint32_t first, uint32_t last)
    : HVNAudioBuffer (last > first ? last - first : 0)
{
    pointTo (source, first);
}

template<typename T>
HVNAudioBuffer<T>::HVNAudioBuffer (const HVNAudioBuffer& other)
    : HVNAudioBuffer (other.numChannels)
{
    *this = other;
}

template<typename T>
HVNAudioBuffer<T>& HVNAudioBuffer<T>::operator= (const HVNAudioBuffer& other)
{
    if (this == &other)
        return *this;

    numChannels = other.numChannels;
    channelPointers.assign (numChannels, nullptr);

    if (!other.isView())
    {
        storage = other.storage;
        numFrames = other.numFrames;
        channelStride = other.channelStride;
        rebuildChannelPointers();
        return *this;
    }

    // A view's samples belong to someone else: take a copy of them.
    resize (other.numFrames);
    copyFrom (other, other.numFrames);
    return *this;
}

template<typename T>
void HVNAudioBuffer<T>::resize (uint32_t frames)
{
    const uint32_t newStride = strideFor (frames);
    const uint64_t total = static_cast<uint64_t> (numChannels) * newStride;

    if (total == 0)
    {
        storage.release();
        numFrames = frames;
        channelStride = newStride;
        std::fill (channelPointers.begin(), channelPointers.end(), nullptr);
        return;
    }

    if (storage.empty() || storage.size() != total)
        storage.allocate (static_cast<uint32_t> (total));
    HVNVec::clear (storage.data(), storage.size());

    numFrames = frames;
    channelStride = newStride;
    rebuildChannelPointers();
}

template<typename T>
void HVNAudioBuffer<T>::rebuildChannelPointers()
{
    for (uint32_t c = 0; c < numChannels; ++c)
        channelPointers[c] = &storage.at (c * channelStride);
}

template<typename T>
void HVNAudioBuffer<T>::pointTo (HVNAudioBuffer& source, uint32_t first)
{
    numFrames = source.numFrames;
    channelStride = source.channelStride;
    for (uint32_t c = 0; c < numChannels; ++c)
        channelPointers[c] = first + c < source.numChannels ? source.channelPointers[first + c] : nullptr;
}

template<typename T>
void HVNAudioBuffer<T>::pointTo (T* const* pointers, uint32_t numSourceChannels, uint32_t frames)
{
    numFrames = frames;
    channelStride = frames;
    for (uint32_t c = 0; c < numChannels; ++c)
        channelPointers[c] = c < numSourceChannels ? pointers[c] : nullptr;
}

template<typename T>
void HVNAudioBuffer<T>::clear()
{
    clear (channelStride);
}

template<typename T>
void HVNAudioBuffer<T>::clear (uint32_t count)
{
    count = std::min (count, channelStride);
    for (T* p : channelPointers)
        if (p != nullptr)
            HVNVec::clear (p, count);
}

template<typename T>
void HVNAudioBuffer<T>::copyFrom (const HVNAudioBuffer& source, uint32_t count)
{
    forPairedChannels (source, *this, count, [] (const T* s, T* d, uint32_t n) { HVNVec::copy (s, d, n); });
}

template<typename T>
template<typename U>
void HVNAudioBuffer<T>::convertFrom (const HVNAudioBuffer<U>& source, uint32_t count)
{
    forPairedChannels (source, *this, count,
                       [] (const U* s, T* d, uint32_t n) { HVNVec::convert (s, d, n); });
}

template class HVNAudioBuffer<float>;
template class HVNAudioBuffer<double>;
template void HVNAudioBuffer<float>::convertFrom (const HVNAudioBuffer<double>&, uint32_t);
template void HVNAudioBuffer<double>::convertFrom (const HVNAudioBuffer<float>&, uint32_t);
