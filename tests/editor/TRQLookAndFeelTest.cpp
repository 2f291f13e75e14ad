#include "editor/TRQLookAndFeel.h"
#include "editor/TRQSymbols.h"

#include <gtest/gtest.h>

TEST (TRQLookAndFeel, SystemFontsMakeNoEmbeddedFace)
{
    const int before = TRQLookAndFeel::embeddedTypefacesMade();
    TRQLookAndFeel lf (true);
    for (const char* family :
         {TRQLookAndFeel::textFamily, TRQLookAndFeel::symbolFamily, TRQLookAndFeel::numberFamily})
        EXPECT_NE (lf.getTypefaceForFont (juce::Font (family, 14.0f, juce::Font::plain)), nullptr);
    lf.getTypefaceForFont (juce::Font (14.0f));
    lf.getTypefaceForFont (juce::Font (14.0f, juce::Font::italic));
    EXPECT_EQ (TRQLookAndFeel::embeddedTypefacesMade(), before);
}

TEST (TRQLookAndFeel, FamiliesMapToTheEmbeddedFaces)
{
    TRQLookAndFeel lf;
    EXPECT_EQ (lf.getTypefaceForFont (lf.textFont (12.0f)), TRQLookAndFeel::embeddedText());
    EXPECT_EQ (lf.getTypefaceForFont (lf.symbolFont (12.0f)), TRQLookAndFeel::embeddedSymbols());
    EXPECT_EQ (lf.getTypefaceForFont (lf.numberFont (12.0f)), TRQLookAndFeel::embeddedNumbers());
    EXPECT_EQ (lf.getTypefaceForFont (juce::Font (14.0f)), TRQLookAndFeel::embeddedText());
    EXPECT_EQ (lf.getTypefaceForFont (juce::Font (14.0f, juce::Font::italic)),
               TRQLookAndFeel::embeddedItalic());
    EXPECT_EQ (
        lf.getTypefaceForFont (juce::Font (juce::Font::getDefaultSansSerifFontName(), "Oblique", 14.0f)),
        TRQLookAndFeel::embeddedItalic());

    const auto other = lf.getTypefaceForFont (juce::Font ("Some Other Family", 14.0f, juce::Font::plain));
    EXPECT_NE (other, TRQLookAndFeel::embeddedText());
    EXPECT_NE (other, TRQLookAndFeel::embeddedItalic());

    // Each face is made once however often it is asked for.
    const int made = TRQLookAndFeel::embeddedTypefacesMade();
    TRQLookAndFeel second;
    second.getTypefaceForFont (second.textFont (30.0f));
    EXPECT_EQ (TRQLookAndFeel::embeddedTypefacesMade(), made);
}

namespace
{
// Fonts find their faces through the default look and feel, as in the editor.
struct AsDefault
{
    explicit AsDefault (juce::LookAndFeel& lf)
    {
        juce::LookAndFeel::setDefaultLookAndFeel (&lf);
        juce::Typeface::clearTypefaceCache();
    }
    ~AsDefault()
    {
        juce::LookAndFeel::setDefaultLookAndFeel (nullptr);
        juce::Typeface::clearTypefaceCache();
    }
};
} // namespace

TEST (TRQLookAndFeel, SymbolFontHasTheGlyphsTheEditorUses)
{
    TRQLookAndFeel lf;
    AsDefault scope (lf);
    // A code point the font lacks comes from a fallback face; ours must differ from it.
    juce::GlyphArrangement unassigned;
    unassigned.addLineOfText (lf.symbolFont (20.0f), juce::String::charToString (0xE7FF), 0, 0);
    const auto fallback = unassigned.getBoundingBox (0, -1, true);
    using namespace TRQSymbols;
    for (juce::juce_wchar c : {lock,
                               undo,
                               redo,
                               nextPreset,
                               previousPreset,
                               advancedControls,
                               advancedControlsClose,
                               getCurrentSettings,
                               dismiss,
                               rowMenu,
                               arrowUp,
                               arrowDown,
                               arrowLeft,
                               arrowRight,
                               unitDecibelPerOctave,
                               unitKilohertz,
                               unitHertz,
                               unitDecibel,
                               unitPercent,
                               unitSecond,
                               unitMillisecond,
                               unitDegree,
                               unitBeatsPerMinute,
                               unitTimes})
    {
        juce::GlyphArrangement glyphs;
        glyphs.addLineOfText (lf.symbolFont (20.0f), juce::String::charToString (c), 0, 0);
        const auto box = glyphs.getBoundingBox (0, -1, true);
        EXPECT_FALSE (box.isEmpty()) << std::hex << c;
        EXPECT_NE (box, fallback) << std::hex << c;
    }
    juce::GlyphArrangement digits;
    digits.addLineOfText (lf.numberFont (20.0f), "0123456789", 0, 0);
    juce::GlyphArrangement wide;
    wide.addLineOfText (lf.textFont (20.0f), "0123456789", 0, 0);
    EXPECT_LT (digits.getBoundingBox (0, -1, true).getWidth(),
               wide.getBoundingBox (0, -1, true).getWidth() * 0.9f);
}

TEST (TRQLookAndFeel, ColoursFollowTheStyle)
{
    TRQLookAndFeel lf;
    EXPECT_EQ (lf.findColour (TRQLookAndFeel::accentColourId), juce::Colour (194, 78, 84));
    EXPECT_EQ (lf.findColour (juce::PopupMenu::backgroundColourId),
               juce::Colour (255, 255, 255).withAlpha ((juce::uint8)230));
    EXPECT_EQ (lf.findColour (TRQLookAndFeel::menuTextColourId).getAlpha(), 217);
    lf.setStyle (1);
    EXPECT_EQ (lf.getStyle(), 1);
    const auto menu = lf.findColour (juce::PopupMenu::backgroundColourId);
    EXPECT_EQ (menu.getAlpha(), 230);
    EXPECT_NEAR (menu.getBrightness(), 0.2f, 0.01f);
    EXPECT_EQ (lf.findColour (juce::PopupMenu::textColourId),
               lf.findColour (TRQLookAndFeel::menuTextColourId));
    EXPECT_GT (lf.findColour (TRQLookAndFeel::menuAccentColourId).getBrightness(), 0.9f);
    EXPECT_EQ (lf.findColour (juce::ScrollBar::thumbColourId).getAlpha(), 166);
}

TEST (TRQLookAndFeel, TooltipKeepsItsShadowInsideTheMargin)
{
    TRQLookAndFeel lf;
    const auto bounds = lf.getTooltipBounds ("Undo", {100, 100}, {0, 0, 800, 600});
    juce::Image image (juce::Image::ARGB, bounds.getWidth(), bounds.getHeight(), true,
                       juce::SoftwareImageType());
    {
        juce::Graphics g (image);
        lf.drawTooltip (g, "Undo", bounds.getWidth(), bounds.getHeight());
    }
    EXPECT_EQ (image.getPixelAt (1, 1).getAlpha(), 0);
    EXPECT_GT (image.getPixelAt (bounds.getWidth() / 2, bounds.getHeight() - 8).getAlpha(),
               0);                                                             // shadow below
    EXPECT_GT (image.getPixelAt (14, bounds.getHeight() / 2).getAlpha(), 100); // body
}
