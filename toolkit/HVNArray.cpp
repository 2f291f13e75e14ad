#include "toolkit/HVNArray.h"

#include "toolkit/HVNVec.h"

#include <new>
#include <stdexcept>
#include <utility>

namespace
{
// Goes through the global operator new so that allocation checks in the tests
// see these blocks like any other.
template<typename T>
T* allocateAligned (uint32_t count)
{
    return static_cast<T*> (::operator new[] (sizeof (T) * count, std::align_val_t (HVNArray<T>::alignment)));
}

template<typename T>
void freeAligned (T* p) noexcept
{
    if (p != nullptr)
        ::operator delete[] (p, std::align_val_t (HVNArray<T>::alignment));
}
} // namespace

template<typename T>
HVNArray<T>::HVNArray (uint32_t n)
{
    allocate (n);
    HVNVec::clear (block, count);
}

template<typename T>
HVNArray<T>::HVNArray (const HVNArray& other)
{
    *this = other;
}

template<typename T>
HVNArray<T>::HVNArray (HVNArray&& other) noexcept
    : count (std::exchange (other.count, 0u))
    , block (std::exchange (other.block, nullptr))
{
}

template<typename T>
HVNArray<T>::~HVNArray()
{
    release();
}

template<typename T>
HVNArray<T>& HVNArray<T>::operator= (const HVNArray& other)
{
    if (this == &other)
        return *this;

    if (other.block == nullptr)
    {
        release();
        return *this;
    }

    if (block == nullptr || count != other.count)
        allocate (other.count);

    HVNVec::copy (other.block, block, count);
    return *this;
}

template<typename T>
HVNArray<T>& HVNArray<T>::operator= (HVNArray&& other) noexcept
{
    if (this != &other)
    {
        release();
        count = std::exchange (other.count, 0u);
        block = std::exchange (other.block, nullptr);
    }
    return *this;
}

template<typename T>
void HVNArray<T>::allocate (uint32_t n)
{
    if (n == 0)
        throw std::bad_array_new_length();

    freeAligned (block);
    block = nullptr;
    block = allocateAligned<T> (n);
    count = n;
}

template<typename T>
void HVNArray<T>::release() noexcept
{
    freeAligned (block);
    block = nullptr;
    count = 0;
}

template<typename T>
T& HVNArray<T>::at (uint32_t index)
{
    if (index >= count || block == nullptr)
        throw std::out_of_range ("HVNArray::at() : index is out of range");
    return block[index];
}

template<typename T>
const T& HVNArray<T>::at (uint32_t index) const
{
    if (index >= count || block == nullptr)
        throw std::out_of_range ("HVNArray::at() : index is out of range");
    return block[index];
}

template class HVNArray<float>;
template class HVNArray<double>;
