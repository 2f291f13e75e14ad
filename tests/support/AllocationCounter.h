#pragma once

#include <atomic>
#include <cstddef>

// Counts calls of the global allocation and deallocation functions made by the
// thread that opened a scope, so that a test can prove a processing call free of
// heap traffic.
class AllocationCounter
{
public:
    AllocationCounter();
    ~AllocationCounter();

    std::size_t allocations() const;
    std::size_t deallocations() const;

    AllocationCounter (const AllocationCounter&) = delete;
    AllocationCounter& operator= (const AllocationCounter&) = delete;
};
