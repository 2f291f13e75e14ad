#pragma once

#include "toolkit/HVNBiquadChain.h"

#include <cstdint>
#include <memory>
#include <vector>

// One HVNBiquadChain per channel, all of them following the same design.
class HVNBiquadBank
{
public:
    HVNBiquadBank (uint32_t numChannels, uint32_t blockSize, double sampleRate, bool smooth);

    // Designs once into the first chain and hands the normalised result to all.
    // Audio thread, at the head of a block: does not allocate.
    void setFilter (double frequency, double gainDb, double q, double order, uint32_t type);
    // Every chain becomes a pass-through.
    void clear();
    void reset();
    void process (uint32_t channel, double* samples, uint32_t n) { chains[channel]->process (samples, n); }

    uint32_t size() const { return static_cast<uint32_t> (chains.size()); }
    HVNBiquadChain& chain (uint32_t channel) { return *chains[channel]; }

private:
    std::vector<std::unique_ptr<HVNBiquadChain>> chains;
    double sampleRate;
    double normalised[10] = {};
};
