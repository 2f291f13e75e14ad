#pragma once

#include "meters/DataStore.h"

#include <atomic>
#include <cstdint>
#include <vector>

// A ring of pre-built records. The writer fills the slot at writeIndex and only
// then publishes the index, so the reader never sees half a record. One slot stays
// empty to tell full from empty: capacity - 1 records fit.
template<typename T>
class AtomicFIFODataStore : public DataStore
{
public:
    AtomicFIFODataStore (uint32_t requestedCapacity, const T& prototype)
        : capacity (requestedCapacity < 2 ? 2 : requestedCapacity)
        , slots (capacity, prototype)
    {
    }

    bool isEmpty() const override
    {
        return readIndex.load (std::memory_order_acquire) == writeIndex.load (std::memory_order_acquire);
    }

    const MeterData* front() const override { return &slots[readIndex.load (std::memory_order_relaxed)]; }

    void popFront() override
    {
        const uint32_t next = readIndex.load (std::memory_order_relaxed) + 1;
        readIndex.store (next == capacity ? 0 : next, std::memory_order_release);
    }

    uint32_t size() const override
    {
        const uint32_t w = writeIndex.load (std::memory_order_acquire);
        const uint32_t r = readIndex.load (std::memory_order_acquire);
        return w > r ? w - r : capacity - r + w;
    }

    // Writer side. The slot to fill, or null when the ring is full.
    T* slotToWrite()
    {
        const uint32_t w = writeIndex.load (std::memory_order_relaxed);
        const uint32_t next = w + 1 == capacity ? 0 : w + 1;
        if (next == readIndex.load (std::memory_order_acquire))
            return nullptr;
        return &slots[w];
    }

    // Writer side: hands the slot returned by slotToWrite to the reader.
    void publish()
    {
        const uint32_t w = writeIndex.load (std::memory_order_relaxed);
        writeIndex.store (w + 1 == capacity ? 0 : w + 1, std::memory_order_release);
    }

    uint32_t getCapacity() const { return capacity; }

private:
    const uint32_t capacity;
    std::atomic<uint32_t> readIndex{0};
    std::atomic<uint32_t> writeIndex{0};
    std::vector<T> slots;
};
