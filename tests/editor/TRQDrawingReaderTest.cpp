#include "editor/TRQDrawing.h"

#include <gtest/gtest.h>

using json = nlohmann::json;

namespace
{
juce::Image paintOnWhite (const TRQDrawingList& list, int w = 40, int h = 40)
{
    juce::Image image (juce::Image::RGB, w, h, true, juce::SoftwareImageType());
    juce::Graphics g (image);
    g.fillAll (juce::Colours::white);
    list.paint (g);
    return image;
}

TRQDrawingList one (const char* record, const char* key = "default")
{
    return readDrawingList (json::array ({json::parse (record)}), key);
}
} // namespace

TEST (TRQDrawingReader, ColourChannelsBecomeBytes)
{
    EXPECT_EQ (drawingChannelToByte (1.0), 255);
    EXPECT_EQ (drawingChannelToByte (1.5), 255);
    EXPECT_EQ (drawingChannelToByte (0.5), 127);
    EXPECT_EQ (drawingChannelToByte (0.0), 0);
    EXPECT_EQ (drawingChannelToByte (-0.2), 0);
    EXPECT_EQ (drawingChannelToByte (0.99), 253);
    EXPECT_EQ (drawingColour (json::parse ("[1.0, 0.5, 0.0, 0.28]")),
               juce::Colour ((juce::uint8)255, (juce::uint8)127, (juce::uint8)0, (juce::uint8)71));
}

TEST (TRQDrawingReader, StyleChoiceAndSolidFill)
{
    const char* both =
        R"({"default":{"fill":["f",[1,0,0,1]]},"dark":{"fill":["f",[0,0,1,1]]},"d":"m 0 0 l 10 0 10 10 z","bounds":[1,2,3,4.5]})";
    const char* onlyDefault = R"({"default":{"fill":["f",[1,0,0,1]]},"d":"","bounds":[0,0,1,1]})";
    EXPECT_EQ (one (both, "default").elements[0].fill.colour, juce::Colours::red);
    EXPECT_EQ (one (both, "dark").elements[0].fill.colour, juce::Colours::blue);
    EXPECT_EQ (one (onlyDefault, "dark").elements[0].fill.colour, juce::Colours::red);

    const auto e = one (both).elements[0];
    EXPECT_EQ (e.bounds, juce::Rectangle<float> (1, 2, 3, 4.5f));
    EXPECT_EQ (e.path.getBounds(), juce::Rectangle<float> (0, 0, 10, 10));
    EXPECT_EQ (styleKey (1), "dark");
    EXPECT_EQ (styleKey (0), "default");
    EXPECT_EQ (styleKey (2), "default");
}

TEST (TRQDrawingReader, EmptyPathKeepsItsColoursAndPaintsNothing)
{
    const auto list = one (R"({"default":{"fill":["f",[0,0,0,0.8]]},"d":"","bounds":[0,0,79,254]})");
    EXPECT_TRUE (list.elements[0].path.isEmpty());
    EXPECT_EQ (list.elements[0].fill.colour.getAlpha(), 204);
    EXPECT_EQ (paintOnWhite (list).getPixelAt (5, 5), juce::Colours::white);
}

TEST (TRQDrawingReader, UnknownFillKindLeavesTheDefaultBlack)
{
    const auto list =
        one (R"({"default":{"fill":["r",[1,0,0,1]]},"d":"m 0 0 l 40 0 40 40 0 40 z","bounds":[0,0,1,1]})");
    EXPECT_TRUE (list.elements[0].fill.isColour());
    EXPECT_EQ (paintOnWhite (list).getPixelAt (20, 20), juce::Colours::black);
}

TEST (TRQDrawingReader, GradientStrokeAndPattern)
{
    const auto g = one (
        R"({"default":{"fill":["g",[[[1,0,0,1],[0,0]],[[0,0,1,1],[0,40]]]],"stroke":[[0,1,0,1],0.3]},"d":"m 0 0 l 40 0 40 40 0 40 z","bounds":[0,0,40,40]})");
    const auto& e = g.elements[0];
    ASSERT_TRUE (e.fill.isGradient());
    EXPECT_FALSE (e.fill.gradient->isRadial);
    EXPECT_EQ (e.fill.gradient->point2, juce::Point<float> (0, 40));
    EXPECT_TRUE (e.hasStroke);
    EXPECT_FLOAT_EQ (e.strokeThickness, 0.3f);
    EXPECT_EQ (e.strokeColour, juce::Colour (0, 255, 0));
    const auto image = paintOnWhite (g);
    EXPECT_GT (image.getPixelAt (20, 2).getRed(), 200);
    EXPECT_GT (image.getPixelAt (20, 37).getBlue(), 200);

    // A pattern replaces the fill; a tile that does not decode paints nothing.
    const auto bad = one (
        R"({"default":{"fill":["f",[1,0,0,1]],"pattern":[0.05,"bm90IGEgcG5n"]},"d":"m 0 0 l 40 0 40 40 0 40 z","bounds":[0,0,1,1]})");
    EXPECT_FALSE (bad.elements[0].fill.isTiledImage());
    EXPECT_EQ (paintOnWhite (bad).getPixelAt (20, 20), juce::Colours::white);
}

TEST (TRQDrawingReader, ShippedTilesDecode)
{
    auto drawing = TRQDrawing::get();
    for (int style : {0, 1})
    {
        const auto bg = drawing.bgList (style);
        ASSERT_EQ (bg.elements.size(), 14u);
        ASSERT_TRUE (bg.elements[2].fill.isTiledImage());
        EXPECT_EQ (bg.elements[2].fill.image.getWidth(), 500);
        EXPECT_EQ (bg.elements[2].fill.image.getHeight(), 500);
        EXPECT_FLOAT_EQ (bg.elements[2].fill.transform.mat00, 0.25f);
        EXPECT_EQ (bg.elements[2].fill.colour.getAlpha(), 12);
        for (int i = 10; i < 14; ++i)
            EXPECT_TRUE (bg.elements[(size_t)i].hasShadow);
    }
}

TEST (TRQDrawingReader, ShadowIsClippedOnlyByAPositiveRectangle)
{
    // A square in the middle whose shadow reaches around it.
    const char* clipped =
        R"({"default":{"fill":["f",[0,0,0,1]],"shadow":[8,1.0,[0,0,20,40],[0,0,0,1]]},"d":"m 15 15 l 25 15 25 25 15 25 z","bounds":[0,0,40,40]})";
    const char* unclipped =
        R"({"default":{"fill":["f",[0,0,0,1]],"shadow":[8.7,1.0,[0,0,0,40],[0,0,0,1]]},"d":"m 15 15 l 25 15 25 25 15 25 z","bounds":[0,0,40,40]})";
    const auto c = one (clipped);
    EXPECT_EQ (c.elements[0].shadow.radius, 8);
    EXPECT_EQ (c.elements[0].shadowClip, juce::Rectangle<int> (0, 0, 20, 40));
    const auto clippedImage = paintOnWhite (c);
    EXPECT_EQ (clippedImage.getPixelAt (28, 20), juce::Colours::white);  // right of the clip: nothing
    EXPECT_LT (clippedImage.getPixelAt (12, 20).getBrightness(), 0.95f); // blur left of the square

    const auto u = one (unclipped);
    EXPECT_EQ (u.elements[0].shadow.radius, 8);
    const auto unclippedImage = paintOnWhite (u);
    EXPECT_LT (unclippedImage.getPixelAt (28, 20).getBrightness(), 0.95f);
    EXPECT_EQ (unclippedImage.getPixelAt (20, 20), juce::Colours::black);
}

TEST (TRQDrawingReader, SetColourFlattensFillsAndStrokes)
{
    auto list = one (
        R"({"default":{"fill":["g",[[[1,0,0,1],[0,0]],[[0,0,1,1],[0,40]]]],"stroke":[[0,1,0,1],0.3]},"d":"m 0 0 l 40 0 40 40 0 40 z","bounds":[0,0,40,40]})");
    list.setColour (juce::Colours::orange);
    EXPECT_TRUE (list.elements[0].fill.isColour());
    EXPECT_EQ (list.elements[0].fill.colour, juce::Colours::orange);
    EXPECT_EQ (list.elements[0].strokeColour, juce::Colours::orange);
}

TEST (TRQDrawingReader, ListOpacityPaintsThroughALayer)
{
    auto list =
        one (R"({"default":{"fill":["f",[0,0,0,1]]},"d":"m 0 0 l 40 0 40 40 0 40 z","bounds":[0,0,40,40]})");
    list.opacity = 0.5f;
    const auto pixel = paintOnWhite (list).getPixelAt (20, 20);
    EXPECT_NEAR (pixel.getRed(), 128, 3);
}
