#include "dsp/HVNCompressor.h"

#include "dsp/HVNParameterIndex.h"
#include "dsp/generated/HVNCompressorTables.h"
#include "toolkit/HVNFastExp.h"
#include "toolkit/HVNSIMD.h"
#include "toolkit/HVNVec.h"
#include "toolkit/vHVN.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace
{
namespace Tables = HVNCompressorTables;
using namespace HVNParameterIndex;

constexpr uint32_t lastRow = Tables::rows - 1;
constexpr uint32_t lastColumn = Tables::gainColumns - 1;
constexpr uint32_t lastTime = Tables::timeColumns - 1;
// The 32-bit value of sqrt(1/2): the tilt shelves' slope.
constexpr double tiltSlope = static_cast<double> (0.70710677f);
constexpr double fullSwingPerSecond150ms = 6.6666666666666670;

template<bool Fused>
inline double mulAdd (double a, double b, double c)
{
    if constexpr (Fused)
        return __builtin_fma (a, b, c);
    else
        return a * b + c;
}

// exp(x) for the one-pole coefficients, whose exponent is nearly always tiny:
// there the series to x^6 is exact to the last bit (the first term left out
// stays below 1e-18), and it spares the full exp in the per-sample loop.
template<bool Fused>
inline double poleExp (double x)
{
    if (x > -0.0078125 && x < 0.0078125)
    {
        // Grouped by powers of x rather than nested: the terms are independent,
        // which shortens the recursion's critical path.
        const double x2 = x * x, x4 = x2 * x2;
        const double upper = mulAdd<Fused> (x2, 1.0 / 720.0, mulAdd<Fused> (x, 1.0 / 120.0, 1.0 / 24.0));
        return mulAdd<Fused> (x4, upper, mulAdd<Fused> (x2, mulAdd<Fused> (x, 1.0 / 6.0, 0.5), 1.0 + x));
    }
    return HVNFastExp::exp<Fused> (x);
}

// Where the chain of one result to the next runs; see computeGain.
struct Chain
{
    double* history;
    uint32_t window;
    double invW, recent, p, e, releaseLimit;
};

template<bool Fused, typename StepAt>
[[gnu::always_inline]] inline void runChain (const StepAt& stepAt, Chain& chain, uint32_t n)
{
    constexpr double noLimit = std::numeric_limits<double>::infinity();
    const double invW = chain.invW;
    double* hist = chain.history;
    double recent = chain.recent, p = chain.p, e = chain.e;
    auto step = stepAt (0);
    for (uint32_t i = 0; i < n; ++i)
    {
        const bool attacking = e >= 0.0;
        const double magnitude = std::fabs (e);
        const double magnitude2 = attacking ? magnitude : 0.75 * magnitude;
        const double goal1 = attacking ? e : 0.75 * e;
        const double goal2 = attacking ? e : 0.5625 * e;
        const double limit = attacking ? noLimit : chain.releaseLimit;
        const double u1 = std::min (
            mulAdd<Fused> (-magnitude, step.slope1, attacking ? step.attack1 : step.release1), limit);
        const double u2 = std::min (
            mulAdd<Fused> (-magnitude2, step.slope2, attacking ? step.attack2 : step.release2), limit);
        const double pole1 = poleExp<Fused> (-HVNFastExp::exp<Fused> (u1));
        const double pole2 = poleExp<Fused> (-HVNFastExp::exp<Fused> (u2));

        const double gr = step.gr, r = step.fraction;
        const double target1 = std::max (0.0, mulAdd<Fused> (step.share1, goal1, gr));
        const double target2 = std::max (0.0, mulAdd<Fused> (step.share2, goal2, gr));
        // y1 + (y2 - y1) r with y = pole (p - target) + target, arranged so that
        // the poles enter last.
        const double rest = mulAdd<Fused> (target2 - target1, r, target1);
        const double result =
            mulAdd<Fused> (pole1, (p - target1) * (1.0 - r), mulAdd<Fused> (pole2, (p - target2) * r, rest));

        if (i + 1 < n)
            step = stepAt (i + 1);
        const double old = hist[i];
        hist[chain.window + i] = result;
        // The next e without waiting for the mean to take in this result.
        e = mulAdd<Fused> (-invW, result, mulAdd<Fused> (invW, old, step.gr - recent));
        recent = mulAdd<Fused> (invW, result - old, recent);
        p = result;
    }
}

#if defined(__GNUC__) && (defined(__x86_64__) || defined(__i386__))
// The same chain for processors with FMA, where each a*b + c takes one step
// instead of two: the chain is latency, so that counts almost in full.
template<typename StepAt>
[[gnu::target ("fma"), gnu::flatten]] void runFusedChain (const StepAt& stepAt, Chain& chain, uint32_t n)
{
    runChain<true> (stepAt, chain, n);
}
constexpr bool canFuse = true;
#else
template<typename StepAt>
void runFusedChain (const StepAt& stepAt, Chain& chain, uint32_t n)
{
    runChain<false> (stepAt, chain, n);
}
constexpr bool canFuse = false;
#endif

void configure (HVNEasingFloat<double>& ease, double range, double ratePerSecond, double sampleRate)
{
    ease.setRange (range);
    ease.setRatePerSample (ratePerSecond / sampleRate);
}
} // namespace

void retarget (HVNEasingFloat<double>& ease, double target)
{
    // The sidechain's state is re-delivered every block; a ramp already on its
    // way to the same target keeps its course, so that the result stays the same
    // however the host cuts its blocks.
    if (!(ease.isEasing() && ease.getTarget() == target))
        ease.setTarget (target);
}

static_assert (HVNCompressor::timeColumns == Tables::timeColumns, "time rows and tables must agree");

uint32_t HVNCompressor::lookAheadFor (double sampleRate)
{
    return static_cast<uint32_t> (std::lround (24.0 * sampleRate / 88200.0));
}

uint32_t HVNCompressor::windowFor (double sampleRate)
{
    return static_cast<uint32_t> (std::lround (80.0 * sampleRate / 88200.0));
}

HVNCompressor::HVNCompressor (HVNAbstractDSP& o, HVNEasingFloat<double>& mix, HVNEasingFloat<double>& refGain)
    : owner (o)
    , mixEase (mix)
    , refGainEase (refGain)
    , numChannels (o.numOutputs)
    , blockSize (o.blockSize)
    , lookAhead (lookAheadFor (o.sampleRate))
    , window (std::max (windowFor (o.sampleRate), 1u))
    , timeFactor (1000.0 / (o.sampleRate * 640.0))
    , mainDelay (numChannels, lookAhead + blockSize, true)
    , detectDelay (numChannels, lookAhead + blockSize, true)
    , detectScratch (numChannels, lookAhead + blockSize)
    , gainBlock (numChannels, blockSize)
    , history (numChannels, window + blockSize)
    , levelBlock (blockSize)
    , thresholdBlock (blockSize)
    , makeupBlock (blockSize)
    , blockScratch (blockSize)
    , logScales (2, blockSize)
    , fusedChain (canFuse && HVNSIMD::selected() >= HVNSIMDMember::avxFma)
    , channelGainReduction (numChannels, 0.0f)
    , peak (lookAhead + blockSize)
    , tiltFilter (numChannels, blockSize, o.sampleRate, true)
    , tiltGainEase (blockSize, &o.sampleRate, &o.resetCallbacks)
    , sidechainBlendEase (blockSize, &o.sampleRate, &o.resetCallbacks)
    , amountEase (blockSize, &o.sampleRate, &o.resetCallbacks)
    , attackEase (blockSize, &o.sampleRate, &o.resetCallbacks)
    , releaseEase (blockSize, &o.sampleRate, &o.resetCallbacks)
{
    const double sr = o.sampleRate;
    configure (tiltGainEase, 1.0, fullSwingPerSecond150ms, sr);
    tiltGainEase.setInstant (1.0);
    configure (sidechainBlendEase, 1.0, 3.3333333333333335, sr);
    configure (attackEase, 4.0, 26.666666666666668, sr);
    configure (releaseEase, 4.0, 26.666666666666668, sr);
    configure (amountEase, 20.0, 66.666666666666671, sr);
    amountEase.setMinimum (0.0);
    amountEase.setMaximum (20.0);

    for (uint32_t r = 0; r < Tables::rows; ++r)
        gainRows[r] = Tables::gain[r];
    std::fill (std::begin (timeA), std::end (timeA), 0.0);
    std::fill (std::begin (timeB), std::end (timeB), 0.0);
    std::fill (std::begin (timeC), std::end (timeC), 0.0);
}

void HVNCompressor::useFusedChain (bool fused)
{
    fusedChain = fused && canFuse && HVNSIMD::selected() >= HVNSIMDMember::avxFma;
}

void HVNCompressor::reset()
{
    mainDelay.reset();
    detectDelay.reset();
    history.clear();
    tiltFilter.reset();
}

void HVNCompressor::updateParameters (const HVNSidechainState& sidechainState)
{
    const HVNAbstractDSP& dsp = owner;
    if (dsp.parameterChanged (CompressionAmount))
        amountEase.setTarget (dsp.parameterValue (CompressionAmount) / 5.0);
    if (dsp.parameterChanged (CompAttackTimeConstant))
        attackEase.setTarget (dsp.parameterValue (CompAttackTimeConstant));
    if (dsp.parameterChanged (CompReleaseTimeConstant))
        releaseEase.setTarget (dsp.parameterValue (CompReleaseTimeConstant));
    if (dsp.parameterChanged (CompStereoLink))
        stereoLink = dsp.numInputs == 1 ? dsp.numOutputs == 2 : dsp.parameterValue (CompStereoLink) != 0.0f;
    if (dsp.parameterChanged (SidechainExternal) || sidechainState.changed)
    {
        if (!sidechainState.active)
            sidechainBlendEase.setInstant (1.0);
        else
            retarget (sidechainBlendEase, 1.0 - dsp.parameterValue (SidechainExternal) * 0.01);
    }
    if (dsp.parameterChanged (SidechainTilt))
        setTilt (dsp.parameterValue (SidechainTilt));
}

void HVNCompressor::setTilt (double tiltPercent)
{
    const double t = -tiltPercent * 0.01 * 24.0;
    if (t == 0.0)
    {
        tiltFilter.clear();
        tiltGainEase.setTarget (1.0);
        return;
    }
    // Positive tilt takes the lows out of the detector and lifts the whole a
    // little; negative tilt adds lows and lowers the whole.
    const double frequency = t < 0.0 ? 150.0 : 60.0;
    const double targetDb = t < 0.0 ? t * -0.25 : t * -0.35;
    tiltFilter.setFilter (frequency, t, tiltSlope, 0.0, vHVN_biquad::LowShelf);

    // Every change of the tilt gain takes 150 ms, whatever its size.
    const double g = std::pow (10.0, targetDb / 20.0);
    const double range = std::abs (g - tiltGainEase.getValue());
    configure (tiltGainEase, range, range * fullSwingPerSecond150ms, owner.sampleRate);
    tiltGainEase.setTarget (g);
}

void HVNCompressor::buildDetector (HVNAudioBuffer<double>& main, HVNAudioBuffer<double>& sidechain,
                                   const HVNSidechainState& sidechainState, uint32_t n)
{
    mainDelay.write (main, 0, n);

    for (uint32_t c = 0; c < numChannels; ++c)
    {
        if (!sidechainState.active)
            HVNVec::copy (main.channel (c), sidechain.channel (c), n);
        else
            sidechainBlendEase.crossfade (main.channel (c), sidechain.channel (c), sidechain.channel (c), n);
        tiltFilter.process (c, sidechain.channel (c), n);
    }
    tiltGainEase.process (n);
    tiltGainEase.multiply (sidechain, n);

    if (owner.meterMessaging)
    {
        for (uint32_t c = 0; c < numChannels; ++c)
            HVNVec::copy (sidechain.channel (c), detectScratch.channel (c), n);
        refGainEase.divide (detectScratch, n);
        owner.meterMessaging->writeBuffer (3, detectScratch, n);
    }

    detectDelay.write (sidechain, 0, n);
}

void HVNCompressor::updateThresholdAndMakeup (uint32_t n)
{
    perSampleCurve = amountEase.isActive() || sidechainBlendEase.isActive();
    const double top = static_cast<double> (lastRow);
    if (!perSampleCurve)
    {
        const double a = std::clamp (amountEase.getValue(), 0.0, top);
        const uint32_t k = static_cast<uint32_t> (a);
        const uint32_t k2 = std::min (k + 1, lastRow);
        const double f = a - k;
        threshold = Tables::thresholdDb[k] + (Tables::thresholdDb[k2] - Tables::thresholdDb[k]) * f;
        const double m = Tables::makeupDb[k] + (Tables::makeupDb[k2] - Tables::makeupDb[k]) * f;
        const double makeupDb = std::max (0.0, 20.0 * std::log10 (sidechainBlendEase.getValue()) + m);
        makeup = std::exp (makeupDb * 0.11512925464970228);
        return;
    }
    const double* amount = amountEase.getBuffer();
    vHVN_vTableLookup (amount, 0.0, top, 0.0, top, Tables::thresholdDb, Tables::rows, thresholdBlock.data(),
                       n);
    vHVN_vTableLookup (amount, 0.0, top, 0.0, top, Tables::makeupDb, Tables::rows, makeupBlock.data(), n);
    vHVN_vLinToDb (sidechainBlendEase.getBuffer(), blockScratch.data(), n);
    HVNSIMD::instance().vAdd (blockScratch.data(), makeupBlock.data(), makeupBlock.data(), n);
    vHVN_vLowerBound (makeupBlock.data(), 0.0, makeupBlock.data(), n);
    vHVN_vDbToLin (makeupBlock.data(), makeupBlock.data(), n);
}

void HVNCompressor::rebuildTimeRows (double a)
{
    cachedAmount = a;
    cachedAmountValid = true;
    const double clamped = std::clamp (a, 0.0, static_cast<double> (lastRow));
    const uint32_t k = static_cast<uint32_t> (clamped);
    const uint32_t k2 = std::min (k + 1, lastRow);
    const double f = clamped - k;
    for (uint32_t i = 0; i < timeColumns; ++i)
    {
        timeA[i] = Tables::timeA[k][i] * (1.0 - f) + Tables::timeA[k2][i] * f;
        timeB[i] = Tables::timeB[k][i] * (1.0 - f) + Tables::timeB[k2][i] * f;
        timeC[i] = Tables::timeC[k][i] * (1.0 - f) + Tables::timeC[k2][i] * f;
    }
}

void HVNCompressor::prepareBlock (uint32_t n)
{
    const double* amount = amountEase.getBuffer();
    // While the amount moves only the entries a sample reads are interpolated;
    // at rest the rows are rebuilt once and read as they are.
    if (!amountEase.isActive() && (!cachedAmountValid || amount[0] != cachedAmount))
        rebuildTimeRows (amount[0]);

    // The time constants' scales as logarithms, so that each pole's exponent
    // takes one exp: timeFactor / (scale exp(z)) = exp(ln(timeFactor / scale) - z).
    const double logTimeFactor = std::log (timeFactor);
    const std::pair<const HVNEasingFloat<double>*, double*> scales[] = {
        {&attackEase, logScales.channel (0)}, {&releaseEase, logScales.channel (1)}};
    for (const auto& [ease, out] : scales)
    {
        if (ease->isActive())
        {
            vHVN_vLn (ease->getBuffer(), out, n);
            vHVN_vMulAddC (out, -1.0, logTimeFactor, out, n);
        }
        else
            vHVN_vFill (out, logTimeFactor - std::log (ease->getValue()), n);
    }
}

// Inlined: a call would put the step through memory in the middle of the chain.
[[gnu::always_inline]] inline HVNCompressor::Step HVNCompressor::stepAt (const double* level, uint32_t i,
                                                                         bool amountMoving) const
{
    const double L = level[i];
    const double T = perSampleCurve ? thresholdBlock[i] : threshold;
    const double a = amountEase.getBuffer()[i];

    double over = 0.0, gr = 0.0;
    if (L > T)
    {
        over = L - T;
        const double ac = std::clamp (a, 0.0, static_cast<double> (lastRow));
        const uint32_t k = static_cast<uint32_t> (ac);
        const double f = ac - k;
        const double o = std::clamp (over, 0.0, static_cast<double> (lastColumn));
        const uint32_t j = static_cast<uint32_t> (o);
        const uint32_t j1 = std::min (j + 1, lastColumn);
        const double h = o - j;
        const double* r0 = gainRows[k];
        const double* r1 = gainRows[std::min (k + 1, lastRow)];
        const double g0 = r0[j] + (r0[j1] - r0[j]) * h;
        const double g1 = r1[j] + (r1[j1] - r1[j]) * h;
        gr = g0 + (g1 - g0) * f;
    }

    double u = (-over - T) / 3.0;
    u = u < 22.0 ? u : 22.0;
    u = u > 0.0 ? u : 0.0;
    const double q = 22.0 - u;
    const uint32_t j = static_cast<uint32_t> (q);
    const uint32_t j2 = std::min (j + 1, lastTime);

    double a1, a2;
    Step step;
    if (amountMoving)
    {
        const double ac = std::clamp (a, 0.0, static_cast<double> (lastRow));
        const uint32_t k = static_cast<uint32_t> (ac);
        const uint32_t k2 = std::min (k + 1, lastRow);
        const double f = ac - k, g = 1.0 - f;
        a1 = Tables::timeA[k][j] * g + Tables::timeA[k2][j] * f;
        a2 = Tables::timeA[k][j2] * g + Tables::timeA[k2][j2] * f;
        step.slope1 = Tables::timeB[k][j] * g + Tables::timeB[k2][j] * f;
        step.slope2 = Tables::timeB[k][j2] * g + Tables::timeB[k2][j2] * f;
        step.share1 = Tables::timeC[k][j] * g + Tables::timeC[k2][j] * f;
        step.share2 = Tables::timeC[k][j2] * g + Tables::timeC[k2][j2] * f;
    }
    else
    {
        a1 = timeA[j], a2 = timeA[j2];
        step.slope1 = timeB[j], step.slope2 = timeB[j2];
        step.share1 = timeC[j], step.share2 = timeC[j2];
    }
    step.gr = gr;
    step.fraction = q - j;
    const double logAttack = logScales.channel (0)[i], logRelease = logScales.channel (1)[i];
    step.attack1 = logAttack - gr * a1;
    step.attack2 = logAttack - gr * a2;
    step.release1 = logRelease - gr * a1;
    step.release2 = logRelease - gr * a2;
    return step;
}

void HVNCompressor::computeGain (uint32_t channel, uint32_t n)
{
    auto& simd = HVNSIMD::instance();
    peak.process (detectScratch.channel (channel), lookAhead + 1, n);
    double* level = levelBlock.data();
    vHVN_vLinToDb (peak.getOutput(), level, n);
    prepareBlock (n);

    double* hist = history.channel (channel);
    double sum = 0.0;
    for (uint32_t i = 0; i < window; ++i)
        sum += hist[i];
    const double invW = 1.0 / window;
    const double p = hist[window - 1];

    // The chain from one result to the next is e, the distance of the wanted
    // reduction from the recent mean, then the two passes' poles and the blend.
    // Everything else of a sample hangs off that chain and overlaps it: the next
    // sample's step is worked out while this one's poles are on their way.
    // Two passes, at the level index's two neighbours: a release shrinks e by a
    // quarter after each pass's time constant, so the second pass's exponent
    // already sees 0.75 e and the goals 0.75 e and 0.5625 e.
    const bool amountMoving = amountEase.isActive();
    auto stepOf = [this, level, amountMoving] (uint32_t i) { return stepAt (level, i, amountMoving); };
    Chain chain{hist, window, invW, invW * sum, p, 0.0, std::log (timeFactor / 0.015)};
    chain.e = stepOf (0).gr - chain.recent;
    if (fusedChain)
        runFusedChain (stepOf, chain, n);
    else
        runChain<false> (stepOf, chain, n);

    if (amountEase.isActive())
        cachedAmountValid = false;

    double* gain = gainBlock.channel (channel);
    vHVN_vMulC (hist + window, -1.0, gain, n);
    // The newest `window` reductions become the front of the next block's history.
    HVNVec::move (hist + n, hist, window);

    double mean = 0.0;
    simd.vMean (gain, &mean, n);
    channelGainReduction[channel] = static_cast<float> (mixEase.getValue() * mean);

    vHVN_vDbToLin (gain, gain, n);
    if (perSampleCurve)
        simd.vMulInPlace (makeupBlock.data(), gain, n);
    else if (makeup != 1.0)
        vHVN_vMulC (gain, makeup, gain, n);

    if (mixEase.isActive())
    {
        vHVN_vLn (gain, gain, n);
        simd.vMulInPlace (mixEase.getBuffer(), gain, n);
        vHVN_vExp (gain, gain, n);
    }
    else if (mixEase.getValue() != 1.0)
    {
        vHVN_vPowC (gain, mixEase.getValue(), gain, n);
    }
}

void HVNCompressor::process (HVNAudioBuffer<double>& main, HVNAudioBuffer<double>& sidechain,
                             const HVNSidechainState& sidechainState, uint32_t n)
{
    updateParameters (sidechainState);
    sidechainBlendEase.process (n);
    amountEase.process (n);
    attackEase.process (n);
    releaseEase.process (n);

    buildDetector (main, sidechain, sidechainState, n);
    updateThresholdAndMakeup (n);

    // The detector from the delayed sample on, through the look-ahead's newest.
    const uint32_t detectStart = detectDelay.positionBeforeLastWrite (lookAhead);
    const uint32_t span = lookAhead + n;
    auto& simd = HVNSIMD::instance();
    float meanReduction = 0.0f;

    if (stereoLink)
    {
        const double* first = detectDelay.lane (0) + detectStart;
        if (numChannels == 1)
            simd.vAbs (first, detectScratch.channel (0), span);
        else
            simd.vMaxMag (first, detectDelay.lane (1) + detectStart, detectScratch.channel (0), span);
        computeGain (0, n);
        for (uint32_t c = 1; c < numChannels; ++c)
        {
            HVNVec::copy (gainBlock.channel (0), gainBlock.channel (c), n);
            HVNVec::copy (history.channel (0), history.channel (c), window);
        }
        meanReduction = channelGainReduction[0];
        owner.meterValues[0] = static_cast<float> (-meanReduction / meterRangeDb);
    }
    else
    {
        for (uint32_t c = 0; c < numChannels; ++c)
        {
            simd.vAbs (detectDelay.lane (c) + detectStart, detectScratch.channel (c), span);
            computeGain (c, n);
        }
        float total = 0.0f;
        for (uint32_t c = 0; c < numChannels; ++c)
            total += channelGainReduction[c];
        meanReduction = total / static_cast<float> (numChannels);
        // Unlinked the figure keeps its sign: hosts that show it clamp it at 0.
        owner.meterValues[0] = static_cast<float> (meanReduction / meterRangeDb);
    }
    if (owner.meterMessaging)
        owner.meterMessaging->writePoint (meanReduction);

    const uint32_t readStart = mainDelay.positionBeforeLastWrite (lookAhead);
    for (uint32_t c = 0; c < numChannels; ++c)
        simd.vMul (mainDelay.lane (c) + readStart, gainBlock.channel (c), main.channel (c), n);
}
