#pragma once

#include <cstdint>

// An owning array of float or double on a 32-byte boundary, so that vector loops
// can run full width from the first element. Allocation happens only in set-up
// calls; element access on the processing path is through data() or operator[].
template<typename T>
class HVNArray
{
public:
    HVNArray() = default;
    // Allocates count elements and clears them.
    explicit HVNArray (uint32_t count);
    HVNArray (const HVNArray& other);
    HVNArray (HVNArray&& other) noexcept;
    ~HVNArray();

    // Reallocates only when the sizes differ, then copies.
    HVNArray& operator= (const HVNArray& other);
    HVNArray& operator= (HVNArray&& other) noexcept;

    // Frees the old block and allocates count elements, not cleared. A count of 0
    // throws std::bad_array_new_length, a failed allocation std::bad_alloc; in both
    // cases size() is left as it was.
    void allocate (uint32_t count);
    // Frees the block; the array is empty afterwards.
    void release() noexcept;

    T& at (uint32_t index);
    const T& at (uint32_t index) const;

    T& operator[] (uint32_t index) { return block[index]; }
    const T& operator[] (uint32_t index) const { return block[index]; }

    T* data() { return block; }
    const T* data() const { return block; }
    uint32_t size() const { return count; }
    bool empty() const { return block == nullptr; }

    static constexpr uint32_t alignment = 32;

private:
    uint32_t count = 0;
    T* block = nullptr;
};

extern template class HVNArray<float>;
extern template class HVNArray<double>;
