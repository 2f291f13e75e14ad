#include "dsp/HVNAnalogResponse.h"

#include "dsp/generated/HVNLoFiTables.h"
#include "toolkit/HVNSIMD.h"
#include "toolkit/HVNVec.h"
#include "toolkit/vHVN.h"

#include <algorithm>
#include <cmath>

namespace
{
// The tables' grid: 8192 steps up to 96 kHz.
constexpr double tableTopHz = 96000.0;
constexpr double tableTopIndex = 8192.0;
// The 50 % curve is read only this far below half the amount.
constexpr uint32_t responseAShort = 1713;
// Lifts the base curve so that it passes 1 kHz at about 0 dB.
constexpr double baseOffsetDb = 1.32;
} // namespace

uint32_t HVNAnalogResponse::filterSizeFor (double rate)
{
    const double octaves = std::max (std::log2 (rate / 48000.0), 0.0);
    return 512u * std::max (1u, 1u << static_cast<uint32_t> (std::ceil (octaves)));
}

HVNAnalogResponse::HVNAnalogResponse (uint32_t block, double rate, uint32_t channels)
    : filterSize (filterSizeFor (rate))
    , binCount (filterSize / 2)
    , frequencies (binCount)
    , baseResponse (binCount)
    , amountResponse (binCount)
    , response (binCount)
    , scratch (binCount)
{
    filter.init (block, rate, channels, filterSize, false, 1.0);
    filter.getFrequencies (frequencies.data());
}

void HVNAnalogResponse::lookup (const double* table, uint32_t entries, double* out)
{
    vHVN_vTableLookup (frequencies.data(), 0.0, tableTopHz, 0.0, tableTopIndex, table, entries, out,
                       binCount);
}

void HVNAnalogResponse::update (bool amountChanged, double lofiAmount, bool mixChanged, double masterMix)
{
    auto& simd = HVNSIMD::instance();
    if (amountChanged)
    {
        const double d = lofiAmount * 0.01;
        double* a = amountResponse.data();
        if (d <= 0.0)
            HVNVec::clear (a, binCount);
        else if (d <= 0.5)
        {
            lookup (HVNLoFiTables::responseA, responseAShort, a);
            simd.vScalarMul (a, 2.0 * d, a, binCount);
        }
        else
        {
            const double u = (d - 0.5) * 2.0;
            lookup (HVNLoFiTables::responseB, HVNLoFiTables::responseBSize, scratch.data());
            lookup (HVNLoFiTables::responseA, HVNLoFiTables::responseASize, a);
            simd.vScalarMix (scratch.data(), u, a, 1.0 - u, a, binCount);
        }
    }

    if (!baseResponseReady)
    {
        lookup (HVNLoFiTables::responseBase, HVNLoFiTables::responseBaseSize, baseResponse.data());
        vHVN_vAddC (baseResponse.data(), baseOffsetDb, baseResponse.data(), binCount);
        baseResponseReady = true;
    }
    else if (!amountChanged && !mixChanged)
        return;

    simd.vAdd (amountResponse.data(), baseResponse.data(), response.data(), binCount);
    simd.vScalarMul (response.data(), masterMix * 0.01, response.data(), binCount);
    filter.setMagnitudes (response.data());
}

void HVNAnalogResponse::process (HVNAudioBuffer<double>& block, uint32_t n)
{
    filter.process (block, n);
}

void HVNAnalogResponse::reset()
{
    filter.reset();
}
