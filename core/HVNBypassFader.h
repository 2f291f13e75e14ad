#pragma once

#include "toolkit/HVNAudioBuffer.h"
#include "toolkit/HVNCircularBuffer.h"
#include "toolkit/HVNEasingFloat.h"

#include <cstdint>
#include <functional>
#include <memory>

// Click-free bypass. The dry input is kept in a delay line and read back at the
// latency that the host was told, so that bypassed audio lines up with processed
// audio and the crossfade between them has no comb filtering. The DSP keeps running
// during bypass so that meters and filters are settled when it comes back.
//
// After five seconds of full bypass the fader sleeps; on waking, one block of pure
// dry signal comes out before the ramp starts.
class HVNBypassFader
{
public:
    // Seconds on a steady clock; replaceable for tests.
    using Clock = std::function<double()>;

    enum State : int32_t
    {
        asleep = 0,
        waking = 1,
        running = 2
    };

    HVNBypassFader (uint32_t numChannels, uint32_t delaySamples, uint32_t maxBlockSize, double sampleRate,
                    Clock clock = {});

    // 1 processes, 0 bypasses.
    void setTarget (float v);
    // Keeps the dry input of this block; call before apply().
    void storeDry (const HVNAudioBuffer<float>& block, uint32_t numSamples);
    // Mixes the dry signal, delayed by latency samples, into wet.
    void apply (HVNAudioBuffer<float>& wet, uint32_t numSamples, uint32_t latency);
    // Silences the dry delay line.
    void clearDelay();

    int32_t getState() const { return state; }
    uint32_t getDelaySamples() const { return delaySamples; }
    const HVNEasingFloat<float>& getFade() const { return fade; }

    static constexpr double sleepAfterSeconds = 5.0;

private:
    double now() const;

    uint32_t numChannels, delaySamples;
    double lastChangeTime = 0.0;
    int32_t state = running;
    std::unique_ptr<HVNCircularBuffer<float>> dryDelay;
    HVNEasingFloat<float> fade;
    HVNAudioBuffer<float> scratch;
    Clock clock;
};
