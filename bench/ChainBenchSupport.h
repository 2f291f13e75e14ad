#pragma once

#include "dsp/HVNAbstractDSP.h"
#include "dsp/HVNParameterIndex.h"
#include "state/ParameterBounds.h"
#include "toolkit/HVNAudioBuffer.h"

#include <benchmark/benchmark.h>

#include <cmath>

// What the chain benchmarks share: factory settings, a steady programme and the
// per-frame figure.
namespace ChainBenchSupport
{
inline void setDefaults (HVNAbstractDSP& dsp)
{
    for (uint32_t p = 0; p < HVNParameterIndex::count; ++p)
        dsp.parameters[p].value = ParameterBounds::of (static_cast<ParameterId> (p)).defaultValue;
}

template<typename T>
void fill (HVNAudioBuffer<T>& buffer)
{
    for (uint32_t c = 0; c < buffer.channels(); ++c)
        for (uint32_t i = 0; i < buffer.frames(); ++i)
            buffer.channel (c)[i] = static_cast<T> (0.25 * std::sin (0.01 * static_cast<double> (i + 7 * c)));
}

// Reported in CPU time per stereo frame.
inline void perFrame (benchmark::State& state, uint32_t block)
{
    state.SetItemsProcessed (state.iterations() * block);
    state.counters["ns_per_frame"] =
        benchmark::Counter (static_cast<double> (state.iterations() * block),
                            benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
} // namespace ChainBenchSupport
