#include "toolkit/HVNSRC.h"

#include "toolkit/HVNSIMD.h"
#include "toolkit/HVNVec.h"
#include "toolkit/vHVN.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <stdexcept>
#include <vector>

namespace
{
constexpr double lowestRate = 8000.0;
constexpr double highestRate = 1536000.0;

// Branches and the decimator are padded with zero taps to this many, so that the
// kernels never fall into their scalar tails. The padded taps read a few samples
// past the history, which the ring holds as room behind its capacity.
constexpr uint32_t padding = 8;

uint32_t roundUpToPadding (uint32_t n)
{
    return (n + padding - 1) / padding * padding;
}

int64_t floorDiv (int64_t a, int64_t b)
{
    const int64_t q = a / b;
    return (a % b != 0 && (a < 0) != (b < 0)) ? q - 1 : q;
}

int64_t ceilDiv (int64_t a, int64_t b)
{
    return -floorDiv (-a, b);
}

// Zeroth-order modified Bessel function of the first kind, by its power series.
double besselI0 (double x)
{
    double sum = 1.0, term = 1.0;
    for (int j = 1; j <= 32; ++j)
    {
        term *= (x * 0.5) / j;
        sum += term * term;
    }
    return sum;
}

// Kaiser window of length n, symmetric about its centre.
void kaiserWindow (double beta, double* out, uint32_t n)
{
    const double span = static_cast<double> (n - 1);
    const double scale = 1.0 / besselI0 (beta);
    for (uint32_t k = 0; k < n; ++k)
    {
        const double x = static_cast<double> (k);
        const double r = std::sqrt (std::max (0.0, span * x - x * x));
        out[k] = besselI0 (2.0 * beta / span * r) * scale;
    }
}
} // namespace

HVNSRC::HVNSRC (double source, uint32_t maxSource, double dest, uint32_t numChannels)
{
    setup (source, maxSource, dest, numChannels);
}

HVNSRC::~HVNSRC() = default;

int HVNSRC::setup (double source, uint32_t& maxSource, double dest, uint32_t numChannels)
{
    if (mSetupSuccess)
        throw std::runtime_error ("HVNSRC: can't call setup twice");
    if (!(source >= lowestRate && source < highestRate + 1.0))
        throw std::runtime_error ("HVNSRC: source Sr is out of bounds");
    if (!(dest >= lowestRate && dest < highestRate + 1.0))
        throw std::runtime_error ("HVNSRC: dest Sr is out of bounds");

    channels = numChannels;
    sourceRate = std::floor (source);
    destRate = std::floor (dest);
    maxSourceLength = maxSource;

    const double r = destRate / sourceRate;
    if (r == 1.0)
    {
        mode = 0;
        ratio = 1.0;
        maxDestLength = maxSourceLength;
        mSetupSuccess = true;
        return 0;
    }

    mode = r > 1.0 ? 1 : 2;
    ratio = r > 1.0 ? r : 1.0 / r;
    // Of two whole rates, the ratio is whole exactly when one divides the other.
    const auto a = static_cast<uint32_t> (sourceRate), b = static_cast<uint32_t> (destRate);
    fractional = std::max (a, b) % std::min (a, b) != 0;
    if (fractional)
    {
        gcd = std::gcd (a, b);
        up = b / gcd;
        down = a / gcd;
        lcm = static_cast<uint32_t> (static_cast<uint64_t> (a) * b / gcd);
    }
    else if (mode == 1)
    {
        up = static_cast<uint32_t> (ratio);
        down = 1;
    }
    else
    {
        up = 1;
        down = static_cast<uint32_t> (ratio);
    }

    design();

    const uint32_t extra = fractional ? static_cast<uint32_t> (std::ceil (ratio)) : 0u;
    uint32_t ringCapacity = 0;
    if (mode == 2 && !fractional)
    {
        maxDestLength = (maxSourceLength + down - 1) / down;
        historyLength = filterLength - 1;
        paddedLength = roundUpToPadding (filterLength);
        ringCapacity = maxSourceLength + historyLength + down + paddedLength;
    }
    else
    {
        maxDestLength = mode == 1 ? static_cast<uint32_t> (maxSourceLength * ratio) + extra
                                  : static_cast<uint32_t> (std::ceil ((maxSourceLength + extra) / ratio));
        historyLength = (filterLength - 1 + up - 1) / up;
        layOutBranches();
        ringCapacity = maxSourceLength + historyLength + paddedLength + padding;
    }

    mSourceCirc = std::make_unique<HVNCircularBuffer<float>> (channels, ringCapacity, false);
    branchOut = HVNAudioBuffer<float> (2, maxDestLength / up + 4);
    reset();
    mSetupSuccess = true;
    return 0;
}

void HVNSRC::design()
{
    const double m = std::min (sourceRate, destRate);
    const double passband = m >= 44100.0 ? std::max (0.8, 40000.0 / m) : 0.93;
    attenuationDb = 126.0 + (minimumPhase != 0 ? 12.0 : 0.0);
    const double reference = fractional ? static_cast<double> (std::max (up, down)) : ratio;
    const double order = std::max (1.0, (attenuationDb - ratio * 6.0 - 7.95) / 14.36);
    cutoff = (passband + 1.08) * (1.0 / reference) * 0.5;
    const double transition = (1.0 / reference) * 1.08 - cutoff;
    const double branches = 2.0 * (fractional ? down : std::trunc (ratio));
    filterLength = static_cast<uint32_t> (std::ceil ((order / transition) / branches) * branches) + 1;
    beta = (attenuationDb - 8.7) * 0.1102;

    const uint32_t n = filterLength;
    std::vector<double> h (n), window (n);
    vHVN_vRamp (-static_cast<double> (n / 2), 1.0, h.data(), n);
    vHVN_vMulC (h.data(), cutoff, h.data(), n);
    vHVN_vSinc (h.data(), h.data(), n);
    vHVN_vMulC (h.data(), cutoff, h.data(), n);
    kaiserWindow (beta, window.data(), n);
    vHVN_vMulInPlace (window.data(), h.data(), n);
    // The minimum-phase form is never asked for here; the filter stays linear-phase.
    vHVN_vFlip (h.data(), n);

    // Zeros behind the filter let the decimator run whole vectors.
    taps = HVNArray<float> (roundUpToPadding (n));
    HVNVec::convert (h.data(), taps.data(), n);
}

void HVNSRC::layOutBranches()
{
    // The branch of phase p holds taps p, p + up, p + 2 up, ... times up, which
    // gives back the gain that spreading the source over up slots took away.
    paddedLength = roundUpToPadding ((filterLength + up - 1) / up);
    phaseTaps = HVNArray<float> (up * paddedLength);
    std::vector<float> row (paddedLength);
    for (uint32_t phase = 0; phase < up; ++phase)
    {
        const uint32_t count = (filterLength - phase + up - 1) / up;
        std::fill (row.begin(), row.end(), 0.0f);
        vHVN_vGather (reinterpret_cast<const int32_t*> (taps.data() + phase), up,
                      reinterpret_cast<int32_t*> (row.data()), count);
        vHVN_vMulC (row.data(), static_cast<float> (up), phaseTaps.data() + phase * paddedLength,
                    paddedLength);
    }
}

double HVNSRC::getLatency() const
{
    if (!mSetupSuccess || minimumPhase != 0 || mode == 0)
        return 0.0;
    const double half = (filterLength - 1) * 0.5;
    if (fractional)
        return half / down;
    return mode == 1 ? half : half / ratio;
}

void HVNSRC::reset()
{
    sourceConsumed = 0;
    destProduced = 0;
    if (!mSourceCirc)
        return;
    mSourceCirc->reset();
    mSourceCirc->writeSilence (historyLength);
}

void HVNSRC::processSrc (const HVNAudioBuffer<float>& source, uint32_t sourceLength,
                         HVNAudioBuffer<float>& dest, uint32_t& destLength, uint32_t maxDest)
{
    if (!mSetupSuccess)
        throw std::runtime_error ("HVNSRC: mSetupSuccess != true");
    if (sourceLength > maxSourceLength)
        throw std::runtime_error ("HVNSRC: sourceLength is too big");

    const uint32_t limit = std::min (maxDest, dest.frames());
    if (mode == 0)
    {
        if (sourceLength > limit)
            throw std::runtime_error ("HVNSRC: processSrc(), destLength too big");
        for (uint32_t c = 0; c < std::min ({channels, source.channels(), dest.channels()}); ++c)
            if (dest.channel (c) != nullptr)
                HVNVec::copy (source.channel (c), dest.channel (c), sourceLength);
        destLength = sourceLength;
        return;
    }

    HVNCircularBuffer<float>& ring = *mSourceCirc;
    if (source.channels() < channels || sourceLength > ring.freeSpace())
        throw std::runtime_error ("HVNSRC: processSrc(), mSourceCirc not enough free space");
    if (outputsAfter (ring.fill() + sourceLength) > std::min (limit, maxDestLength))
        throw std::runtime_error ("HVNSRC: processSrc(), destLength too big");

    ring.write (source, 0, sourceLength);
    destLength = (mode == 2 && !fractional) ? runDecimator (dest) : runBranches (dest);
}

uint32_t HVNSRC::outputsAfter (uint32_t fill) const
{
    if (mode == 2 && !fractional)
        return fill >= filterLength ? (fill - filterLength) / down + 1 : 0;
    // Output j stands at j*down on the common grid and needs the source up to
    // floor(j*down/up): it becomes computable with the sample that reaches it.
    const int64_t received = sourceConsumed - historyLength + fill;
    return static_cast<uint32_t> (ceilDiv (received * up, down) - destProduced);
}

uint32_t HVNSRC::runBranches (HVNAudioBuffer<float>& dest)
{
    HVNCircularBuffer<float>& ring = *mSourceCirc;
    const int64_t base = sourceConsumed - historyLength; // stream index at the read position
    const int64_t q = destProduced;
    const int64_t span = static_cast<int64_t> (filterLength) - 1;
    const uint32_t outs = outputsAfter (ring.fill());

    auto& simd = HVNSIMD::instance();
    const uint32_t stride = dest.channels();
    float* unused = branchOut.channel (1);
    const uint32_t firstBranches = std::min (outs, up);
    for (uint32_t b = 0; b < firstBranches; ++b)
    {
        const int64_t j = q + b;
        const auto phase = static_cast<uint32_t> (span - floorDiv (span - down * j, up) * up - down * j);
        const int64_t first = (down * j + phase - span) / up;
        const auto offset = static_cast<uint32_t> (first - base) + ring.getReadPosition();
        const float* row = phaseTaps.data() + phase * paddedLength;
        const uint32_t count = (outs - b + up - 1) / up;
        const uint32_t grouped = count & ~3u;

        for (uint32_t c = 0; c < channels; c += 2)
        {
            const bool twin = c + 1 < channels;
            const float* xa = ring.lane (c) + offset;
            const float* xb = ring.lane (twin ? c + 1 : c) + offset;
            float* outA = c < stride && dest.channel (c) != nullptr ? dest.channel (c) : nullptr;
            float* outB =
                twin && c + 1 < stride && dest.channel (c + 1) != nullptr ? dest.channel (c + 1) : nullptr;

            if (grouped != 0)
            {
                float* tempA = branchOut.channel (0);
                float* tempB = branchOut.channel (1);
                if (twin)
                    simd.vDecimateTwin (xa, xb, down, row, paddedLength, tempA, tempB, grouped);
                else
                    simd.vDecimate (xa, down, row, paddedLength, tempA, grouped);
                for (uint32_t k = 0; k < grouped; ++k)
                {
                    if (outA != nullptr)
                        outA[b + k * up] = tempA[k];
                    if (twin && outB != nullptr)
                        outB[b + k * up] = tempB[k];
                }
            }
            for (uint32_t k = grouped; k < count; ++k)
            {
                const size_t at = static_cast<size_t> (k) * down;
                float ya = 0.0f, yb = 0.0f;
                if (twin)
                    simd.vDotTwin (xa + at, xb + at, row, &ya, &yb, paddedLength);
                else
                    simd.vDot (xa + at, row, &ya, paddedLength);
                (outA != nullptr ? outA : unused)[b + k * up] = ya;
                if (twin && outB != nullptr)
                    outB[b + k * up] = yb;
            }
        }
    }

    destProduced = q + outs;
    const int64_t keepFrom = ceilDiv (down * destProduced - span, up);
    const auto drop = static_cast<uint32_t> (std::clamp<int64_t> (keepFrom - base, 0, ring.fill()));
    ring.advanceRead (drop);
    sourceConsumed += drop;

    // down * destRate == up * sourceRate: falling back by whole seconds keeps
    // every phase and offset as it was.
    if (destProduced >= static_cast<int64_t> (destRate))
    {
        const int64_t seconds = destProduced / static_cast<int64_t> (destRate);
        destProduced -= seconds * static_cast<int64_t> (destRate);
        sourceConsumed -= seconds * static_cast<int64_t> (sourceRate);
    }
    return outs;
}

uint32_t HVNSRC::runDecimator (HVNAudioBuffer<float>& dest)
{
    HVNCircularBuffer<float>& ring = *mSourceCirc;
    const uint32_t outs = outputsAfter (ring.fill());
    if (outs == 0)
        return 0;

    auto& simd = HVNSIMD::instance();
    const uint32_t read = ring.getReadPosition();
    const uint32_t stride = dest.channels();
    for (uint32_t c = 0; c < channels; c += 2)
    {
        const bool twin = c + 1 < channels;
        // A channel the caller has no room for still costs nothing but its scratch.
        float* outA = c < stride && dest.channel (c) != nullptr ? dest.channel (c) : nullptr;
        float* outB =
            twin && c + 1 < stride && dest.channel (c + 1) != nullptr ? dest.channel (c + 1) : nullptr;
        if (outA == nullptr && outB == nullptr)
            continue;
        if (twin && outA != nullptr && outB != nullptr)
            simd.vDecimateTwin (ring.lane (c) + read, ring.lane (c + 1) + read, down, taps.data(),
                                paddedLength, outA, outB, outs);
        else if (outA != nullptr)
            simd.vDecimate (ring.lane (c) + read, down, taps.data(), paddedLength, outA, outs);
        else
            simd.vDecimate (ring.lane (c + 1) + read, down, taps.data(), paddedLength, outB, outs);
    }

    ring.advanceRead (outs * down);
    destProduced += outs;
    sourceConsumed += static_cast<int64_t> (outs) * down;
    if (destProduced >= static_cast<int64_t> (destRate))
    {
        destProduced %= static_cast<int64_t> (destRate);
        sourceConsumed %= static_cast<int64_t> (sourceRate);
    }
    return outs;
}

uint32_t HVNSRC::process (const HVNAudioBuffer<float>& source, uint32_t sourceLength,
                          HVNAudioBuffer<float>& dest)
{
    uint32_t produced = 0;
    processSrc (source, sourceLength, dest, produced, dest.frames());
    return produced;
}
