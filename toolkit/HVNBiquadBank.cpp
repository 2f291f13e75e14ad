#include "toolkit/HVNBiquadBank.h"

#include <algorithm>

HVNBiquadBank::HVNBiquadBank (uint32_t numChannels, uint32_t blockSize, double rate, bool smooth)
    : sampleRate (rate)
{
    chains.reserve (numChannels);
    for (uint32_t c = 0; c < numChannels; ++c)
        chains.push_back (std::make_unique<HVNBiquadChain> (blockSize, rate, smooth));
}

void HVNBiquadBank::setFilter (double frequency, double gainDb, double q, double order, uint32_t type)
{
    if (chains.empty())
        return;
    auto& raw = chains[0]->getRawSections();
    // A chain holds one section (two for the order-4 crossovers' halves); the
    // raw list was sized for that at construction, so design never grows it.
    const uint32_t count = std::min<uint32_t> (
        vHVN_biquad::designFilterSections (raw, sampleRate, frequency, gainDb, q, order, type), 1u);
    for (uint32_t s = 0; s < count; ++s)
    {
        const auto& r = raw[s];
        normalised[5 * s] = r[0] / r[3];
        normalised[5 * s + 1] = r[1] / r[3];
        normalised[5 * s + 2] = r[2] / r[3];
        normalised[5 * s + 3] = r[4] / r[3];
        normalised[5 * s + 4] = r[5] / r[3];
    }
    for (auto& chain : chains)
        chain->setDesigned (count, normalised);
}

void HVNBiquadBank::clear()
{
    for (auto& chain : chains)
        chain->clear();
}

void HVNBiquadBank::reset()
{
    for (auto& chain : chains)
        chain->reset();
}
