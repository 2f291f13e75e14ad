#include "toolkit/HVNEasingFloat.h"

#include "toolkit/HVNSIMD.h"
#include "toolkit/HVNVec.h"

#include <algorithm>
#include <cmath>

namespace
{
template<typename T>
constexpr T halfPi = static_cast<T> (1.5707963267948966);

template<typename T>
T clampTo (T x, const HVNChecked<T>& lower, const HVNChecked<T>& upper)
{
    if (lower && x < lower.value)
        x = lower.value;
    if (upper && x > upper.value)
        x = upper.value;
    return x;
}

template<typename T>
void fill (T* p, T v, uint32_t n)
{
    std::fill (p, p + n, v);
}
} // namespace

template<typename T>
HVNEasingFloat<T>::HVNEasingFloat (uint32_t bufferCapacity, const double* rate,
                                   HVNResetCallbacks* resetCallbacks)
    : buffer (std::max (bufferCapacity, 1u))
    , capacity (std::max (bufferCapacity, 1u))
    , sampleRate (rate != nullptr ? static_cast<T> (*rate) : static_cast<T> (44100.0))
    , ratePerSample (static_cast<T> (10.0) / sampleRate)
{
    conversions.reserve (4);
    links.reserve (4);
    if (resetCallbacks != nullptr)
        resetCallbacks->push_back ([this] { jumpNext = true; });
}

template<typename T>
void HVNEasingFloat<T>::setInstant (T v)
{
    current = target = previous = v;
    easing = false;
    rampPosition = rampLength;
    overshootFloor = {};
    overshootCeiling = {};
    value = convertScalar (v);
    buffer[0] = value;
    settledCount = 0;
}

template<typename T>
void HVNEasingFloat<T>::setTarget (T v)
{
    if (jumpNext || std::isinf (ratePerSample))
    {
        if (v != current)
            dirty = true;
        setInstant (v);
        return;
    }

    overshootFloor = {};
    overshootCeiling = {};
    if (easing)
    {
        if (current > target)
            overshootFloor = std::min (target, v);
        else if (target > current)
            overshootCeiling = std::max (target, v);
    }

    if (v == current)
    {
        easing = false;
        target = v;
        return;
    }

    target = v;
    dirty = true;
    const T d = v - current;
    const T r = ratePerSample;
    const T c = std::clamp (d, -r, r);
    easing = true;

    const auto shortest =
        static_cast<uint32_t> (std::max (static_cast<T> (0.25) * range / r, static_cast<T> (1)));
    const auto atFullRate = static_cast<uint32_t> (std::lround (d / c));
    rampLength = std::max (shortest, atFullRate);
    rampPosition = 0;

    const T p = previous, s = current, N = static_cast<T> (rampLength);
    const T m = v - 2 * (s - p) * N;
    a0 = s;
    a1 = (v - m) * static_cast<T> (0.5);
    a2 = 2 * v + m - 3 * s;
    a3 = (4 * s - 3 * v - m) * static_cast<T> (0.5);
}

template<typename T>
void HVNEasingFloat<T>::bounds (HVNChecked<T>& lower, HVNChecked<T>& upper) const
{
    lower = minimum ? minimum : overshootFloor;
    upper = maximum ? maximum : overshootCeiling;
}

template<typename T>
void HVNEasingFloat<T>::process (uint32_t n)
{
    n = std::min (n, capacity);
    if (n == 0)
        return;

    T* b = buffer.data();

    if (!easing || rampPosition >= rampLength)
    {
        previous = current;
        easing = false;
        // At rest the links and conversions below refill the buffer with the
        // value, unless a linked easing still moves and needs it per sample.
        if (isActive())
        {
            fill (b, current, n);
            settledCount = 0;
        }
    }
    else
    {
        settledCount = 0;
        const T inverseLength = static_cast<T> (1) / static_cast<T> (rampLength);
        const uint32_t left = rampLength - rampPosition;
        const bool ends = n >= left;
        const uint32_t onRamp = ends ? left : n;

        for (uint32_t i = 0; i < onRamp; ++i)
            b[i] = static_cast<T> (rampPosition + 1 + i) * inverseLength;
        fill (b + onRamp, static_cast<T> (1), n - onRamp);
        rampPosition = ends ? rampLength : rampPosition + n;

        for (uint32_t i = 0; i < n; ++i)
        {
            const T t = b[i];
            b[i] = ((a3 * t + a2) * t + a1) * t + a0;
        }

        HVNChecked<T> lower, upper;
        bounds (lower, upper);
        if (lower || upper)
            for (uint32_t i = 0; i < n; ++i)
                b[i] = clampTo (b[i], lower, upper);

        previous = current;
        current = clampTo (ends ? target : b[n - 1], lower, upper);
        if (n > 1)
            previous = clampTo (b[n - 2], lower, upper);
    }

    value = current;
    applyLinksAndConversions (n);
    jumpNext = false;
}

template<typename T>
T HVNEasingFloat<T>::convertScalar (T x) const
{
    for (auto conversion : conversions)
    {
        switch (conversion)
        {
        case HVNEasingConversion::decibelsToLinear:
            x = std::exp (x * static_cast<T> (0.11512925464970229));
            break;
        case HVNEasingConversion::exponential:
            x = std::exp (x);
            break;
        case HVNEasingConversion::absolute:
            x = std::abs (x);
            break;
        }
    }
    return x;
}

template<typename T>
void HVNEasingFloat<T>::applyLinksAndConversions (uint32_t n)
{
    T* b = buffer.data();

    if (!isActive())
    {
        T x = value;
        for (const auto& l : links)
        {
            const T o = l.other->value;
            switch (l.operation)
            {
            case HVNEasingLink::multiply:
                x *= o;
                break;
            case HVNEasingLink::divide:
                x /= o;
                break;
            case HVNEasingLink::power:
                x = std::pow (x, o);
                break;
            }
        }
        value = convertScalar (x);
        // A settled control keeps its buffer from block to block.
        if (!(settledCount >= n && value == settledValue))
        {
            fill (b, value, n);
            settledValue = value;
            settledCount = n;
        }
        return;
    }

    for (const auto& l : links)
    {
        const T* o = l.other->buffer.data();
        switch (l.operation)
        {
        case HVNEasingLink::multiply:
            for (uint32_t i = 0; i < n; ++i)
                b[i] *= o[i];
            break;
        case HVNEasingLink::divide:
            for (uint32_t i = 0; i < n; ++i)
                b[i] /= o[i];
            break;
        case HVNEasingLink::power:
            for (uint32_t i = 0; i < n; ++i)
                b[i] = std::pow (b[i], o[i]);
            break;
        }
    }
    if (!conversions.empty())
        for (uint32_t i = 0; i < n; ++i)
            b[i] = convertScalar (b[i]);
    value = b[n - 1];
}

template<typename T>
bool HVNEasingFloat<T>::isActive() const
{
    if (easing)
        return true;
    for (const auto& l : links)
        if (l.other->isActive())
            return true;
    return false;
}

template<typename T>
void HVNEasingFloat<T>::multiply (T* const* channels, uint32_t numChannels, uint32_t n) const
{
    n = std::min (n, capacity);
    if (isActive())
    {
        for (uint32_t c = 0; c < numChannels; ++c)
            if (T* x = channels[c])
                HVNSIMD::instance().vMulInPlace (buffer.data(), x, n);
        return;
    }
    if (value == static_cast<T> (1))
        return;
    for (uint32_t c = 0; c < numChannels; ++c)
        if (T* x = channels[c])
            HVNSIMD::instance().vScalarMul (x, value, x, n);
}

template<typename T>
void HVNEasingFloat<T>::multiply (HVNAudioBuffer<T>& channels, uint32_t n) const
{
    multiply (channels.data(), channels.channels(), n);
}

template<typename T>
void HVNEasingFloat<T>::divide (T* const* channels, uint32_t numChannels, uint32_t n) const
{
    n = std::min (n, capacity);
    if (isActive())
    {
        for (uint32_t c = 0; c < numChannels; ++c)
            if (T* x = channels[c])
                HVNSIMD::instance().vDiv (x, buffer.data(), x, n);
        return;
    }
    if (value == static_cast<T> (1))
        return;
    const T inverse = static_cast<T> (1) / value;
    for (uint32_t c = 0; c < numChannels; ++c)
        if (T* x = channels[c])
            HVNSIMD::instance().vScalarMul (x, inverse, x, n);
}

template<typename T>
void HVNEasingFloat<T>::divide (HVNAudioBuffer<T>& channels, uint32_t n) const
{
    divide (channels.data(), channels.channels(), n);
}

template<typename T>
void HVNEasingFloat<T>::crossfade (const T* wet, const T* dry, T* destination, uint32_t n) const
{
    n = std::min (n, capacity);
    if (isActive())
    {
        const T* g = buffer.data();
        for (uint32_t i = 0; i < n; ++i)
            destination[i] = wet[i] * g[i] + dry[i] * (static_cast<T> (1) - g[i]);
        return;
    }
    if (value == static_cast<T> (0))
        HVNVec::move (dry, destination, n);
    else if (value == static_cast<T> (1))
        HVNVec::move (wet, destination, n);
    else
        HVNSIMD::instance().vScalarMix (wet, value, dry, static_cast<T> (1) - value, destination, n);
}

template<typename T>
void HVNEasingFloat<T>::crossfadeEqualPower (T* scratch, const T* wet, const T* dry, T* destination,
                                             uint32_t n) const
{
    n = std::min (n, capacity);
    if (isActive())
    {
        const T* g = buffer.data();
        for (uint32_t i = 0; i < n; ++i)
            scratch[i] = g[i] * halfPi<T>;
        for (uint32_t i = 0; i < n; ++i)
            destination[i] = wet[i] * std::sin (scratch[i]) + dry[i] * std::cos (scratch[i]);
        return;
    }
    if (value == static_cast<T> (0))
        HVNVec::move (dry, destination, n);
    else if (value == static_cast<T> (1))
        HVNVec::move (wet, destination, n);
    else
    {
        const T w = std::sin (value * halfPi<T>), d = std::cos (value * halfPi<T>);
        for (uint32_t i = 0; i < n; ++i)
            destination[i] = wet[i] * w + dry[i] * d;
    }
}

template<typename T>
void HVNEasingFloat<T>::link (HVNEasingLink operation, HVNEasingFloat& other)
{
    for (const auto& l : other.links)
        if (l.other == this)
            return;
    links.push_back ({operation, &other});
}

template<typename T>
void HVNEasingFloat<T>::addConversion (HVNEasingConversion conversion)
{
    conversions.push_back (conversion);
}

template class HVNEasingFloat<float>;
template class HVNEasingFloat<double>;
