#pragma once

#include <cstddef>
#include <new>
#include <type_traits>
#include <utility>

// A callable stored inside the object, never on the heap, so that a slot of a
// real-time queue can take a new callback without allocating. Callables larger
// than the inline space are refused at compile time.
template<typename Argument, std::size_t Capacity = 64>
class TRQInlineCallback
{
public:
    TRQInlineCallback() = default;
    ~TRQInlineCallback() { reset(); }

    TRQInlineCallback (const TRQInlineCallback&) = delete;
    TRQInlineCallback& operator= (const TRQInlineCallback&) = delete;

    template<typename Callable>
    void set (Callable&& callable)
    {
        using Stored = std::decay_t<Callable>;
        static_assert (sizeof (Stored) <= Capacity, "callback too large for its slot");
        static_assert (alignof (Stored) <= alignof (std::max_align_t), "callback over-aligned");

        reset();
        new (storage) Stored (std::forward<Callable> (callable));
        invoker = [] (void* s, Argument& a) { (*static_cast<Stored*> (s)) (a); };
        destroyer = [] (void* s) { static_cast<Stored*> (s)->~Stored(); };
    }

    void operator() (Argument& argument)
    {
        if (invoker != nullptr)
            invoker (storage, argument);
    }

    void reset()
    {
        if (destroyer != nullptr)
            destroyer (storage);
        invoker = nullptr;
        destroyer = nullptr;
    }

    explicit operator bool() const { return invoker != nullptr; }

private:
    alignas (std::max_align_t) unsigned char storage[Capacity];
    void (*invoker) (void*, Argument&) = nullptr;
    void (*destroyer) (void*) = nullptr;
};
