#pragma once

#include "core/HVNPublicDSP.h"
#include "core/ProbeDSP.h"
#include "state/TRQSignals.h"

#include <atomic>
#include <chrono>
#include <cmath>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

struct SignalCounter : TRQSignals::Trackable
{
    void onSwap() { ++swaps; }
    void onLatency() { ++latencyChanges; }
    int swaps = 0, latencyChanges = 0;
};

// Drives an HVNPublicDSP block by block with a known input and keeps every input
// sample, so that outputs can be compared with the input at any delay.
struct Rig
{
    Rig (uint32_t blockSize, double sampleRate, uint32_t ins, uint32_t outs, bool startInHQ,
         float wetGain = 1.0f, double* fakeClock = nullptr, int buildDelayMs = 0)
        : block (blockSize)
        , in (ins, blockSize)
        , out (outs, blockSize)
        , sidechain (0, blockSize)
    {
        auto factory = [this, wetGain, buildDelayMs] (uint32_t b, double r, uint32_t i, uint32_t o,
                                                      uint32_t s,
                                                      uint32_t f) -> std::shared_ptr<HVNAbstractDSP>
        {
            {
                std::lock_guard<std::mutex> lock (buildMutex);
                buildThreads.push_back (std::this_thread::get_id());
            }
            if (buildDelayMs > 0 && f > 0)
                std::this_thread::sleep_for (std::chrono::milliseconds (buildDelayMs));
            auto dsp = std::make_shared<ProbeDSP> (b, r, i, o, s, f, wetGain);
            ++buildsFinished;
            return dsp;
        };
        HVNPublicDSP::Clock clock;
        if (fakeClock != nullptr)
            clock = [fakeClock] { return *fakeClock; };
        dsp = std::make_unique<HVNPublicDSP> (blockSize, sampleRate, ins, outs, 0, startInHQ, factory, clock);
        dsp->dspSwapped.connect (&SignalCounter::onSwap, &counter);
        dsp->latencyChanged.connect (&SignalCounter::onLatency, &counter);
    }

    static float signal (long t)
    {
        return t < 0 ? 0.0f
                     : 0.5f * std::sin (0.013f * static_cast<float> (t)) +
                           0.25f * std::sin (0.0021f * static_cast<float> (t));
    }

    // Delivers the given parameter values (index, value) and runs one block.
    void run (std::initializer_list<std::pair<uint32_t, float>> parameters = {})
    {
        for (const auto& p : parameters)
            dsp->setParameter (p.first, p.second, false);
        for (uint32_t c = 0; c < in.channels(); ++c)
            for (uint32_t i = 0; i < block; ++i)
                in.channel (c)[i] = signal (t + i);
        dsp->process (in, out, sidechain, block, false);
        t += block;
    }

    // Output sample i of the last block against the input delayed by latency.
    float delayedInput (uint32_t i, uint32_t latency) const
    {
        return signal (t - block + i - static_cast<long> (latency));
    }

    uint32_t block;
    HVNAudioBuffer<float> in, out, sidechain;
    long t = 0;
    SignalCounter counter;
    std::mutex buildMutex;
    std::vector<std::thread::id> buildThreads;
    std::atomic<int> buildsFinished{0};
    std::unique_ptr<HVNPublicDSP> dsp;
};
