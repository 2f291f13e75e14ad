#include "toolkit/HVNArray.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <new>
#include <stdexcept>

TEST (HVNArray, ConstructionClearsAndAligns)
{
    HVNArray<double> a (13);
    ASSERT_EQ (a.size(), 13u);
    EXPECT_EQ (reinterpret_cast<std::uintptr_t> (a.data()) % 32, 0u);
    for (uint32_t i = 0; i < a.size(); ++i)
        EXPECT_EQ (a[i], 0.0);
}

TEST (HVNArray, AllocateZeroThrowsAndKeepsTheBlock)
{
    HVNArray<float> a (4);
    float* before = a.data();
    EXPECT_THROW (a.allocate (0), std::bad_array_new_length);
    EXPECT_EQ (a.size(), 4u);
    EXPECT_EQ (a.data(), before);
}

TEST (HVNArray, AtChecksBounds)
{
    HVNArray<float> a (3);
    a.at (2) = 5.0f;
    EXPECT_EQ (a[2], 5.0f);
    try
    {
        a.at (3);
        FAIL() << "no exception";
    }
    catch (const std::out_of_range& e)
    {
        EXPECT_STREQ (e.what(), "HVNArray::at() : index is out of range");
    }
    HVNArray<float> empty;
    EXPECT_THROW (empty.at (0), std::out_of_range);
}

TEST (HVNArray, CopyReusesABlockOfTheSameSize)
{
    HVNArray<float> a (8), b (8), c (5);
    for (uint32_t i = 0; i < 8; ++i)
        a[i] = static_cast<float> (i);
    float* block = b.data();
    b = a;
    EXPECT_EQ (b.data(), block);
    EXPECT_EQ (b[7], 7.0f);

    c = a;
    EXPECT_EQ (c.size(), 8u);
    EXPECT_EQ (c[3], 3.0f);
    EXPECT_NE (c.data(), a.data());
}
