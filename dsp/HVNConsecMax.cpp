#include "dsp/HVNConsecMax.h"

#include "toolkit/HVNSIMD.h"
#include "toolkit/vHVN.h"

template<typename T>
HVNConsecMax<T>::HVNConsecMax (uint32_t capacity)
    : HVNConsec<T> (capacity)
    , forward (std::max (capacity, 1u))
    , backward (std::max (capacity, 1u))
{
}

template<typename T>
void HVNConsecMax<T>::process (const T* input, uint32_t windowLength, uint32_t numSamples)
{
    if (numSamples == 0 || windowLength == 0)
        return;
    const uint32_t total = numSamples + windowLength - 1;
    for (uint32_t start = 0; start < total; start += windowLength)
    {
        const uint32_t length = std::min (windowLength, total - start);
        vHVN_vRunningMax (input + start, forward.data() + start, length, false);
        vHVN_vRunningMax (input + start, backward.data() + start, length, true);
    }
    HVNSIMD::instance().vMax (backward.data(), forward.data() + windowLength - 1, this->output.data(),
                              numSamples);
}

template class HVNConsecMax<double>;
