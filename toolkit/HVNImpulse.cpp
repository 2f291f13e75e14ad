#include "toolkit/HVNImpulse.h"

#include "toolkit/HVNVec.h"

#include <algorithm>
#include <chrono>
#include <cmath>

HVNImpulse::HVNImpulse (uint32_t n)
    : length (n)
    , samples (n)
    , significantLength (n)
{
    setIdentity (false);
}

void HVNImpulse::setIdentity (bool linearPhase)
{
    HVNVec::clear (samples.data(), length);
    samples[linearPhase ? length / 2 : 0] = 1.0f;
    update();
}

void HVNImpulse::setSamples (const float* source, uint32_t count)
{
    count = std::min (count, length);
    HVNVec::copy (source, samples.data(), count);
    HVNVec::clear (samples.data() + count, length - count);
    update();
}

void HVNImpulse::copyFrom (const HVNImpulse& other)
{
    setSamples (other.samples.data(), other.length);
}

void HVNImpulse::setTrim (bool on, double threshold)
{
    trim = on;
    trimThreshold = threshold;
    update();
}

void HVNImpulse::update()
{
    significantLength = length;
    if (trim)
    {
        const float* s = samples.data();
        uint32_t last = length;
        while (last > 0 && !(std::abs (static_cast<double> (s[last - 1])) > trimThreshold))
            --last;
        significantLength = last;
    }
    trailingZeros = length - significantLength;
    changed = true;
    const auto now = std::chrono::high_resolution_clock::now().time_since_epoch();
    timestamp = std::chrono::duration<double, std::milli> (now).count();
}
