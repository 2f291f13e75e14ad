#include "toolkit/HVNBiquadChain.h"

#include "toolkit/HVNSIMD.h"
#include "toolkit/HVNVec.h"

#include <algorithm>

namespace
{
// A crossfade from one design to the next takes 150 ms.
constexpr double fadeRatePerSecond = 6.666666666666667;
} // namespace

HVNBiquadChain::HVNBiquadChain (uint32_t blockSize, double rate, bool shouldSmooth, uint32_t sectionCapacity)
    : maxSections (std::max (sectionCapacity, 1u))
    , sampleRate (rate)
    , smooth (shouldSmooth)
    , designed (5 * maxSections)
    , scratch (std::max (blockSize, 1u))
    , rawSections (2 * maxSections)
    , active (maxSections)
{
    if (smooth)
    {
        incoming = std::make_unique<vHVN_biquad::Vectorized<double>> (maxSections);
        crossfade =
            std::make_unique<HVNEasingFloat<double>> (std::max (blockSize, 1u), &sampleRate, &noCallbacks);
        crossfade->setRatePerSample (fadeRatePerSecond / sampleRate);
        crossfade->setInstant (1.0);
    }
    clear();
    dirty = false;
}

void HVNBiquadChain::setDesigned (uint32_t count, const double* values)
{
    designedSections = std::min (count, maxSections);
    HVNVec::copy (values, designed.data(), 5 * designedSections);
    dirty = true;
}

void HVNBiquadChain::clear()
{
    HVNVec::clear (designed.data(), designed.size());
    for (uint32_t s = 0; s < maxSections; ++s)
        designed[5 * s] = 1.0;
    designedSections = 0;
    dirty = true;
}

void HVNBiquadChain::reset()
{
    active.reset();
    if (incoming)
        incoming->reset();
}

void HVNBiquadChain::process (double* samples, uint32_t n)
{
    if (!smooth)
    {
        if (dirty)
        {
            active.reset();
            active.setCoefficients (designedSections, designed.data());
            dirty = false;
        }
        active.process (samples, n);
        return;
    }

    fadeJustBegun = false;
    if (!crossfade->isActive() && dirty)
    {
        incoming->setCoefficients (designedSections, designed.data());
        incoming->reset();
        crossfade->setInstant (0.0);
        crossfade->setTarget (1.0);
        dirty = false;
        fadeJustBegun = true;
    }
    if (!crossfade->isActive() && !fadeJustBegun)
    {
        active.process (samples, n);
        return;
    }

    HVNVec::copy (samples, scratch.data(), n);
    active.process (samples, n);
    incoming->process (scratch.data(), n);
    crossfade->process (n);
    HVNSIMD::instance().vLerp (scratch.data(), samples, crossfade->getBuffer(), samples, n);
    if (!crossfade->isActive())
        active = *incoming;
}
