#pragma once

#include "toolkit/HVNAudioBuffer.h"
#include "toolkit/HVNEasingFloat.h"

#include <cstdint>
#include <memory>
#include <random>

namespace lofi_test
{
// An easing settled on a value, its buffer filled for n samples.
inline std::unique_ptr<HVNEasingFloat<double>> settled (double value, uint32_t n, double rate = 48000.0)
{
    auto e = std::make_unique<HVNEasingFloat<double>> (n, &rate);
    e->setInstant (value);
    e->process (n);
    return e;
}

inline void fillNoise (HVNAudioBuffer<double>& b, uint32_t n, double level, unsigned seed)
{
    std::mt19937 gen (seed);
    std::uniform_real_distribution<double> d (-level, level);
    for (uint32_t c = 0; c < b.channels(); ++c)
        for (uint32_t i = 0; i < n; ++i)
            b.channel (c)[i] = d (gen);
}
} // namespace lofi_test
