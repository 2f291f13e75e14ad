#pragma once

#include "toolkit/HVNArray.h"

#include <cstdint>
#include <vector>

// A block of channels carved out of one aligned array. Every channel starts on a
// 32-byte boundary: the distance between channel starts (the stride) is the frame
// count rounded up to a multiple of 8.
//
// A view is a buffer that owns no samples and points at channels of another
// buffer (or of memory owned by someone else). It must not outlive its source.
template<typename T>
class HVNAudioBuffer
{
public:
    // channelPointers get numChannels null entries; resize() gives them memory.
    explicit HVNAudioBuffer (uint32_t numChannels = 0);
    HVNAudioBuffer (uint32_t numChannels, uint32_t numFrames);
    // A view of the channels [first, last) of source.
    HVNAudioBuffer (HVNAudioBuffer& source, uint32_t first, uint32_t last);

    HVNAudioBuffer (const HVNAudioBuffer& other);
    HVNAudioBuffer (HVNAudioBuffer&& other) noexcept = default;
    HVNAudioBuffer& operator= (const HVNAudioBuffer& other);
    HVNAudioBuffer& operator= (HVNAudioBuffer&& other) noexcept = default;

    // Sizes every channel to numFrames samples. All channels are silent afterwards,
    // whether or not the memory was reused.
    void resize (uint32_t numFrames);

    // Re-points a view without allocating: channels [first, first + channels()) of
    // source. The view keeps its channel count; missing source channels give null.
    void pointTo (HVNAudioBuffer& source, uint32_t first = 0);
    // Re-points a view at memory owned elsewhere, such as a host's channel array.
    // Uses min(channels(), numSourceChannels) entries; stride becomes numFrames.
    void pointTo (T* const* pointers, uint32_t numSourceChannels, uint32_t numFrames);

    // Silences stride() samples of each channel; on a view only its own channels.
    void clear();
    // Silences the first count samples of each channel.
    void clear (uint32_t count);

    // Copy or convert count samples per channel. Equal channel counts pair the
    // channels; a one-channel source feeds every destination channel; otherwise the
    // first min(source, destination) channels are handled and the rest is left.
    void copyFrom (const HVNAudioBuffer& source, uint32_t count);
    template<typename U>
    void convertFrom (const HVNAudioBuffer<U>& source, uint32_t count);

    // Takes the address of every channel through the bounds test of the storage.
    void rebuildChannelPointers();

    uint32_t channels() const { return numChannels; }
    uint32_t frames() const { return numFrames; }
    uint32_t stride() const { return channelStride; }
    bool isView() const { return storage.empty(); }

    T* channel (uint32_t c) { return channelPointers[c]; }
    const T* channel (uint32_t c) const { return channelPointers[c]; }
    T* const* data() { return channelPointers.data(); }
    const T* const* data() const { return channelPointers.data(); }

    static uint32_t strideFor (uint32_t numFrames) { return (numFrames + 7u) & ~7u; }

private:
    uint32_t numFrames = 0;
    uint32_t channelStride = 0;
    uint32_t numChannels = 0;
    std::vector<T*> channelPointers;
    HVNArray<T> storage;
};

extern template class HVNAudioBuffer<float>;
extern template class HVNAudioBuffer<double>;
extern template void HVNAudioBuffer<float>::convertFrom (const HVNAudioBuffer<double>&, uint32_t);
extern template void HVNAudioBuffer<double>::convertFrom (const HVNAudioBuffer<float>&, uint32_t);
