#include "support/AllocationCounter.h"

#include <cstdlib>
#include <new>

namespace
{
thread_local bool counting = false;
thread_local std::size_t allocationCount = 0;
thread_local std::size_t deallocationCount = 0;

void* allocate (std::size_t size, std::size_t alignment = 0)
{
    if (counting)
        ++allocationCount;

    if (size == 0)
        size = 1;

    void* p = nullptr;
    if (alignment > alignof (std::max_align_t))
    {
        if (posix_memalign (&p, alignment, size) != 0)
            p = nullptr;
    }
    else
    {
        p = std::malloc (size);
    }

    if (p == nullptr)
        throw std::bad_alloc();
    return p;
}

void release (void* p) noexcept
{
    if (p == nullptr)
        return;
    if (counting)
        ++deallocationCount;
    std::free (p);
}
} // namespace

AllocationCounter::AllocationCounter()
{
    allocationCount = 0;
    deallocationCount = 0;
    counting = true;
}

AllocationCounter::~AllocationCounter()
{
    counting = false;
}

std::size_t AllocationCounter::allocations() const
{
    return allocationCount;
}
std::size_t AllocationCounter::deallocations() const
{
    return deallocationCount;
}

void* operator new (std::size_t size)
{
    return allocate (size);
}
void* operator new[] (std::size_t size)
{
    return allocate (size);
}
void* operator new (std::size_t size, std::align_val_t a)
{
    return allocate (size, static_cast<std::size_t> (a));
}
void* operator new[] (std::size_t size, std::align_val_t a)
{
    return allocate (size, static_cast<std::size_t> (a));
}
void* operator new (std::size_t size, const std::nothrow_t&) noexcept
{
    try
    {
        return allocate (size);
    }
    catch (...)
    {
        return nullptr;
    }
}
void* operator new[] (std::size_t size, const std::nothrow_t&) noexcept
{
    try
    {
        return allocate (size);
    }
    catch (...)
    {
        return nullptr;
    }
}
void operator delete (void* p) noexcept
{
    release (p);
}
void operator delete[] (void* p) noexcept
{
    release (p);
}
void operator delete (void* p, std::size_t) noexcept
{
    release (p);
}
void operator delete[] (void* p, std::size_t) noexcept
{
    release (p);
}
void operator delete (void* p, std::align_val_t) noexcept
{
    release (p);
}
void operator delete[] (void* p, std::align_val_t) noexcept
{
    release (p);
}
void operator delete (void* p, std::size_t, std::align_val_t) noexcept
{
    release (p);
}
void operator delete[] (void* p, std::size_t, std::align_val_t) noexcept
{
    release (p);
}
