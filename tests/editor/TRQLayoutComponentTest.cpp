#include "editor/TRQLayoutComponent.h"

#include <gtest/gtest.h>

TEST (TRQLayoutComponent, StyleAndLanguageReplaceTheListsAtOnce)
{
    TRQLayoutComponent layout;
    layout.setBounds (0, 0, 793, 380);
    EXPECT_EQ (layout.backgroundList().elements.size(), 14u);
    EXPECT_EQ (layout.headingList().elements.size(), 9u);

    const auto englishHeading = layout.headingList().elements[0].path.getBounds();
    layout.setLanguage (TRQLanguage::Japanese);
    EXPECT_EQ (layout.getLanguage(), TRQLanguage::Japanese);
    EXPECT_NE (layout.headingList().elements[0].path.getBounds(), englishHeading);

    const auto lightFill = layout.backgroundList().elements[0].fill.colour;
    layout.setStyle (1);
    EXPECT_NE (layout.backgroundList().elements[0].fill.colour, lightFill);
    EXPECT_NE (layout.headingList().elements[0].fill.colour, juce::Colour (56, 56, 56));
    EXPECT_EQ (layout.getLanguage(), TRQLanguage::Japanese);

    juce::Image image (juce::Image::ARGB, 793, 380, true, juce::SoftwareImageType());
    juce::Graphics g (image);
    layout.paintEntireComponent (g, false);
    EXPECT_LT (image.getPixelAt (200, 200).getBrightness(), 0.2f);
}
