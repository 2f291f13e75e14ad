#include "dsp/HVNCrunch.h"

#include "toolkit/HVNSIMD.h"
#include "toolkit/vHVN.h"
#include "toolkit/vHVN_biquad.h"

#include <algorithm>
#include <cmath>

namespace
{
// Knee of the negative side, fixed once for all instances (two DSPs may meet
// it for the first time at once; a function-local static is safe for that).
struct Knee
{
    double db, low, high;
};

const Knee& knee()
{
    static const Knee k = []
    {
        Knee n{};
        n.db = 20.0 * std::log10 (0.00691184530326226) - 4.5;
        n.low = std::pow (10.0, n.db / 20.0);
        n.high = std::exp (0.5180816459236602) * n.low;
        return n;
    }();
    return k;
}

constexpr double negativeTop = 0.00670680953020802;
constexpr double negativeTopSlope = 0.94274951757942;
constexpr double negativeSlope = 0.955744302812075;
constexpr double positiveTop = 0.00859848465084853;
constexpr double positiveTopSlope = 0.960068541899088;
constexpr double positiveBottom = 0.00836467013735038;
constexpr double positiveBottomSlope = 0.950787138155376;

// The DC blocker: the toolkit's Butterworth high-pass of order 2, normalised.
HVNCrunch::Section butterworthHighpass (double sampleRate, double frequency)
{
    vHVN_biquad::RawSections sections (1);
    vHVN_biquad::designFilterSections (sections, sampleRate, frequency, 0.0, 0.7071067811865476, 2.0,
                                       vHVN_biquad::ButterworthHighpass);
    const auto& r = sections[0];
    return {r[0] / r[3], r[1] / r[3], r[2] / r[3], r[4] / r[3], r[5] / r[3]};
}

inline double curveAt (const Knee& k, double v, bool negative, double r)
{
    if (negative)
    {
        if (v >= negativeTop)
            return (v - negativeTop) * negativeTopSlope + negativeTop;
        if (v < -k.low)
        {
            if (-v >= k.high)
                return (v + k.low) * negativeSlope - k.low;
            // A cubic blend over the 4.5 dB between the knee's ends.
            const double t = (20.0 * std::log10 (-v) - k.db) * 0.2222222222222222;
            const double s = negativeSlope + 3.2 * r;
            return ((((0.13276709156377497 - s + 1.0) * 0.5 * t + (s + 1.91148860562415 - 3.0)) * t +
                     (negativeSlope - s) * 0.5) *
                        t +
                    1.0) *
                       (v + k.low) -
                   k.low;
        }
        return v;
    }
    if (v >= positiveTop)
        return (positiveTopSlope - r * 0.95) * (v - positiveTop) + positiveTop;
    if (v < -positiveBottom)
        return (v + positiveBottom) * positiveBottomSlope - positiveBottom;
    return v;
}

} // namespace

HVNCrunch::HVNCrunch (uint32_t block, double rate, uint32_t numChannels)
    : blockSize (block)
    , channels (numChannels)
    , crunchBlock (numChannels, block)
    , crunchGain (block)
    , preState (2 * std::max (numChannels, 1u))
    , postState (2 * std::max (numChannels, 1u))
    , dcState (2 * std::max (numChannels, 1u))
{
    knee();
    const double e = std::exp (-2.0 * M_PI * 22050.0 / rate);
    const double g = std::exp (-2.197241824989568);
    const double h = std::exp (0.5877348449867302);
    pre = {((1.0 + e) / 2.0 * (1.0 - g) + g) * h, (-(1.0 + e) / 2.0 * (1.0 - g) - g * e) * h, 0.0, -e, 0.0};
    post = {1.0 / pre.b0, -e / pre.b0, 0.0, pre.b1 / pre.b0, 0.0};
    dc = butterworthHighpass (rate, 16.0);
}

void HVNCrunch::reset()
{
    for (auto* s : {&preState, &postState, &dcState})
        std::fill (s->data(), s->data() + s->size(), 0.0);
}

double HVNCrunch::curve (double v, bool negative, double r)
{
    return curveAt (knee(), v, negative, r);
}

void HVNCrunch::process (HVNAudioBuffer<double>& block, uint32_t n, const HVNEasingFloat<double>& crunch,
                         const HVNEasingFloat<double>& mix)
{
    n = std::min (n, blockSize);
    if (n == 0)
        return;
    auto& simd = HVNSIMD::instance();

    const double* r = crunch.getBuffer();
    double* gain = crunchGain.data();
    // Makes up for the positive side's lost slope.
    vHVN_vMulAddC (r, -1.0, positiveTopSlope, gain, n);
    simd.vRecip (gain, gain, n);

    const Knee& k = knee();
    for (uint32_t c = 0; c < channels; ++c)
    {
        const double* dry = block.channel (c);
        double* x = crunchBlock.channel (c);
        // One pass through the whole path: the three recursions are independent
        // of each other, so consecutive samples overlap in the processor.
        double* zp = preState.data() + 2 * c;
        double* zq = postState.data() + 2 * c;
        double* zd = dcState.data() + 2 * c;
        double p1 = zp[0], q1 = zq[0], d1 = zd[0], d2 = zd[1];
        for (uint32_t i = 0; i < n; ++i)
        {
            const double in = dry[i];
            const double a = pre.b0 * in + p1;
            p1 = pre.b1 * in - pre.a1 * a;
            const double v = curveAt (k, a, in < 0.0, r[i]);
            const double b = post.b0 * v + q1;
            q1 = post.b1 * v - post.a1 * b;
            const double g = b * gain[i];
            const double y = dc.b0 * g + d1;
            d1 = dc.b1 * g - dc.a1 * y + d2;
            d2 = dc.b2 * g - dc.a2 * y;
            x[i] = y;
        }
        zp[0] = p1;
        zq[0] = q1;
        zd[0] = d1;
        zd[1] = d2;
        mix.crossfade (x, dry, block.channel (c), n);
    }
}
