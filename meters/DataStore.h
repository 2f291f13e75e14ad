#pragma once

#include "meters/MeterData.h"

#include <cstdint>

// A single-producer, single-consumer queue of meter records, seen from the reader.
class DataStore
{
public:
    virtual ~DataStore() = default;
    virtual bool isEmpty() const = 0;
    virtual const MeterData* front() const = 0;
    virtual void popFront() = 0;
    // Records waiting. On an empty store this reads as the capacity: test isEmpty first.
    virtual uint32_t size() const = 0;
};
