#include "core/HVNBypassFader.h"

#include "toolkit/HVNVec.h"

#include <algorithm>
#include <chrono>

HVNBypassFader::HVNBypassFader (uint32_t channels, uint32_t delay, uint32_t maxBlockSize, double sampleRate,
                                Clock clockSource)
    : numChannels (channels)
    , delaySamples (delay)
    , fade (maxBlockSize, &sampleRate)
    , scratch (channels, maxBlockSize)
    , clock (std::move (clockSource))
{
    if (delaySamples > 0)
        dryDelay =
            std::make_unique<HVNCircularBuffer<float>> (numChannels, delaySamples + maxBlockSize, true);
    fade.setRange (1.0f);
    fade.setRatePerSample (static_cast<float> (20.0 / sampleRate));
    fade.setJumpNext();
    lastChangeTime = now();
}

double HVNBypassFader::now() const
{
    if (clock)
        return clock();
    using namespace std::chrono;
    return duration<double> (steady_clock::now().time_since_epoch()).count();
}

void HVNBypassFader::setTarget (float v)
{
    fade.setTarget (v);
    lastChangeTime = now();
    if (state == asleep)
        state = waking;
}

void HVNBypassFader::storeDry (const HVNAudioBuffer<float>& block, uint32_t n)
{
    if (dryDelay == nullptr)
    {
        scratch.copyFrom (block, n);
        return;
    }

    if (block.channels() == numChannels)
    {
        dryDelay->write (block, 0, n);
        return;
    }

    // A mono input in front of a stereo output: widen first, so that the dry path
    // keeps its delay in every layout.
    scratch.copyFrom (block, n);
    dryDelay->write (scratch, 0, n);
}

void HVNBypassFader::apply (HVNAudioBuffer<float>& wet, uint32_t n, uint32_t latency)
{
    n = std::min (n, scratch.frames());
    latency = std::min (latency, delaySamples);
    const uint32_t start = dryDelay != nullptr ? dryDelay->positionBeforeLastWrite (latency) : 0;
    const uint32_t channels = std::min (wet.channels(), numChannels);

    auto dryOf = [&] (uint32_t c) -> const float*
    { return dryDelay != nullptr ? dryDelay->lane (c) + start : scratch.channel (c); };

    if (state != running)
    {
        for (uint32_t c = 0; c < channels; ++c)
            if (float* w = wet.channel (c))
                HVNVec::copy (dryOf (c), w, n);
        if (state == waking)
            state = running;
        return;
    }

    fade.process (n);

    if (fade.isActive())
    {
        for (uint32_t c = 0; c < channels; ++c)
            if (float* w = wet.channel (c))
                fade.crossfade (w, dryOf (c), w, n);
    }
    else if (fade.getValue() == 0.0f)
    {
        for (uint32_t c = 0; c < channels; ++c)
            if (float* w = wet.channel (c))
                HVNVec::copy (dryOf (c), w, n);
        if (now() - lastChangeTime > sleepAfterSeconds)
            state = asleep;
    }
}

void HVNBypassFader::clearDelay()
{
    if (dryDelay != nullptr)
        dryDelay->reset();
}
