#pragma once

#include "meters/AtomicFIFODataStore.h"
#include "meters/DataStore.h"
#include "meters/MeterData.h"
#include "meters/SharedMeterTypes.h"
#include "toolkit/HVNAudioBuffer.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <unordered_map>

// The channel that carries meter data from the audio thread to the render thread:
// one FIFO of pre-built records per meter id. The audio thread copies into the next
// free record and never waits, locks or allocates; when a FIFO is full it drops the
// block and raises `overflowed`, and the next poll delivers only the newest record
// of each FIFO.
class MeterMessaging
{
public:
    using Listener = std::function<void (const MeterData&)>;

    static constexpr uint32_t meterCount = 4;
    // Meter ids and their records.
    static constexpr uint32_t inputLevelId = 0;    // HVNAudioBufferMeter<double>
    static constexpr uint32_t outputLevelId = 1;   // HVNAudioBufferMeter<double>
    static constexpr uint32_t gainReductionId = 2; // DataPoint<float>
    static constexpr uint32_t detectorId = 3;      // HVNAudioBufferMeter<double>

    explicit MeterMessaging (uint32_t recordsPerStore);
    ~MeterMessaging();

    MeterMessaging (const MeterMessaging&) = delete;
    MeterMessaging& operator= (const MeterMessaging&) = delete;

    // Message or render thread. Makes the FIFO for id from the prototype if there is
    // none yet, adds the listener and opens the gate of id. Ids from meterCount up
    // are ignored.
    template<typename Record>
    void addStore (uint32_t id, const Record& prototype, Listener listener)
    {
        if (id >= meterCount)
            return;
        std::lock_guard<std::mutex> lock (drainLock);
        if (stores[id].load() == nullptr)
            install (id, std::make_unique<AtomicFIFODataStore<Record>> (recordsPerStore, prototype));
        listeners.emplace (id, std::move (listener));
        enabled[id].exchange (1);
    }

    // Audio thread. frames samples per channel of block go into the next record.
    void writeBuffer (uint32_t id, const HVNAudioBuffer<double>& block, uint32_t frames);
    // Audio thread. One value for the gain-reduction id.
    void writePoint (float value);

    // Render thread: hands every waiting record to the listeners of its id.
    void poll();
    // Closes every gate and drops the listeners; the FIFOs stay.
    void clear();

    bool hasOverflowed() const { return overflowed.load() != 0; }
    bool isEnabled (uint32_t id) const { return id < meterCount && enabled[id].load() != 0; }
    uint32_t getRecordsPerStore() const { return recordsPerStore; }
    // The FIFO of id, or null.
    DataStore* getStore (uint32_t id) const { return id < meterCount ? stores[id].load() : nullptr; }

private:
    void install (uint32_t id, std::unique_ptr<DataStore> store);
    template<typename Record, typename Fill>
    void write (uint32_t id, Fill&& fill);

    // The stores live in a fixed table by id rather than in a growing map, so that
    // a store added while audio runs never moves what the writer is looking at.
    std::array<std::unique_ptr<DataStore>, meterCount> ownedStores;
    std::array<std::atomic<DataStore*>, meterCount> stores{};
    std::unordered_multimap<uint32_t, Listener> listeners;
    const uint32_t recordsPerStore;
    std::array<std::atomic<uint8_t>, meterCount> enabled{};
    std::atomic<uint8_t> overflowed{0};
    std::atomic<uint8_t> suspended{0};
    std::mutex drainLock;
};
