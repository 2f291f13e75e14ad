#include "editor/TRQEditorSize.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace TRQEditorSize;

TEST (TRQEditorSize, HundredPercentIsTheCanvas)
{
    const auto closed = compute (1.0f, false, 1.0f, 100);
    EXPECT_EQ (closed.width, 457);
    EXPECT_EQ (closed.height, 380);
    EXPECT_FLOAT_EQ (closed.uiScaleFactor, 1.0f);
    const auto open = compute (1.0f, true, 1.0f, 100);
    EXPECT_EQ (open.width, 793);
    EXPECT_EQ (open.height, 380);
}

TEST (TRQEditorSize, ScalesFloorAndKeepTheAspect)
{
    const auto s = compute (1.4f, true, 1.0f, 100);
    EXPECT_EQ (s.width, 1110);
    EXPECT_EQ (s.height, (int)std::floor (1110.0f / 793.0f * 380.0f));
    // The host's scale multiplies in, but the canvas transform leaves it out.
    const auto hosted = compute (1.0f, false, 2.0f, 100);
    EXPECT_EQ (hosted.width, 914);
    EXPECT_FLOAT_EQ (hosted.uiScaleFactor, 1.0f);
}

TEST (TRQEditorSize, TheWrapperMinimumWidthHolds)
{
    const auto s = compute (0.5f, false, 1.0f, 453);
    EXPECT_EQ (s.width, 453);
    EXPECT_EQ (s.height, (int)std::floor (453.0f / 457.0f * 380.0f));
    EXPECT_EQ (compute (-1.0f, false, 1.0f, 100).width, 100);
}

TEST (TRQEditorSize, DraggingTinyStopsAtEightyPercent)
{
    EXPECT_EQ (percentForWidth (10, true, 1.0f), 80);
    EXPECT_EQ (percentForWidth (793, true, 1.0f), 100);
    EXPECT_EQ (percentForWidth (914, false, 1.0f), 200);
    EXPECT_EQ (percentForWidth (914, false, 2.0f), 100);
}
