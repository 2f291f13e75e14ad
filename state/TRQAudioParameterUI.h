#pragma once

#include <atomic>
#include <cstdint>

// The side of a parameter that the DSP polls: a changed flag and the normalised value.
class TRQAudioParameterUI
{
public:
    virtual ~TRQAudioParameterUI();

    // Takes the changed flag; if it was set, writes the normalised value to out and
    // returns true. Lock-free, for the audio thread.
    virtual bool getIfChanged (float& out);

    virtual float getValue() const = 0;

protected:
    // Set after the value is stored, so that a reader who sees the flag sees the value.
    void markChanged() noexcept { changedFlag.store (1, std::memory_order_release); }

    std::atomic<std::uint8_t> changedFlag{0};
};
