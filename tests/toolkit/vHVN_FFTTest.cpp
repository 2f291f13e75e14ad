#include "toolkit/vHVN_FFT.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <random>
#include <stdexcept>
#include <vector>

namespace
{
using namespace vHVN_FFT;

template<typename T>
std::vector<T> noise (uint32_t n, unsigned seed)
{
    std::mt19937 gen (seed);
    std::uniform_real_distribution<double> d (-1.0, 1.0);
    std::vector<T> v (n);
    for (auto& x : v)
        x = static_cast<T> (d (gen));
    return v;
}

std::vector<std::complex<double>> naiveDft (const std::vector<std::complex<double>>& x, int sign)
{
    const size_t n = x.size();
    std::vector<std::complex<double>> out (n);
    for (size_t k = 0; k < n; ++k)
        for (size_t t = 0; t < n; ++t)
            out[k] += x[t] * std::polar (1.0, sign * 2.0 * M_PI * double ((k * t) % n) / double (n));
    return out;
}

template<typename T>
class RealFFT : public ::testing::Test
{
};
using Precisions = ::testing::Types<float, double>;
TYPED_TEST_SUITE (RealFFT, Precisions);
} // namespace

TEST (vHVN_FFT, LengthMustBeAPowerOfTwo)
{
    for (uint32_t bad : {0u, 3u, 100u, 257u})
    {
        try
        {
            FFTData<0, float> f (bad);
            FAIL() << bad;
        }
        catch (const std::runtime_error& e)
        {
            EXPECT_STREQ (e.what(), "vHVN_FFT: FFT length is not a power of two");
        }
    }
    EXPECT_THROW ((FFTData<1, double> (100)), std::runtime_error);
    FFTData<0, double> f (256);
    EXPECT_EQ (f.getOrder(), 8u);
    EXPECT_EQ (f.getLength(), 256u);
}

TYPED_TEST (RealFFT, UnitImpulseGivesOnesWithNyquistInImagZero)
{
    using T = TypeParam;
    FFTData<0, T> fft (64);
    std::vector<T> in (64, T (0)), re (32), im (32), packed (64);
    in[0] = 1;
    fft.forwardSplit (in.data(), re.data(), im.data());
    for (uint32_t k = 0; k < 32; ++k)
    {
        EXPECT_EQ (re[k], T (1)) << k;
        EXPECT_EQ (im[k], k == 0 ? T (1) : T (0)) << k;
    }
    fft.forwardReal (in.data(), packed.data());
    std::vector<T> re2 (32), im2 (32);
    FFTData<0, T>::splitPacked (packed.data(), re2.data(), im2.data(), 64);
    EXPECT_EQ (re, re2);
    EXPECT_EQ (im, im2);
}

TYPED_TEST (RealFFT, MatchesNaiveDftAndInvertsWithScalingOnlyInTheInverse)
{
    using T = TypeParam;
    const double tolerance = sizeof (T) == 4 ? 2e-5 : 1e-12;
    for (uint32_t n : {2u, 8u, 64u, 256u, 1024u})
    {
        FFTData<0, T> fft (n);
        const auto x = noise<T> (n, n);
        std::vector<std::complex<double>> xc (x.begin(), x.end());
        const auto want = naiveDft (xc, -1);

        std::vector<T> re (n / 2), im (n / 2), back (n);
        fft.forwardSplit (x.data(), re.data(), im.data());
        const double scale = std::sqrt (double (n));
        EXPECT_NEAR (re[0], want[0].real(), tolerance * scale) << n;
        EXPECT_NEAR (im[0], want[n / 2].real(), tolerance * scale) << n;
        for (uint32_t k = 1; k < n / 2; ++k)
        {
            ASSERT_NEAR (re[k], want[k].real(), tolerance * scale) << n << " bin " << k;
            ASSERT_NEAR (im[k], want[k].imag(), tolerance * scale) << n << " bin " << k;
        }

        const auto reCopy = re, imCopy = im;
        fft.inverseReal (re.data(), im.data(), back.data());
        EXPECT_EQ (re, reCopy) << "the inverse must leave its input alone";
        EXPECT_EQ (im, imCopy);
        for (uint32_t i = 0; i < n; ++i)
            ASSERT_NEAR (back[i], x[i], tolerance) << n << " sample " << i;
    }
}

TEST (vHVN_FFT, ComplexMatchesNaiveDftBothWays)
{
    for (uint32_t n : {4u, 32u, 512u})
    {
        FFTData<1, double> fft (n);
        const auto re = noise<double> (n, 1), im = noise<double> (n, 2);
        std::vector<std::complex<double>> x (n);
        for (uint32_t i = 0; i < n; ++i)
            x[i] = {re[i], im[i]};
        const auto forward = naiveDft (x, -1);
        const auto backward = naiveDft (x, 1);

        std::vector<double> oRe (n), oIm (n);
        fft.forwardComplex (re.data(), im.data(), oRe.data(), oIm.data());
        for (uint32_t k = 0; k < n; ++k)
        {
            ASSERT_NEAR (oRe[k], forward[k].real(), 1e-11);
            ASSERT_NEAR (oIm[k], forward[k].imag(), 1e-11);
        }
        fft.inverseComplex (re.data(), im.data(), oRe.data(), oIm.data());
        for (uint32_t k = 0; k < n; ++k)
        {
            ASSERT_NEAR (oRe[k], backward[k].real() / n, 1e-13);
            ASSERT_NEAR (oIm[k], backward[k].imag() / n, 1e-13);
        }
    }
}
