#pragma once

#include "core/TRQInlineCallback.h"

#include <array>
#include <atomic>
#include <cstdint>

// Single-producer, single-consumer ring of callbacks between the audio thread and
// the message thread. The slots exist from construction, so posting never
// allocates; a full ring refuses the post, and the caller drops it.
template<typename Argument, uint32_t Slots = 100>
class TRQCallbackQueue
{
public:
    template<typename Callable>
    bool post (Callable&& callable)
    {
        const uint32_t write = writeIndex.load (std::memory_order_relaxed);
        const uint32_t next = (write + 1) % Slots;
        if (next == readIndex.load (std::memory_order_acquire))
            return false;

        slots[write].set (std::forward<Callable> (callable));
        writeIndex.store (next, std::memory_order_release);
        return true;
    }

    // Runs every pending callback in order of arrival on the consumer's thread.
    void drain (Argument& argument)
    {
        uint32_t read = readIndex.load (std::memory_order_relaxed);
        while (read != writeIndex.load (std::memory_order_acquire))
        {
            slots[read](argument);
            // Destroyed here, on the consumer's thread, so that a callback holding the
            // last reference to something never frees it on the audio thread.
            slots[read].reset();
            read = (read + 1) % Slots;
            readIndex.store (read, std::memory_order_release);
        }
    }

    bool isEmpty() const
    {
        return readIndex.load (std::memory_order_acquire) == writeIndex.load (std::memory_order_acquire);
    }

private:
    std::array<TRQInlineCallback<Argument>, Slots> slots;
    std::atomic<uint32_t> readIndex{0};
    std::atomic<uint32_t> writeIndex{0};
};
