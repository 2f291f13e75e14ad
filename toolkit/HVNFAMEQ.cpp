#include "toolkit/HVNFAMEQ.h"

#include "toolkit/HVNSIMD.h"
#include "toolkit/HVNVec.h"
#include "toolkit/vHVN.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>

namespace
{
// Filters below this length run directly: there is no partition to gain from.
constexpr uint32_t directBelow = 257;
// Taps at the end of a design that are below the resolution of the float path
// (2^-24 of a full-scale signal) are not computed.
constexpr double trimThreshold = 5.9604644775390625e-08;
// A response whose largest bin is below this is flat.
constexpr double flatBelow = 1e-06;

double besselI0 (double x)
{
    // The series to 32 terms: 1 + sum ((x/2)^j / j!)^2.
    double term = 1.0, sum = 1.0;
    for (int j = 1; j <= 32; ++j)
    {
        term *= (x * 0.5) / j;
        sum += term * term;
    }
    return sum;
}
} // namespace

template<typename A, typename D>
void HVNFAMEQ<A, D>::init (uint32_t block, D rate, uint32_t numChannels, uint32_t length, bool linear,
                           D windowParameter)
{
    maxBlock = block;
    sampleRate = rate;
    channels = numChannels;
    filterLength = length;
    binCount = length / 2;
    linearPhase = linear;
    direct = length < directBelow;

    const double rateValue = static_cast<double> (rate);
    crossfade = std::make_unique<HVNEasingFloat<float>> (block, &rateValue);
    crossfade->setRange (1.0f);
    crossfade->setRatePerSample (static_cast<float> (13.333333333333334 / rateValue));
    crossfade->setInstant (1.0f);

    for (auto i = 0; i < 2; ++i)
    {
        if (direct)
            directs[i] = std::make_unique<HVNDirectFIR> (numChannels, block, length);
        else
            convolvers[i] = std::make_unique<HVNPartitionedConvolver> (numChannels, length);
    }
    pending = std::make_unique<HVNImpulse> (length);
    pending->setTrim (true, trimThreshold);
    pending->setIdentity (linear);

    conversion = HVNAudioBuffer<float> (numChannels, block);
    fadeBlock = HVNAudioBuffer<float> (numChannels, block);
    newGain = HVNArray<float> (block);
    oldGain = HVNArray<float> (block);
    magnitudes = HVNArray<D> (binCount);
    designInput = HVNArray<D> (binCount);
    designer = std::make_unique<HVNMagnitudeDesigner> (length, rateValue, linear);
    impulse = HVNArray<D> (designer->getFFTLength());
    impulseFloat = HVNArray<float> (length);
    window = HVNArray<D> (length);
    if (linear)
        rampDelay = std::make_unique<HVNCircularBuffer<float>> (1, length + block, false);

    D beta = windowParameter * static_cast<D> (61440) / static_cast<D> (length);
    if (linear)
        beta *= static_cast<D> (0.5);
    makeWindow (beta);

    needsDesign = false;
    hasNewFilter = true;
    fading = false;
    firstIsLive = true;
    firstBlock = true;
}

template<typename A, typename D>
void HVNFAMEQ<A, D>::makeWindow (D beta)
{
    // Kaiser window; for minimum phase only its second half, peak first.
    const uint32_t L = filterLength;
    const double b = static_cast<double> (beta);
    const double span = static_cast<double> (L - 1);
    const double norm = 1.0 / besselI0 (b);
    for (uint32_t k = 0; k < L; ++k)
    {
        const double x = linearPhase ? static_cast<double> (k) : 0.5 * static_cast<double> (k);
        const double inner = std::max (0.0, span * x - x * x);
        const double w = besselI0 ((2.0 * b / span) * std::sqrt (inner)) * norm;
        window[linearPhase ? k : L - 1 - k] = static_cast<D> (w);
    }
}

template<typename A, typename D>
void HVNFAMEQ<A, D>::setTransitionTime (D milliseconds)
{
    crossfade->setRange (1.0f);
    crossfade->setRatePerSample (milliseconds <= 0 ? std::numeric_limits<float>::infinity()
                                                   : static_cast<float> (1000.0 / milliseconds / sampleRate));
}

template<typename A, typename D>
void HVNFAMEQ<A, D>::getFrequencies (D* out) const
{
    vHVN_vRamp (static_cast<D> (0), sampleRate / static_cast<D> (filterLength), out, binCount);
}

template<typename A, typename D>
void HVNFAMEQ<A, D>::setResponse (const D* frequencies, const D* decibels, uint32_t count)
{
    if (count == 0)
        return;
    D* m = designInput.data();
    uint32_t lo = 0;
    for (uint32_t i = 0; i < binCount; ++i)
    {
        const D x = std::max (static_cast<D> (1), static_cast<D> (i) / static_cast<D> (binCount - 1) *
                                                      sampleRate * static_cast<D> (0.5));
        if (x <= frequencies[0])
            m[i] = decibels[0];
        else if (x > frequencies[count - 1])
            m[i] = decibels[count - 1];
        else
        {
            // The grid rises with i, so the search goes on from the last pair.
            while (lo + 2 < count && frequencies[lo + 1] < x)
                ++lo;
            const D u = (std::log (x) - std::log (frequencies[lo])) /
                        (std::log (frequencies[lo + 1]) - std::log (frequencies[lo]));
            m[i] = (1 - u) * decibels[lo] + u * decibels[lo + 1];
        }
    }
    // designInput doubles as the staging area: setMagnitudes copies it first.
    this->setMagnitudes (m);
}

template<typename A, typename D>
void HVNFAMEQ<A, D>::setMagnitudes (const D* decibels)
{
    HVNVec::copy (decibels, magnitudes.data(), binCount);
    if (fading)
        needsDesign = true;
    else
        design();
}

template<typename A, typename D>
void HVNFAMEQ<A, D>::design()
{
    if (vHVN_vNormInf (magnitudes.data(), binCount) < flatBelow)
        pending->setIdentity (linearPhase);
    else
    {
        vHVN_vClip (magnitudes.data(), static_cast<D> (-300), static_cast<D> (300), designInput.data(),
                    binCount);
        designer->design (designInput.data(), impulse.data(), true);
        vHVN_vMulInPlace (window.data(), impulse.data(), filterLength);
        HVNVec::convert (impulse.data(), impulseFloat.data(), filterLength);
        pending->setSamples (impulseFloat.data(), filterLength);
        ++designCount;
    }
    needsDesign = false;
    hasNewFilter = true;
}

template<typename A, typename D>
void HVNFAMEQ<A, D>::load (bool first)
{
    const int i = first ? 0 : 1;
    if (direct)
    {
        directs[i]->clear();
        directs[i]->setImpulse (*pending);
    }
    else
    {
        convolvers[i]->clear();
        convolvers[i]->setImpulse (*pending);
    }
}

template<typename A, typename D>
void HVNFAMEQ<A, D>::runPending (bool allowFade)
{
    if (needsDesign && !fading)
        design();
    if (!hasNewFilter || fading)
        return;

    load (!firstIsLive);
    if (allowFade)
    {
        crossfade->setInstant (0.0f);
        crossfade->setTarget (1.0f);
        fading = true;
        tailCount = 0;
        if (linearPhase)
        {
            rampDelay->reset();
            rampDelay->writeSilence (binCount);
        }
    }
    else
    {
        crossfade->setInstant (1.0f);
        firstIsLive = !firstIsLive;
    }
    hasNewFilter = false;
}

template<typename A, typename D>
void HVNFAMEQ<A, D>::runFilter (bool first, HVNAudioBuffer<float>& block, uint32_t n)
{
    const int i = first ? 0 : 1;
    if (direct)
        directs[i]->process (block.data(), block.data(), n);
    else
        convolvers[i]->process (block.data(), block.data(), n);
}

template<typename A, typename D>
void HVNFAMEQ<A, D>::clearFilters()
{
    for (int i = 0; i < 2; ++i)
    {
        if (directs[i])
            directs[i]->clear();
        if (convolvers[i])
            convolvers[i]->clear();
    }
}

template<typename A, typename D>
void HVNFAMEQ<A, D>::reset()
{
    clearFilters();
    if (fading)
    {
        // The incoming filter takes over at once.
        fading = false;
        firstIsLive = !firstIsLive;
    }
    runPending (false);
    crossfade->setInstant (1.0f);
}

template<typename A, typename D>
void HVNFAMEQ<A, D>::processFloat (HVNAudioBuffer<float>& block, uint32_t n)
{
    n = std::min (n, maxBlock);
    if (n == 0)
        return;

    const bool first = firstBlock;
    firstBlock = false;
    runPending (!first);

    if (!fading)
    {
        runFilter (firstIsLive, block, n);
        return;
    }

    crossfade->process (n);
    const float* ramp = crossfade->getBuffer();
    if (linearPhase)
    {
        const float* lanes[1] = {ramp};
        rampDelay->write (lanes, 0, n);
    }

    float* gNew = newGain.data();
    float* gOld = oldGain.data();
    vHVN_vSqrt (ramp, gNew, n);
    vHVN_vOneMinus (ramp, gOld, n);
    vHVN_vLowerBound (gOld, 0.0f, gOld, n);
    vHVN_vSqrt (gOld, gOld, n);

    for (uint32_t c = 0; c < channels; ++c)
    {
        vHVN_vMul (block.channel (c), gOld, fadeBlock.channel (c), n);
        vHVN_vMulInPlace (gNew, block.channel (c), n);
    }

    runFilter (!firstIsLive, block, n);
    runFilter (firstIsLive, fadeBlock, n);

    if (linearPhase)
    {
        // The filters delay by binCount samples; so does the gain after them.
        const float* delayed = rampDelay->lane (0) + rampDelay->getReadPosition();
        vHVN_vSqrt (delayed, gNew, n);
        vHVN_vOneMinus (delayed, gOld, n);
        vHVN_vLowerBound (gOld, 0.0f, gOld, n);
        vHVN_vSqrt (gOld, gOld, n);
    }

    for (uint32_t c = 0; c < channels; ++c)
    {
        vHVN_vMulInPlace (gOld, fadeBlock.channel (c), n);
        vHVN_vMulInPlace (gNew, block.channel (c), n);
        vHVN_vAddInPlace (fadeBlock.channel (c), block.channel (c), n);
    }

    if (!crossfade->isActive())
    {
        bool done = true;
        if (linearPhase)
        {
            tailCount += n;
            done = tailCount >= binCount;
        }
        if (done)
        {
            fading = false;
            firstIsLive = !firstIsLive;
        }
    }
    if (linearPhase)
        rampDelay->advanceRead (std::min (n, rampDelay->fill()));
}

template<typename A, typename D>
void HVNFAMEQ<A, D>::process (HVNAudioBuffer<D>& block, uint32_t n)
{
    n = std::min (n, maxBlock);
    for (uint32_t c = 0; c < channels; ++c)
        HVNVec::convert (block.channel (c), conversion.channel (c), n);
    processFloat (conversion, n);
    for (uint32_t c = 0; c < channels; ++c)
        HVNVec::convert (conversion.channel (c), block.channel (c), n);
}

template class HVNFAMEQ<float, double>;
