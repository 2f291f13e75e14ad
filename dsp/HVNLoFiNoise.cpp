#include "dsp/HVNLoFiNoise.h"

#include "toolkit/HVNSIMD.h"
#include "toolkit/HVNVec.h"
#include "toolkit/vHVN.h"

#include <juce_core/juce_core.h>

#include <algorithm>
#include <cmath>

namespace
{
// Harmonic number and level in dB of the hum's odd harmonics.
constexpr struct
{
    int harmonic;
    double levelDb;
} humHarmonics[] = {{1, -78.3}, {3, -81.0}, {5, -93.5}, {7, -94.8}, {9, -94.6}, {15, -95.4}, {21, -99.5}};
constexpr double humTrimDb = -16.0;
constexpr double mainsHz = 60.0;
// The lowest noise setting; the noise is never exactly silent.
constexpr double noiseOffDb = -96.0;
constexpr double noiseOffGain = 5.9604644775390625e-08; // 2^-24
// Every generator is its own linear congruential sequence.
constexpr int32_t generatorMultiplier = 69069;
constexpr int32_t generatorIncrement = static_cast<int32_t> (2147846086u);
// Seed of the generators: the same noise on every run, so renders repeat.
constexpr juce::int64 noiseSeed = 0x5a6f6c6b;
} // namespace

HVNLoFiNoise::HVNLoFiNoise (uint32_t block, double rate, uint32_t numChannels)
    : blockSize (block)
    , channels (numChannels)
    , humLength (static_cast<uint32_t> (std::max (1L, std::lround (rate / mainsHz))))
    , humTable (humLength)
    , hissScale (4.656612875245797e-10 *
                 std::pow (10.0, (20.0 * std::log10 (std::sqrt (rate / 44100.0)) - 90.0) / 20.0))
    , noiseState (2 * std::max (block, 1u), 0)
    , noiseBlock (block)
    , gainBlock (block)
    , hissPair (2, block)
{
    const double trim = std::pow (10.0, humTrimDb / 20.0);
    const double n = static_cast<double> (humLength);
    for (uint32_t i = 0; i < humLength; ++i)
    {
        double sum = 0.0;
        for (const auto& h : humHarmonics)
            sum += trim * std::pow (10.0, h.levelDb / 20.0) *
                   std::sin (2.0 * juce::MathConstants<double>::pi * h.harmonic * i / n);
        humTable[i] = sum;
    }

    juce::Random random (noiseSeed);
    for (uint32_t i = 0; i + 1 < 2 * block; ++i)
        noiseState[i] = random.nextInt() & 0x7fffffff;
    noiseState[2 * block - 1] = 0;
}

double HVNLoFiNoise::targetGain (double lofiAmount, double noiseGainDb)
{
    if (noiseGainDb == noiseOffDb)
        return noiseOffGain;
    return std::pow (10.0, (lofiAmount * 0.01 * 12.0 + noiseGainDb - 12.0) / 20.0);
}

void HVNLoFiNoise::process (HVNAudioBuffer<double>& block, uint32_t n,
                            const HVNEasingFloat<double>& noiseGain, const HVNEasingFloat<double>* refGain)
{
    n = std::min (n, blockSize);
    if (n == 0)
        return;
    auto& simd = HVNSIMD::instance();

    // The hum starts one sample past where the last block left it.
    humPosition = (humPosition + 1) % humLength;
    for (uint32_t done = 0; done < n;)
    {
        const uint32_t m = std::min (n - done, humLength - humPosition);
        HVNVec::copy (humTable.data() + humPosition, noiseBlock.data() + done, m);
        done += m;
        humPosition = (humPosition + m) % humLength;
    }

    double* gain = gainBlock.data();
    HVNVec::copy (noiseGain.getBuffer(), gain, n);
    if (refGain != nullptr)
    {
        if (refGain->isActive())
            vHVN_vMulInPlace (refGain->getBuffer(), gain, n);
        else if (refGain->getValue() != 1.0)
            vHVN_vMulC (gain, refGain->getValue(), gain, n);
    }

    vHVN_vMulInPlace (gain, noiseBlock.data(), n);
    for (uint32_t c = 0; c < channels; ++c)
        simd.vAddInPlace (noiseBlock.data(), block.channel (c), n);

    int32_t* state = noiseState.data();
    simd.vScalarMulInt (state, generatorMultiplier, state, 2 * n);
    simd.vScalarAddInt (state, generatorIncrement, state, 2 * n);

    double* a = hissPair.channel (0);
    double* b = hissPair.channel (1);
    for (uint32_t c = 0; c < channels; ++c)
    {
        if (c % 2 == 0)
        {
            vHVN_vIntToDouble (state, 2, a, n);
            vHVN_vIntToDouble (state + 1, 2, b, n);
        }
        else
        {
            vHVN_vIntToDouble (state, 1, a, n);
            vHVN_vIntToDouble (state + n, 1, b, n);
            vHVN_vFlip (b, n);
        }
        // Two uniform values make one of triangular density.
        simd.vAdd (a, b, a, n);
        simd.vScalarMul (a, hissScale, a, n);
        simd.vMulAdd (a, gain, block.channel (c), block.channel (c), n);
    }
}
