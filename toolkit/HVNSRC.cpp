#include "toolkit/HVNSRC.h"

#include "toolkit/HVNVec.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace
{
constexpr double lowestRate = 8000.0;
constexpr double highestRate = 1536000.0;
} // namespace

HVNSRC::HVNSRC (double source, uint32_t maxSource, double dest, uint32_t numChannels)
{
    setup (source, maxSource, dest, numChannels);
}

int HVNSRC::setup (double source, uint32_t& maxSource, double dest, uint32_t numChannels)
{
    if (mSetupSuccess)
        throw std::runtime_error ("HVNSRC: can't call setup twice");

    const double s = std::floor (source), d = std::floor (dest);
    if (!(s >= lowestRate && s <= highestRate))
        throw std::runtime_error ("HVNSRC: source Sr is out of bounds");
    if (!(d >= lowestRate && d <= highestRate))
        throw std::runtime_error ("HVNSRC: dest Sr is out of bounds");

    const double r = std::max (s, d) / std::min (s, d);
    if (r != std::floor (r))
        throw std::runtime_error ("HVNSRC: only whole ratios are supported");

    channels = numChannels;
    sourceRate = s;
    destRate = d;
    ratio = static_cast<uint32_t> (r);
    mode = d == s ? 0 : (d > s ? 1 : 2);
    maxSourceLength = maxSource;
    maxDestLength = mode == 1 ? maxSource * ratio : (maxSource + ratio - 1) / ratio;
    if (mode == 0)
        maxDestLength = maxSource;

    lastSample.assign (channels, 0.0f);
    reset();
    mSetupSuccess = true;
    return 0;
}

double HVNSRC::getLatency() const
{
    if (!mSetupSuccess)
        return 0.0;
    // Interpolating between the previous and the current input sample puts the
    // output one input sample late; decimation adds nothing.
    return mode == 1 ? static_cast<double> (ratio) : 0.0;
}

void HVNSRC::reset()
{
    std::fill (lastSample.begin(), lastSample.end(), 0.0f);
    phase = 0;
}

void HVNSRC::processSrc (const HVNAudioBuffer<float>& source, uint32_t sourceLength,
                         HVNAudioBuffer<float>& dest, uint32_t& destLength, uint32_t maxDest)
{
    if (!mSetupSuccess)
        throw std::runtime_error ("HVNSRC: mSetupSuccess != true");
    if (sourceLength > maxSourceLength)
        throw std::runtime_error ("HVNSRC: sourceLength is too big");

    uint32_t produced = sourceLength;
    if (mode == 1)
    {
        produced = sourceLength * ratio;
    }
    else if (mode == 2)
    {
        // Outputs fall on input indices i where (phase + i) is a multiple of ratio.
        const uint32_t first = (ratio - phase) % ratio;
        produced = first < sourceLength ? (sourceLength - first + ratio - 1) / ratio : 0;
    }

    if (produced > maxDest || produced > dest.frames())
        throw std::runtime_error ("HVNSRC: processSrc(), destLength too big");

    const uint32_t n = std::min ({channels, source.channels(), dest.channels()});
    for (uint32_t c = 0; c < n; ++c)
    {
        const float* in = source.channel (c);
        float* out = dest.channel (c);

        if (mode == 0)
        {
            HVNVec::copy (in, out, sourceLength);
        }
        else if (mode == 1)
        {
            const float step = 1.0f / static_cast<float> (ratio);
            float previous = lastSample[c];
            for (uint32_t i = 0; i < sourceLength; ++i)
            {
                const float x = in[i];
                const float delta = x - previous;
                for (uint32_t k = 0; k < ratio; ++k)
                    out[i * ratio + k] = previous + delta * (static_cast<float> (k) * step);
                previous = x;
            }
            lastSample[c] = previous;
        }
        else
        {
            const uint32_t first = (ratio - phase) % ratio;
            uint32_t j = 0;
            for (uint32_t i = first; i < sourceLength; i += ratio)
                out[j++] = in[i];
        }
    }

    if (mode == 2)
        phase = static_cast<uint32_t> ((phase + sourceLength) % ratio);

    destLength = produced;
}

uint32_t HVNSRC::process (const HVNAudioBuffer<float>& source, uint32_t sourceLength,
                          HVNAudioBuffer<float>& dest)
{
    uint32_t produced = 0;
    processSrc (source, sourceLength, dest, produced, dest.frames());
    return produced;
}
