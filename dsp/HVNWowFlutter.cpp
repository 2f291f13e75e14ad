#include "dsp/HVNWowFlutter.h"

#include "dsp/HVNParameterIndex.h"
#include "toolkit/HVNSIMD.h"
#include "toolkit/HVNVec.h"
#include "toolkit/vHVN.h"

#include <algorithm>
#include <cmath>

namespace
{
using namespace HVNParameterIndex;

// Turns per second of 33 1/3, 45 and 78 RPM, as the parameter's steps.
constexpr float speeds[] = {0.5555556f, 0.75f, 1.3f};
constexpr uint32_t changeList[] = {WowFlutterPhase, WowFlutterSpeed, WowFlutterAmount, WowFlutterMix,
                                   MasterMix};
// Oldest tap of the six-point read lies two samples before the read position.
constexpr double interpolatorReach = 3.0;

void configure (HVNEasingFloat<double>& ease, double ratePerSecond, double sampleRate)
{
    ease.setRange (1.0);
    ease.setRatePerSample (ratePerSecond / sampleRate);
}
} // namespace

double HVNWowFlutter::speedFor (float index)
{
    for (int i = 0; i < 3; ++i)
        if (index == static_cast<float> (i))
            return speeds[i];
    return 0.0;
}

uint32_t HVNWowFlutter::capacityFor (uint32_t blockSize, double sr)
{
    // Twice the depth at one turn per second leaves room for the slowest speed.
    return blockSize + 4 + static_cast<uint32_t> (std::ceil (2.0 * sr * 13.8 / (1.0 * 1000.0))) +
           static_cast<uint32_t> (std::ceil (2.0 * sr * 2.14 / (18.0 * 1000.0)));
}

HVNWowFlutter::HVNWowFlutter (HVNAbstractDSP& o)
    : wowSpeedEase (o.blockSize, &o.sampleRate, &o.resetCallbacks)
    , wowPhaseEase (o.blockSize, &o.sampleRate, &o.resetCallbacks)
    , wowAmountEase (o.blockSize, &o.sampleRate, &o.resetCallbacks)
    , wowMixEase (o.blockSize, &o.sampleRate, &o.resetCallbacks)
    , owner (o)
    , numChannels (o.numOutputs)
    , sampleRate (o.sampleRate)
    , fixedDelay (o.upsampleFactor < 2 ? 4u : 2u)
    , wowDelay (numChannels, capacityFor (o.blockSize, o.sampleRate), true)
    , oscillatorBlock (numChannels, o.blockSize)
    , offsetBlock (numChannels, o.blockSize)
    , pair (2, o.blockSize)
    , dryBlock (numChannels, o.blockSize)
    , speedFloor (o.blockSize)
    , scratch (o.blockSize)
{
    configure (wowSpeedEase, 1.0, sampleRate);
    configure (wowPhaseEase, 1.0, sampleRate);
    configure (wowAmountEase, 1.0, sampleRate);
    configure (wowMixEase, 6.6666666666666670, sampleRate);
    // A turntable at standstill would ask for an endless delay: start at the
    // slowest speed, which the first block's target then moves from.
    wowSpeedEase.setInstant (speedFor (0.0f));

    // The read position never leaves the line, whatever the easings do on the way.
    maxOffset = static_cast<double> (wowDelay.capacity() - o.blockSize - fixedDelay) - interpolatorReach;
}

void HVNWowFlutter::reset()
{
    wowDelay.reset();
}

void HVNWowFlutter::resetPhases()
{
    wow.phase = 0.0;
    flutter.phase = 0.0;
}

void HVNWowFlutter::updateParameters()
{
    const HVNAbstractDSP& dsp = owner;
    bool any = false;
    for (uint32_t index : changeList)
        any = any || dsp.parameterChanged (index);
    if (!any)
        return;
    if (dsp.parameterChanged (WowFlutterSpeed))
        wowSpeedEase.setTarget (speedFor (dsp.parameterValue (WowFlutterSpeed)));
    if (dsp.parameterChanged (WowFlutterAmount) || dsp.parameterChanged (MasterMix))
        wowAmountEase.setTarget (static_cast<double> (dsp.parameterValue (WowFlutterAmount)) * 0.01 *
                                 static_cast<double> (dsp.parameterValue (MasterMix)) * 0.01);
    if (dsp.parameterChanged (WowFlutterPhase))
        wowPhaseEase.setTarget (dsp.parameterValue (WowFlutterPhase) / 360.0);
    if (dsp.parameterChanged (WowFlutterMix))
        wowMixEase.setTarget (dsp.parameterValue (WowFlutterMix) * 0.01);
}

void HVNWowFlutter::shape (double* p, uint32_t n)
{
    auto& simd = HVNSIMD::instance();
    double* u = pair.channel (0);
    double* s = pair.channel (1);
    // t: a triangle from 0 at p = 0 to 0.5 at p = 0.5.
    simd.vTriangle (p, 0.5, 1.0, p, n);
    // u: 8t^2 on the first half of the rise, 2(1 - 2t)^2 on the second.
    simd.vTriangle (p, std::sqrt (8.0) * 0.25, 2.0, u, n);
    simd.vSquareInPlace (u, n);
    // s: 0 up to t = 0.25, 1 above.
    vHVN_vLimit (p, 0.25, 0.5, s, n);
    vHVN_vAddC (s, 0.5, s, n);
    // y = s (1 - 2u) + u: two parabolic arcs joined at 0.5.
    vHVN_vMulAddC (u, -2.0, 1.0, p, n);
    simd.vMulAdd (s, p, u, p, n);
}

void HVNWowFlutter::runOscillator (Oscillator& osc, bool add, uint32_t n)
{
    auto& simd = HVNSIMD::instance();
    const double inc = osc.rate / sampleRate;
    const double* speed = wowSpeedEase.getBuffer();

    double* first = oscillatorBlock.channel (0);
    vHVN_vRunningSum (speed, inc, first, n);
    vHVN_vAddC (first, osc.phase + inc * speed[0], first, n);
    simd.vFrac (first, first, n);
    osc.phase = first[n - 1];

    const bool ownPhases = wowPhaseEase.isActive() || wowPhaseEase.getValue() != 0.0;
    const uint32_t shaped = ownPhases ? numChannels : 1;
    for (uint32_t c = 1; c < shaped; ++c)
    {
        double* phase = oscillatorBlock.channel (c);
        if (wowPhaseEase.isActive())
            simd.vAdd (oscillatorBlock.channel (c - 1), wowPhaseEase.getBuffer(), phase, n);
        else
            vHVN_vAddC (oscillatorBlock.channel (c - 1), wowPhaseEase.getValue(), phase, n);
        simd.vFrac (phase, phase, n);
    }

    const double scale = osc.depth * sampleRate / (osc.rate * 1000.0);
    for (uint32_t c = 0; c < shaped; ++c)
    {
        double* y = oscillatorBlock.channel (c);
        shape (y, n);
        if (wowAmountEase.isActive())
            simd.vMulInPlace (wowAmountEase.getBuffer(), y, n);
        else if (wowAmountEase.getValue() != 1.0)
            vHVN_vMulC (y, wowAmountEase.getValue(), y, n);
        if (wowSpeedEase.isActive())
        {
            vHVN_vMulC (y, scale, y, n);
            simd.vDiv (y, speedFloor.data(), y, n);
        }
        else
            vHVN_vMulC (y, scale / speedFloor[0], y, n);
    }

    for (uint32_t c = 0; c < numChannels; ++c)
    {
        const double* y = oscillatorBlock.channel (ownPhases ? c : 0);
        if (add)
            simd.vAddInPlace (y, offsetBlock.channel (c), n);
        else
            HVNVec::copy (y, offsetBlock.channel (c), n);
    }
}

void HVNWowFlutter::interpolate (const double* d, const double* offsets, double base, double* out, uint32_t n)
{
    // Read positions relative to each sample; the kernel takes their whole parts
    // and fractions and runs the six-point quintic over several samples at once.
    auto& simd = HVNSIMD::instance();
    double* positions = pair.channel (0);
    double* fill = pair.channel (1);
    vHVN_vFill (fill, base, n);
    simd.vSub (fill, offsets, positions, n);
    HVNSIMD::kernels().quinticReadD (d, positions, out, n);
}

void HVNWowFlutter::process (HVNAudioBuffer<double>& main, uint32_t n)
{
    auto& simd = HVNSIMD::instance();
    wowDelay.write (main, 0, n);

    updateParameters();
    wowSpeedEase.process (n);
    wowPhaseEase.process (n);
    wowAmountEase.process (n);
    wowMixEase.process (n);

    // The whole ring is one contiguous span; the block's first new sample sits
    // at `held`, and an unmodulated read lies fixedDelay before it.
    const uint32_t capacity = wowDelay.capacity();
    const uint32_t held = capacity - n;
    const uint32_t start = wowDelay.positionBeforeLastWrite (held);
    const uint32_t base = held - fixedDelay;

    const bool silentAmount = !wowAmountEase.isActive() && wowAmountEase.getValue() == 0.0;
    const bool silentMix = !wowMixEase.isActive() && wowMixEase.getValue() == 0.0;
    if (silentAmount || silentMix)
    {
        for (uint32_t c = 0; c < numChannels; ++c)
            HVNVec::copy (wowDelay.lane (c) + start + base, main.channel (c), n);
        return;
    }

    vHVN_vLowerBound (wowSpeedEase.getBuffer(), 0.001, speedFloor.data(), n);
    runOscillator (wow, false, n);
    runOscillator (flutter, true, n);

    for (uint32_t c = 0; c < numChannels; ++c)
    {
        const double* line = wowDelay.lane (c) + start;
        double* offsets = offsetBlock.channel (c);
        vHVN_vUpperBound (offsets, maxOffset, offsets, n);
        if (fixedDelay == 4)
        {
            interpolate (line, offsets, static_cast<double> (base), main.channel (c), n);
        }
        else
        {
            double* positions = pair.channel (0);
            vHVN_vRamp (static_cast<double> (base), 1.0, positions, n);
            simd.vSub (positions, offsets, positions, n);
            simd.vTableLookup (positions, 1.0, 0.0, line, capacity, main.channel (c), n);
        }
        // Fully wet at rest, the usual case, needs no dry copy.
        if (wowMixEase.isActive() || wowMixEase.getValue() != 1.0)
        {
            HVNVec::copy (line + base, dryBlock.channel (c), n);
            wowMixEase.crossfadeEqualPower (scratch.data(), main.channel (c), dryBlock.channel (c),
                                            main.channel (c), n);
        }
    }
}
