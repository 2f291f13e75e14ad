#include "state/ParameterText.h"
#include "state/ParameterRange.h"

#include <gtest/gtest.h>

#include <cmath>
#include <regex>

TEST (ParameterText, NumbersFollowTheRowFormat)
{
    EXPECT_EQ (valueToText (1, -6.5f, false), "-6.5");
    EXPECT_EQ (unitText (1, -6.5f), "dB");
    EXPECT_EQ (valueToText (2, 50.0f, false), "50");
    EXPECT_EQ (valueToText (7, 0.9f, false), "0.9");
    EXPECT_EQ (unitText (7, 0.9f), "x");
    EXPECT_EQ (unitText (12, 90.0f), "\xc2\xb0");
    EXPECT_EQ (unitText (11, 1.0f), "");
}

TEST (ParameterText, SpecialValuesMatchWithinATolerance)
{
    EXPECT_EQ (valueToText (13, -95.995f, false), "Off");
    EXPECT_TRUE (isSpecialValue (13, -95.995f));
    EXPECT_EQ (valueToText (13, -95.9f, false), "-95.9");
    EXPECT_EQ (unitText (13, -95.9f), "dB");
    EXPECT_FALSE (isSpecialValue (20, 0.0f));
}

TEST (ParameterText, SwitchesShowTheirStates)
{
    EXPECT_EQ (valueToText (14, 1.0f, false), "1990's Digital");
    EXPECT_EQ (valueToText (0, 0.0f, true), "Off");
    EXPECT_EQ (valueToText (0, 1.0f, false), "On");
    EXPECT_EQ (valueToText (14, 1.9f, false), "1990's Digital") << "the state is the value cut to an integer";
    EXPECT_THROW (valueToText (14, 3.0f, false), std::out_of_range);
    EXPECT_EQ (valueToText (9, -0.5f, false), "Off");
    EXPECT_THROW (valueToText (9, -1.0f, false), std::out_of_range);
    EXPECT_THROW (valueToText (9, NAN, false), std::out_of_range);
    EXPECT_THROW (valueToText (kNumParameters, 0.0f, false), std::out_of_range);
}

TEST (ParameterText, TypedValueScreen)
{
    const std::regex screen (kTypedValuePattern);
    for (const char* ok : {"-12.5", "-12.5 dB", "3x", "1/2", " 7 "})
        EXPECT_TRUE (std::regex_match (ok, screen)) << ok;
    for (const char* refused : {"", "12 %", "abc", "1e3", "4 kHz"})
        EXPECT_FALSE (std::regex_match (refused, screen)) << refused;
}
