#include "toolkit/HVNCPUFeatures.h"
#include "toolkit/HVNSIMD.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>

// The level table and the selection rules, on made-up processors.
namespace
{
struct FakeProcessor
{
    uint32_t highestLeaf = 13;
    uint32_t leaf1Ecx = 0, leaf1Edx = 0, leaf7Ebx = 0, leaf13Eax = 0;
    uint64_t xcr0 = 0;
};

FakeProcessor fake;

HVNCPUFeatures::Registers fakeCpuid (uint32_t leaf, uint32_t)
{
    HVNCPUFeatures::Registers r;
    if (leaf == 0)
        r.eax = fake.highestLeaf;
    else if (leaf == 1)
    {
        r.ecx = fake.leaf1Ecx;
        r.edx = fake.leaf1Edx;
    }
    else if (leaf == 7)
        r.ebx = fake.leaf7Ebx;
    else if (leaf == 13)
        r.eax = fake.leaf13Eax;
    return r;
}

bool xgetbvCalled = false;
uint64_t fakeXgetbv (uint32_t)
{
    xgetbvCalled = true;
    return fake.xcr0;
}

constexpr uint32_t bit (int i)
{
    return 1u << i;
}
constexpr uint32_t level1Edx = bit (0) | bit (15) | bit (23) | bit (24) | bit (25);

// A processor with everything up to and including the given level.
FakeProcessor processorAt (int level)
{
    FakeProcessor p;
    p.leaf1Edx = level >= 1 ? level1Edx : 0;
    if (level >= 2)
        p.leaf1Edx |= bit (26);
    if (level >= 3)
        p.leaf1Ecx |= bit (0);
    if (level >= 4)
        p.leaf1Ecx |= bit (9);
    if (level >= 5)
        p.leaf1Ecx |= bit (19);
    if (level >= 6)
        p.leaf1Ecx |= bit (20) | bit (23);
    if (level >= 7)
    {
        p.leaf1Ecx |= bit (27) | bit (28);
        p.xcr0 = 0x7;
    }
    if (level >= 8)
        p.leaf7Ebx |= bit (5);
    if (level >= 9)
        p.leaf13Eax |= bit (5) | bit (6);
    return p;
}

int levelOf (const FakeProcessor& p)
{
    fake = p;
    return HVNCPUFeatures::computeLevel (&fakeCpuid, &fakeXgetbv);
}
} // namespace

TEST (HVNCPUFeatures, EachLevelNeedsItsOwnBitsAndAllBelow)
{
    for (int level = 0; level <= 9; ++level)
        EXPECT_EQ (levelOf (processorAt (level)), level);
}

TEST (HVNCPUFeatures, TheFirstMissingFeatureEndsTheSearch)
{
    FakeProcessor p = processorAt (9);
    p.leaf1Ecx &= ~bit (9); // no SSSE3, everything above present
    EXPECT_EQ (levelOf (p), 3);

    p = processorAt (9);
    p.leaf1Edx &= ~bit (15); // no CMOV
    EXPECT_EQ (levelOf (p), 0);

    p = processorAt (9);
    p.leaf1Ecx &= ~bit (23); // SSE4.2 without POPCNT stays at 5
    EXPECT_EQ (levelOf (p), 5);

    p = processorAt (9);
    p.highestLeaf = 0;
    EXPECT_EQ (levelOf (p), 0);
}

TEST (HVNCPUFeatures, AVXNeedsTheOperatingSystemToSaveTheRegisters)
{
    FakeProcessor p = processorAt (9);
    p.xcr0 = 0x3; // YMM state not enabled
    EXPECT_EQ (levelOf (p), 6);

    p = processorAt (9);
    p.leaf1Ecx &= ~bit (27); // no OSXSAVE: XGETBV must not even run
    xgetbvCalled = false;
    EXPECT_EQ (levelOf (p), 6);
    EXPECT_FALSE (xgetbvCalled);

    p = processorAt (9);
    p.leaf13Eax = bit (5); // only one of the two AVX-512 state bits
    EXPECT_EQ (levelOf (p), 8);
}

TEST (HVNCPUFeatures, FMA3NeedsLevel7AndItsBit)
{
    FakeProcessor p = processorAt (8);
    p.leaf1Ecx |= bit (12);
    fake = p;
    EXPECT_TRUE (HVNCPUFeatures::computeFMA3 (8, &fakeCpuid));
    EXPECT_FALSE (HVNCPUFeatures::computeFMA3 (6, &fakeCpuid));
    p.leaf1Ecx &= ~bit (12);
    fake = p;
    EXPECT_FALSE (HVNCPUFeatures::computeFMA3 (8, &fakeCpuid));
}

TEST (HVNSIMDSelection, FollowsTheLevelAndFMA)
{
    using M = HVNSIMDMember;
    EXPECT_EQ (HVNSIMD::choose (9, true), M::avx2Fma);
    EXPECT_EQ (HVNSIMD::choose (8, true), M::avx2Fma);
    EXPECT_EQ (HVNSIMD::choose (8, false), M::avx); // AVX2 without FMA
    EXPECT_EQ (HVNSIMD::choose (7, true), M::avxFma);
    EXPECT_EQ (HVNSIMD::choose (7, false), M::avx);
    EXPECT_EQ (HVNSIMD::choose (6, false), M::sse41);
    EXPECT_EQ (HVNSIMD::choose (5, false), M::sse41);
    EXPECT_EQ (HVNSIMD::choose (4, false), M::sse3);
    EXPECT_EQ (HVNSIMD::choose (3, false), M::sse3);
    for (int level : {0, 1, 2})
    {
        try
        {
            HVNSIMD::choose (level, false);
            ADD_FAILURE() << "level " << level << " was accepted";
        }
        catch (const std::runtime_error& e)
        {
            EXPECT_STREQ (e.what(), "vHVN: CPU does not support SSE3");
        }
    }
}

TEST (HVNSIMDSelection, AForcedMemberMustBeOneTheProcessorRuns)
{
    using M = HVNSIMDMember;
    EXPECT_TRUE (HVNSIMD::canRun (M::sse3, 3, false));
    EXPECT_FALSE (HVNSIMD::canRun (M::sse41, 4, false));
    EXPECT_FALSE (HVNSIMD::canRun (M::avxFma, 7, false));
    EXPECT_TRUE (HVNSIMD::canRun (M::avx, 8, false));
    EXPECT_FALSE (HVNSIMD::canRun (M::avx2Fma, 7, true));
    HVNSIMDMember parsed;
    ASSERT_TRUE (HVNSIMD::parseName ("avxfma", parsed));
    EXPECT_EQ (parsed, M::avxFma);
    EXPECT_FALSE (HVNSIMD::parseName ("avx512", parsed));
}

TEST (HVNSIMDSelection, ThisProcessorGetsItsWidestMemberOnce)
{
    HVNSIMD& first = HVNSIMD::instance();
    EXPECT_EQ (&first, &HVNSIMD::instance());
    EXPECT_EQ (&first, HVNSIMD::member (HVNSIMD::selected()));
    EXPECT_EQ (HVNCPUFeatures::level(),
               HVNCPUFeatures::computeLevel (&HVNCPUFeatures::cpuid, &HVNCPUFeatures::xgetbv));
}

// The choice is made once per process, so these run in a fresh child each.
TEST (HVNSIMDSelection, EnvironmentCanNarrowTheChoiceButNotWidenIt)
{
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT (
        {
            setenv ("ZOLK_SIMD_MEMBER", "sse3", 1);
            std::exit (
                HVNSIMD::selected() == HVNSIMDMember::sse3 && HVNSIMD::instance().floatLanes() == 4 ? 0 : 1);
        },
        ::testing::ExitedWithCode (0), "");
    EXPECT_EXIT (
        {
            setenv ("ZOLK_SIMD_MEMBER", "avx512", 1);
            const HVNSIMDMember automatic =
                HVNSIMD::choose (HVNCPUFeatures::level(), HVNCPUFeatures::hasFMA3());
            std::exit (HVNSIMD::selected() == automatic ? 0 : 1);
        },
        ::testing::ExitedWithCode (0), "");
}
