#include "toolkit/HVNMagnitudeDesigner.h"

#include "toolkit/HVNSIMD.h"
#include "toolkit/HVNVec.h"
#include "toolkit/vHVN.h"

namespace
{
uint32_t powerOfTwoAtLeast (uint32_t n)
{
    uint32_t p = 2;
    while (p < n)
        p <<= 1;
    return p;
}
} // namespace

HVNMagnitudeDesigner::HVNMagnitudeDesigner (uint32_t length, double rate, bool linear)
    : linearPhase (linear)
    , fftLength (powerOfTwoAtLeast (length))
    , binCount (fftLength / 2)
    , sampleRate (rate)
    , re (fftLength)
    , im (fftLength)
    , outRe (fftLength)
    , outIm (fftLength)
    , zeros (fftLength)
    , complexFFT (fftLength)
    , realFFT (fftLength)
{
}

void HVNMagnitudeDesigner::mirror (double* a) const
{
    // Bins 1..H-1 appear again, reversed, above H; the Nyquist bin repeats H-1.
    const uint32_t h = binCount;
    HVNVec::copy (a + 1, a + h + 1, h - 1);
    vHVN_vFlip (a + h + 1, h - 1);
    a[h] = a[h - 1];
}

void HVNMagnitudeDesigner::design (const double* input, double* output, bool inDecibels)
{
    if (linearPhase)
        designLinear (input, output, inDecibels);
    else
        designMinimum (input, output, inDecibels);
}

void HVNMagnitudeDesigner::designLinear (const double* input, double* output, bool inDecibels)
{
    const uint32_t h = binCount;
    if (inDecibels)
        vHVN_vDbToLin (input, re.data(), h);
    else
        HVNVec::copy (input, re.data(), h);
    mirror (re.data());

    complexFFT.inverseComplex (re.data(), zeros.data(), outRe.data(), outIm.data());
    // Swap the halves: the zero-phase peak moves from index 0 to the middle.
    HVNVec::copy (outRe.data() + h, output, h);
    HVNVec::copy (outRe.data(), output + h, h);
}

void HVNMagnitudeDesigner::designMinimum (const double* input, double* output, bool inDecibels)
{
    const uint32_t h = binCount, n = fftLength;
    auto& simd = HVNSIMD::instance();

    if (inDecibels)
        vHVN_vMulC (input, 0.11512925464970229, re.data(), h);
    else
        vHVN_vLn (input, re.data(), h);
    mirror (re.data());

    // Real cepstrum of the log magnitude.
    complexFFT.inverseComplex (re.data(), zeros.data(), outRe.data(), outIm.data());

    // Fold the anti-causal part onto the causal one; the Nyquist term goes.
    double* c = outRe.data();
    simd.vScalarMul (c + 1, 2.0, c + 1, h - 1);
    HVNVec::clear (c + h, n - h);

    complexFFT.forwardComplex (c, zeros.data(), re.data(), im.data());

    // exp of the complex log spectrum; the real inverse reads bins 0..H only.
    const uint32_t used = h + 1;
    vHVN_vExp (re.data(), outRe.data(), used);
    vHVN_vSinCos (im.data(), outIm.data(), re.data(), used);
    simd.vMulInPlace (outRe.data(), re.data(), used);
    simd.vMul (outRe.data(), outIm.data(), im.data(), used);

    // Packed form: the Nyquist value rides in im[0].
    im[0] = re[h];
    realFFT.inverseReal (re.data(), im.data(), output);
}
