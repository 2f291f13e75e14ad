#include "meters/MeterMessaging.h"

#include <algorithm>

MeterMessaging::MeterMessaging (uint32_t records)
    : recordsPerStore (records)
{
    for (auto& store : stores)
        store.store (nullptr);
    for (auto& gate : enabled)
        gate.store (0);
}

MeterMessaging::~MeterMessaging() = default;

void MeterMessaging::install (uint32_t id, std::unique_ptr<DataStore> store)
{
    ownedStores[id] = std::move (store);
    stores[id].store (ownedStores[id].get());
}

template<typename Record>
AtomicFIFODataStore<Record>* MeterMessaging::writableStore (uint32_t id)
{
    if (id >= meterCount || enabled[id].load() == 0)
        return nullptr;
    DataStore* store = stores[id].load();
    if (store == nullptr || suspended.load() != 0)
        return nullptr;
    return dynamic_cast<AtomicFIFODataStore<Record>*> (store);
}

void MeterMessaging::writeBuffer (uint32_t id, const HVNAudioBuffer<double>& block, uint32_t frames)
{
    auto* store = writableStore<SharedMeterTypes::HVNAudioBufferMeter<double>> (id);
    if (store == nullptr)
        return;

    auto* slot = store->slotToWrite();
    if (slot == nullptr)
    {
        overflowed.exchange (1);
        return;
    }

    slot->frames = std::min (frames, slot->buffer->frames());
    slot->buffer->copyFrom (block, slot->frames);
    store->publish();
}

void MeterMessaging::writePoint (float value)
{
    auto* store = writableStore<SharedMeterTypes::DataPoint<float>> (gainReductionId);
    if (store == nullptr)
        return;

    auto* slot = store->slotToWrite();
    if (slot == nullptr)
    {
        overflowed.exchange (1);
        return;
    }

    slot->value = value;
    store->publish();
}

void MeterMessaging::poll()
{
    std::lock_guard<std::mutex> lock (drainLock);
    const bool skip = overflowed.load() != 0;

    for (uint32_t id = 0; id < meterCount; ++id)
    {
        DataStore* store = stores[id].load();
        if (store == nullptr || store->isEmpty())
            continue;
        const auto receivers = listeners.equal_range (id);
        if (receivers.first == receivers.second)
            continue;

        // Bounded by what was there at the start, so that a writer that keeps up
        // cannot hold this thread here.
        for (uint32_t remaining = store->size(); remaining != 0 && !store->isEmpty(); --remaining)
        {
            if (!skip || store->size() == 1)
                for (auto it = receivers.first; it != receivers.second; ++it)
                    it->second (*store->front());
            store->popFront();
        }
    }

    if (skip)
        overflowed.exchange (0);
    if (suspended.load() != 0)
        suspended.exchange (0);
}

void MeterMessaging::clear()
{
    std::lock_guard<std::mutex> lock (drainLock);
    for (auto& gate : enabled)
        gate.exchange (0);
    listeners.clear();
}
