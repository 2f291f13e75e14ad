#include "toolkit/vHVN.h"
#include "tests/toolkit/HVNSIMDTestSupport.h"
#include "toolkit/HVNVec.h"

#include <gtest/gtest.h>

#include <fftw3.h>
#include <thread>

namespace
{
using namespace hvn_test;

// Distance in units of the last place of the wanted value.
template<typename T>
double ulps (T got, T want)
{
    const T unit = std::nextafter (std::abs (want), std::numeric_limits<T>::infinity()) - std::abs (want);
    return std::abs (double (got) - double (want)) / double (unit);
}

std::vector<double> grid (uint32_t n, double low, double high)
{
    std::vector<double> v (n);
    for (uint32_t i = 0; i < n; ++i)
        v[i] = low + (high - low) * i / (n - 1);
    return v;
}
} // namespace

TEST (vHVN, TranscendentalsOfEveryMemberStayWithinTwoUlp)
{
    const uint32_t n = 1001; // odd, so that every member has a tail
    const auto db = grid (n, -120.0, 24.0), lin = grid (n, 1e-6, 16.0), angle = grid (n, -20.0, 20.0);
    std::vector<float> dbF (db.begin(), db.end());
    for (const auto& m : runnableMembers())
    {
        std::vector<double> out (n), cosOut (n);
        std::vector<float> outF (n);
        m.kernels->expScaledD (db.data(), 0.11512925464970228, out.data(), n);
        m.kernels->expScaledF (dbF.data(), 0.115129254758358f, outF.data(), n);
        for (uint32_t i = 0; i < n; ++i)
        {
            ASSERT_LE (ulps (out[i], std::exp (0.11512925464970228 * db[i])), 2.0) << m.name << " " << db[i];
            ASSERT_LE (ulps (outF[i], float (std::exp (double (0.115129254758358f * dbF[i])))), 2.0)
                << m.name;
        }
        m.kernels->lnScaledD (lin.data(), 1.0, out.data(), n);
        for (uint32_t i = 0; i < n; ++i)
            ASSERT_LE (ulps (out[i], std::log (lin[i])), 2.0) << m.name << " " << lin[i];
        m.kernels->sinCosD (angle.data(), out.data(), cosOut.data(), n);
        for (uint32_t i = 0; i < n; ++i)
        {
            ASSERT_NEAR (out[i], std::sin (angle[i]), 2e-16) << m.name;
            ASSERT_NEAR (cosOut[i], std::cos (angle[i]), 2e-16) << m.name;
        }
        m.kernels->sinD (angle.data(), cosOut.data(), n);
        EXPECT_EQ (out, cosOut) << "sin and the sine of sincos differ in " << m.name;
        m.kernels->sqrtD (lin.data(), out.data(), n);
        for (uint32_t i = 0; i < n; ++i)
            ASSERT_EQ (out[i], std::sqrt (lin[i])) << "square roots are correctly rounded";
    }
}

TEST (vHVN, DecibelConversionsRoundTrip)
{
    const std::vector<double> db = {-60.0, -6.0, 0.0, 6.0, 20.0};
    std::vector<double> lin (db.size()), back (db.size());
    vHVN_vDbToLin (db.data(), lin.data(), uint32_t (db.size()));
    vHVN_vLinToDb (lin.data(), back.data(), uint32_t (db.size()));
    EXPECT_DOUBLE_EQ (lin[2], 1.0);
    EXPECT_NEAR (lin[4], 10.0, 1e-12);
    for (size_t i = 0; i < db.size(); ++i)
        EXPECT_NEAR (back[i], db[i], 1e-12);

    const float dbF[3] = {-20.0f, 0.0f, 20.0f};
    float linF[3];
    vHVN_vDbToLin (dbF, linF, 3);
    EXPECT_NEAR (linF[0], 0.1f, 1e-7f);
    EXPECT_EQ (linF[1], 1.0f);
}

TEST (vHVN, SincIsOneAtZeroAndZeroAtIntegers)
{
    const double in[5] = {0.0, 1.0, -2.0, 0.5, 1e-300};
    double out[5];
    vHVN_vSinc (in, out, 5);
    EXPECT_EQ (out[0], 1.0);
    EXPECT_NEAR (out[1], 0.0, 1e-16);
    EXPECT_NEAR (out[2], 0.0, 1e-16);
    EXPECT_NEAR (out[3], 2.0 / M_PI, 1e-15);
    EXPECT_NEAR (out[4], 1.0, 1e-15);
}

TEST (vHVN, PowAndRunningForms)
{
    const double in[4] = {1.0, 4.0, 9.0, 0.25};
    double out[4];
    vHVN_vPowC (in, 0.5, out, 4);
    EXPECT_NEAR (out[1], 2.0, 1e-14);
    EXPECT_NEAR (out[3], 0.5, 1e-15);

    const double values[6] = {1, 5, 2, 7, 3, 0};
    double forward[6], backward[6], sums[6];
    vHVN_vRunningMax (values, forward, 6, false);
    vHVN_vRunningMax (values, backward, 6, true);
    vHVN_vRunningSum (values, 0.5, sums, 6);
    const double wantForward[6] = {1, 5, 5, 7, 7, 7}, wantBackward[6] = {7, 7, 7, 7, 3, 0};
    const double wantSums[6] = {0, 2.5, 3.5, 7, 8.5, 8.5};
    for (int i = 0; i < 6; ++i)
    {
        EXPECT_EQ (forward[i], wantForward[i]);
        EXPECT_EQ (backward[i], wantBackward[i]);
        EXPECT_EQ (sums[i], wantSums[i]);
    }
}

TEST (vHVN, PackedSpectrumMultipliesDCAndNyquistSeparately)
{
    // Element 0 holds two real values: DC in re, Nyquist in im.
    const float aRe[3] = {2, 1, 3}, aIm[3] = {5, 2, -1}, bRe[3] = {3, 4, 2}, bIm[3] = {7, -1, 1};
    float outRe[3] = {1, 1, 1}, outIm[3] = {10, 0, 0};
    vHVN_zMulAccPacked (aRe, aIm, bRe, bIm, outRe, outIm, 3);
    EXPECT_EQ (outRe[0], 1 + 2 * 3);
    EXPECT_EQ (outIm[0], 10 + 5 * 7);
    EXPECT_EQ (outRe[1], 1 + (1 * 4 - 2 * -1));
    EXPECT_EQ (outIm[1], 0 + (1 * -1 + 2 * 4));
    EXPECT_EQ (outRe[2], 1 + (3 * 2 - -1 * 1));
}

TEST (vHVN, ThresholdsLetNaNThrough)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float in[5] = {-2, 0.5, 3, nan, -0.25};
    float clipped[5], lower[5], upper[5];
    vHVN_vClip (in, -1.0f, 1.0f, clipped, 5);
    vHVN_vLowerBound (in, 0.0f, lower, 5);
    vHVN_vUpperBound (in, 0.0f, upper, 5);
    const float wantClipped[5] = {-1, 0.5, 1, nan, -0.25}, wantLower[5] = {0, 0.5, 3, nan, 0},
                wantUpper[5] = {-2, 0, 0, nan, -0.25};
    for (int i = 0; i < 5; ++i)
    {
        if (i == 3)
        {
            EXPECT_TRUE (std::isnan (clipped[i]) && std::isnan (lower[i]) && std::isnan (upper[i]));
            continue;
        }
        EXPECT_EQ (clipped[i], wantClipped[i]);
        EXPECT_EQ (lower[i], wantLower[i]);
        EXPECT_EQ (upper[i], wantUpper[i]);
    }
}

TEST (vHVN, LinearMapsAndRamps)
{
    const float in[3] = {0.0f, 5.0f, 10.0f};
    float out[3];
    vHVN_vRemap (in, 0.0f, 10.0f, -1.0f, 1.0f, out, 3);
    EXPECT_FLOAT_EQ (out[0], -1.0f);
    EXPECT_NEAR (out[1], 0.0f, 1e-6f);
    EXPECT_FLOAT_EQ (out[2], 1.0f);
    vHVN_vOneMinus (in, out, 3);
    EXPECT_EQ (out[1], -4.0f);

    const float a[2] = {1, 2}, b[2] = {3, 5};
    vHVN_vBlend (a, b, 0.25f, out, 2);
    EXPECT_FLOAT_EQ (out[0], 0.25f * 1 + 0.75f * 3);

    std::vector<float> ramp (37);
    std::vector<double> rampD (37);
    vHVN_vRamp (1.0f, 0.5f, ramp.data(), 37);
    vHVN_vRamp (-2.0, 0.25, rampD.data(), 37);
    for (uint32_t i = 0; i < 37; ++i)
    {
        EXPECT_EQ (ramp[i], 1.0f + float (i) * 0.5f);
        EXPECT_EQ (rampD[i], -2.0 + double (i) * 0.25);
    }

    const double table[3] = {0.0, 10.0, 20.0}, x[3] = {100.0, 150.0, 300.0};
    double looked[3];
    vHVN_vTableLookup (x, 100.0, 200.0, 0.0, 2.0, table, 3, looked, 3);
    EXPECT_NEAR (looked[0], 0.0, 1e-12);
    EXPECT_NEAR (looked[1], 10.0, 1e-12);
    EXPECT_DOUBLE_EQ (looked[2], 20.0);
}

TEST (vHVN, StridedCopiesAndBlockHelpers)
{
    const int32_t ints[9] = {0, 1, 2, 3, 4, 5, 6, 7, 8};
    int32_t gathered[3];
    double asDouble[3];
    vHVN_vGather (ints, 3, gathered, 3);
    vHVN_vIntToDouble (ints, 4, asDouble, 3);
    EXPECT_EQ (gathered[2], 6);
    EXPECT_EQ (asDouble[2], 8.0);
    const double src[4] = {1, 2, 3, 4};
    double dst[8] = {};
    vHVN_vCopyStrided (src, 2, dst, 3, 2);
    EXPECT_EQ (dst[0], 1.0);
    EXPECT_EQ (dst[3], 3.0);

    for (uint32_t n : {0u, 1u, 2u, 7u, 8u})
    {
        std::vector<double> v (n);
        for (uint32_t i = 0; i < n; ++i)
            v[i] = double (i) - 3.5;
        auto reversed = v;
        vHVN_vFlip (reversed.data(), n);
        for (uint32_t i = 0; i < n; ++i)
            EXPECT_EQ (reversed[i], v[n - 1 - i]);
        EXPECT_EQ (vHVN_vNormInf (v.data(), n), n == 0 ? 0.0 : std::max (3.5, std::abs (double (n) - 4.5)));
    }

    const double re[2] = {3, -5}, im[2] = {4, 12};
    double magnitude[2];
    vHVN_vMagnitude (re, im, magnitude, 2);
    EXPECT_EQ (magnitude[0], 5.0);
    EXPECT_EQ (magnitude[1], 13.0);
}

TEST (HVNVec, ConversionsAreExactWhereTheTypeAllows)
{
    for (const auto& m : runnableMembers())
        for (uint32_t n : testCounts())
        {
            Guarded<double> wide (n, 1), back (n, 0);
            Guarded<float> narrow (n, 1);
            for (uint32_t i = 0; i < n; ++i)
                wide[i] = (double (i) - 20.0) / 3.0;
            m.kernels->convertDF (wide.data(), narrow.data(), n);
            m.kernels->convertFD (narrow.data(), back.data(), n);
            ASSERT_TRUE (narrow.guardsIntact() && back.guardsIntact()) << m.name;
            for (uint32_t i = 0; i < n; ++i)
            {
                ASSERT_EQ (narrow[i], float (wide[i]));
                ASSERT_EQ (back[i], double (narrow[i]));
            }
        }
}

TEST (HVNVec, StartMakesTheTransformPlannerSafeForTwoThreads)
{
    EXPECT_GE (HVNVec::start(), 0);
    EXPECT_GE (HVNVec::start(), 0);

    // Planning and destroying on two threads at once corrupts FFTW's planner
    // unless the start-up routine ran.
    auto planMany = [] (int size)
    {
        for (int i = 0; i < 40; ++i)
        {
            float* in = fftwf_alloc_real (size_t (size));
            fftwf_complex* out = fftwf_alloc_complex (size_t (size / 2 + 1));
            fftwf_plan p = fftwf_plan_dft_r2c_1d (size, in, out, FFTW_ESTIMATE);
            fftwf_destroy_plan (p);
            fftwf_free (in);
            fftwf_free (out);
            double* inD = fftw_alloc_real (size_t (size));
            fftw_complex* outD = fftw_alloc_complex (size_t (size / 2 + 1));
            fftw_plan q = fftw_plan_dft_r2c_1d (size, inD, outD, FFTW_ESTIMATE);
            fftw_destroy_plan (q);
            fftw_free (inD);
            fftw_free (outD);
        }
    };
    std::thread a (planMany, 512), b (planMany, 1024);
    a.join();
    b.join();
    SUCCEED();
}
