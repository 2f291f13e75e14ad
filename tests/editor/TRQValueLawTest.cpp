#include "editor/TRQValueLaw.h"

#include <gtest/gtest.h>

using namespace TRQValueLaw;

TEST (TRQValueLaw, ModifiersPickTheStepMode)
{
    using M = juce::ModifierKeys;
    EXPECT_EQ (stepModeFor (M()), 1);
    EXPECT_EQ (stepModeFor (M (M::shiftModifier)), 2);
    EXPECT_EQ (stepModeFor (M (M::ctrlModifier)), 0);
    // Mouse buttons don't count; a mix of keys is the normal mode.
    EXPECT_EQ (stepModeFor (M (M::ctrlModifier | M::leftButtonModifier)), 0);
    EXPECT_EQ (stepModeFor (M (M::ctrlModifier | M::shiftModifier)), 1);
    EXPECT_TRUE (modifiersAre (M (M::altModifier | M::rightButtonModifier), M::altModifier));
    EXPECT_FALSE (modifiersAre (M (M::altModifier | M::shiftModifier), M::altModifier));
}

TEST (TRQValueLaw, TypedTextReadsFractionsThousandsAndWords)
{
    EXPECT_FLOAT_EQ (*parseTypedValue ("1/4"), 0.25f);
    EXPECT_FLOAT_EQ (*parseTypedValue ("2k"), 2000.0f);
    EXPECT_FLOAT_EQ (*parseTypedValue ("1.5K"), 1500.0f);
    EXPECT_FLOAT_EQ (*parseTypedValue ("-6.5"), -6.5f);
    EXPECT_FLOAT_EQ (*parseTypedValue ("off"), 0.0f);
    // Three parts of a fraction read as a plain number.
    EXPECT_FLOAT_EQ (*parseTypedValue ("1/2/3"), 1.0f);
    EXPECT_FALSE (parseTypedValue ("").has_value());
}

TEST (TRQValueLaw, OnlyNumberCharactersMayBeTyped)
{
    for (auto ch : juce::String ("0123456789.-/ kKdDbBtTxX"))
        EXPECT_TRUE (acceptsTypedCharacter (ch)) << (char)ch;
    for (auto ch : juce::String ("aeq%+,=*"))
        EXPECT_FALSE (acceptsTypedCharacter (ch)) << (char)ch;
}

TEST (TRQValueLaw, StepsFollowTheModesGrid)
{
    // Input Gain: fine 0.1, normal 0.5, big 3 dB.
    EXPECT_FLOAT_EQ (stepSize (1, 0.0f, 0), 0.1f);
    EXPECT_FLOAT_EQ (stepSize (1, 0.0f, 1), 0.5f);
    EXPECT_FLOAT_EQ (stepSize (1, 0.0f, 2), 3.0f);
    EXPECT_NEAR (stepUpFrom (1, -6.0f, 1, false), -5.5f, 1e-5f);
    // Off the grid, a step lands on the next grid point first.
    EXPECT_NEAR (stepUpFrom (1, -5.5f, 2, false), -3.0f, 1e-5f);
    EXPECT_NEAR (stepDownFrom (1, -5.5f, 2, false), -6.0f, 1e-5f);
    EXPECT_NEAR (snapToStep (1, 1.26f, 0), 1.3f, 1e-5f);
}

TEST (TRQValueLaw, WrappingControlsGoRoundAtTheEnds)
{
    // Wow/Flutter Speed: 0, 1, 2.
    EXPECT_FLOAT_EQ (stepUpFrom (11, 2.0f, 1, true), 0.0f);
    EXPECT_FLOAT_EQ (stepDownFrom (11, 0.0f, 1, true), 2.0f);
    EXPECT_FLOAT_EQ (stepUpFrom (11, 1.0f, 1, true), 2.0f);
    // Without wrap the value runs past the end and the parameter clamps it.
    EXPECT_FLOAT_EQ (stepUpFrom (11, 2.0f, 1, false), 3.0f);
}
