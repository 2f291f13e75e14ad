#include "support/ArtworkRenderer.h"

#include <gtest/gtest.h>

using namespace TRQLanguage;

namespace
{
juce::Colour at (const juce::Image& image, float x, float y, float scale)
{
    return image.getPixelAt (juce::roundToInt (x * scale), juce::roundToInt (y * scale));
}

int channelDistance (juce::Colour a, juce::Colour b)
{
    return std::abs (a.getRed() - b.getRed()) + std::abs (a.getGreen() - b.getGreen()) +
           std::abs (a.getBlue() - b.getBlue());
}

// Pixels that differ clearly from the background inside a canvas rectangle.
int inkInside (const juce::Image& image, juce::Rectangle<float> area, juce::Colour background, float scale)
{
    int count = 0;
    const auto r = (area * scale).toNearestInt();
    for (int y = r.getY(); y < r.getBottom(); ++y)
        for (int x = r.getX(); x < r.getRight(); ++x)
            if (channelDistance (image.getPixelAt (x, y), background) > 120)
                ++count;
    return count;
}
} // namespace

TEST (ArtworkRender, PanelColoursAtKnownPointsInBothStylesAndScales)
{
    for (float scale : {1.0f, 2.0f})
    {
        const auto light = ArtworkRenderer::renderPanel (English, 0, scale);
        const auto dark = ArtworkRenderer::renderPanel (English, 1, scale);
        ASSERT_EQ (light.getWidth(), juce::roundToInt (793 * scale));

        // Centre strip: the accent, the same in both styles.
        const juce::Colour accent (194, 78, 84);
        EXPECT_LT (channelDistance (at (light, 426, 100, scale), accent), 12);
        EXPECT_LT (channelDistance (at (dark, 426, 100, scale), accent), 12);
        // Advanced bottom bar: the deep accent.
        EXPECT_LT (channelDistance (at (light, 690, 376, scale), juce::Colour (146, 59, 63)), 12);
        // Panes: near white in light, near black in dark.
        EXPECT_GT (at (light, 300, 320, scale).getBrightness(), 0.9f);
        EXPECT_LT (at (dark, 300, 320, scale).getBrightness(), 0.2f);
        EXPECT_LT (at (dark, 600, 300, scale).getBrightness(), 0.2f);
    }
}

TEST (ArtworkRender, EveryLanguageInksItsHeadingsAndCaptions)
{
    for (Language language : menuLanguages())
    {
        const auto image = ArtworkRenderer::renderPanel (language, 0, 1.0f);
        const auto bg = at (image, 2, 2, 1.0f);
        SCOPED_TRACE (languageKey (language));
        // Heading over the first main column and over the compressor group.
        EXPECT_GT (inkInside (image, {0, 4, 79, 30}, bg, 1.0f), 20);
        EXPECT_GT (inkInside (image, {457, 4, 112, 30}, bg, 1.0f), 20);
        // Caption under the attack fader.
        EXPECT_GT (inkInside (image, {457, 140, 56, 24}, bg, 1.0f), 10);
    }
}

// Set ZOLK_ARTWORK_DIR to write the panels, label sheets and contact sheet.
TEST (ArtworkRender, WritesImagesWhenAsked)
{
    const auto dir = juce::SystemStats::getEnvironmentVariable ("ZOLK_ARTWORK_DIR", {});
    if (dir.isEmpty())
        GTEST_SKIP() << "ZOLK_ARTWORK_DIR not set";
    const juce::File out (dir);
    out.createDirectory();
    for (Language language : menuLanguages())
        for (int style : {0, 1})
            for (float scale : {1.0f, 2.0f})
            {
                const auto stem = juce::String (languageKey (language)) + (style == 1 ? "-dark" : "-light") +
                                  "-" + juce::String (juce::roundToInt (scale * 100)) + ".png";
                EXPECT_TRUE (ArtworkRenderer::writePng (ArtworkRenderer::renderPanel (language, style, scale),
                                                        out.getChildFile ("panel-" + stem)));
                EXPECT_TRUE (
                    ArtworkRenderer::writePng (ArtworkRenderer::renderLabelSheet (language, style, scale),
                                               out.getChildFile ("labels-" + stem)));
            }
    EXPECT_TRUE (ArtworkRenderer::writePng (ArtworkRenderer::renderContactSheet (1.0f),
                                            out.getChildFile ("contact-sheet.png")));
}
