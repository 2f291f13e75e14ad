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

template<typename Record, typename Fill>
void MeterMessaging::write (uint32_t id, Fill&& fill)
{
    if (id >= meterCount || enabled[id].load() == 0)
        return;
    DataStore* base = stores[id].load();
    if (base == nullptr || suspended.load() != 0)
        return;
    auto* store = dynamic_cast<AtomicFIFODataStore<Record>*> (base);
    if (store == nullptr)
        return;

    auto* slot = store->slotToWrite();
    if (slot == nullptr)
    {
        // The reader is behind: this record is dropped, and the next drain
        // delivers only the newest of each store.
        overflowed.exchange (1);
        return;
    }

    fill (*slot);
    store->publish();
}

void MeterMessaging::writeBuffer (uint32_t id, const HVNAudioBuffer<double>& block, uint32_t frames)
{
    write<SharedMeterTypes::HVNAudioBufferMeter<double>> (id,
                                                          [&] (auto& slot)
                                                          {
                                                              slot.frames =
                                                                  std::min (frames, slot.buffer->frames());
                                                              slot.buffer->copyFrom (block, slot.frames);
                                                          });
}

void MeterMessaging::writePoint (float value)
{
    write<SharedMeterTypes::DataPoint<float>> (gainReductionId, [value] (auto& slot) { slot.value = value; });
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
