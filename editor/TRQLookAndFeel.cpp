#include "editor/TRQLookAndFeel.h"

#include "BinaryData.h"

#include <atomic>

namespace
{
std::atomic<int> facesMade{0};

juce::Typeface::Ptr makeFace (const char* data, int size)
{
    ++facesMade;
    return juce::Typeface::createSystemTypefaceFor (data, static_cast<size_t> (size));
}

bool isItalicStyle (const juce::String& style)
{
    return style.containsIgnoreCase ("Italic") || style.containsIgnoreCase ("Oblique");
}

juce::Colour grey (float brightness, juce::uint8 alpha = 255)
{
    return juce::Colour::fromFloatRGBA (brightness, brightness, brightness, 1.0f).withAlpha (alpha);
}
} // namespace

TRQLookAndFeel::TRQLookAndFeel (bool systemFonts)
    : defaultNumberFont (numberFamily, 14.0f, juce::Font::plain)
    , useSystemFonts (systemFonts)
{
    setStyle (0);
}

void TRQLookAndFeel::setStyle (int style)
{
    currentStyle = style;
    const bool dark = style == 1;

    setColour (accentColourId, juce::Colour::fromFloatRGBA (0.7607843f, 0.30588236f, 0.32941177f, 1.0f));
    setColour (deepAccentColourId, juce::Colour::fromFloatRGBA (0.57254905f, 0.23137255f, 0.24705882f, 1.0f));
    setColour (modalTextColourId, juce::Colours::white.withAlpha ((juce::uint8)243));
    setColour (modalSecondaryTextColourId, juce::Colours::white.withAlpha ((juce::uint8)191));
    const juce::Colour menuText =
        (dark ? juce::Colours::white : juce::Colours::black).withAlpha ((juce::uint8)217);
    setColour (menuTextColourId, menuText);
    setColour (menuAccentColourId, grey (dark ? 0.95f : 0.05f));

    setColour (juce::TextEditor::textColourId, juce::Colours::white);
    setColour (juce::TextEditor::highlightedTextColourId, juce::Colours::white);
    setColour (juce::TextEditor::outlineColourId, juce::Colours::white.withAlpha ((juce::uint8)153));
    setColour (juce::TextEditor::focusedOutlineColourId, juce::Colours::white.withAlpha ((juce::uint8)243));
    setColour (juce::TextEditor::backgroundColourId, juce::Colours::transparentBlack);

    setColour (juce::TooltipWindow::backgroundColourId, grey (0.95f));
    setColour (juce::TooltipWindow::textColourId, grey (0.3f));
    setColour (juce::TooltipWindow::outlineColourId, juce::Colours::transparentBlack);

    setColour (juce::PopupMenu::backgroundColourId, grey (dark ? 0.2f : 1.0f, 230));
    setColour (juce::PopupMenu::textColourId, menuText);
    setColour (juce::PopupMenu::highlightedTextColourId, menuText);
    setColour (juce::PopupMenu::highlightedBackgroundColourId, menuText.withAlpha (0.12f));

    setColour (juce::ScrollBar::thumbColourId,
               (dark ? juce::Colours::white : juce::Colours::black).withAlpha ((juce::uint8)166));
}

juce::Font TRQLookAndFeel::textFont (float height) const
{
    return juce::Font (textFamily, "Regular", height);
}

juce::Font TRQLookAndFeel::numberFont (float height) const
{
    return defaultNumberFont.withHeight (height);
}

juce::Font TRQLookAndFeel::symbolFont (float height) const
{
    return juce::Font (symbolFamily, "Regular", height);
}

juce::Colour TRQLookAndFeel::focusRingColour (juce::Colour controlColour) const
{
    if (controlColour.isTransparent())
        return findColour (accentColourId);
    return currentStyle == 1 ? controlColour.brighter (0.3f) : controlColour;
}

juce::Typeface::Ptr TRQLookAndFeel::embeddedText()
{
    static const juce::Typeface::Ptr face =
        makeFace (BinaryData::FormaDJRTextMedium_ttf, BinaryData::FormaDJRTextMedium_ttfSize);
    return face;
}

juce::Typeface::Ptr TRQLookAndFeel::embeddedItalic()
{
    static const juce::Typeface::Ptr face =
        makeFace (BinaryData::FormaDJRTextItalic_ttf, BinaryData::FormaDJRTextItalic_ttfSize);
    return face;
}

juce::Typeface::Ptr TRQLookAndFeel::embeddedSymbols()
{
    static const juce::Typeface::Ptr face =
        makeFace (BinaryData::HvnSymbols_ttf, BinaryData::HvnSymbols_ttfSize);
    return face;
}

juce::Typeface::Ptr TRQLookAndFeel::embeddedNumbers()
{
    static const juce::Typeface::Ptr face =
        makeFace (BinaryData::HvnNumbersCompressed_ttf, BinaryData::HvnNumbersCompressed_ttfSize);
    return face;
}

int TRQLookAndFeel::embeddedTypefacesMade()
{
    return facesMade.load();
}

juce::Typeface::Ptr TRQLookAndFeel::getTypefaceForFont (const juce::Font& font)
{
    const juce::String family = font.getTypefaceName();
    const bool italic = isItalicStyle (font.getTypefaceStyle());

    if (family == textFamily)
        return useSystemFonts ? LookAndFeel_V4::getTypefaceForFont (font) : embeddedText();
    if (family == symbolFamily)
        return useSystemFonts ? LookAndFeel_V4::getTypefaceForFont (font) : embeddedSymbols();
    if (family == numberFamily)
        return useSystemFonts ? LookAndFeel_V4::getTypefaceForFont (font) : embeddedNumbers();

    if (family == juce::Font::getDefaultSansSerifFontName())
    {
        if (!useSystemFonts)
            return italic ? embeddedItalic() : embeddedText();
        // The system's own faces under the names our text asks for; the font
        // machinery substitutes what the system has.
        const juce::Font substitute = italic ? juce::Font ("Graphik Arabic Regular", "Italic", 19.0f)
                                             : juce::Font (textFamily, "Regular", 19.0f);
        return juce::Typeface::createSystemTypefaceFor (substitute);
    }
    return LookAndFeel_V4::getTypefaceForFont (font);
}

juce::Font TRQLookAndFeel::getLabelFont (juce::Label& label)
{
    return textFont (label.getFont().getHeight());
}

juce::Font TRQLookAndFeel::getTextButtonFont (juce::TextButton& button, int buttonHeight)
{
    juce::ignoreUnused (button);
    return textFont (juce::jmin (16.0f, static_cast<float> (buttonHeight) * 0.6f));
}

juce::Font TRQLookAndFeel::getPopupMenuFont()
{
    return textFont (17.0f);
}

void TRQLookAndFeel::drawPopupMenuBackground (juce::Graphics& g, int width, int height)
{
    g.fillAll (findColour (juce::PopupMenu::backgroundColourId));
    juce::ignoreUnused (width, height);
}

void TRQLookAndFeel::drawPopupMenuItem (juce::Graphics& g, const juce::Rectangle<int>& area, bool isSeparator,
                                        bool isActive, bool isHighlighted, bool isTicked, bool hasSubMenu,
                                        const juce::String& text, const juce::String& shortcutKeyText,
                                        const juce::Drawable* icon, const juce::Colour* textColour)
{
    if (isSeparator)
    {
        auto r = area.reduced (5, 0).toFloat();
        g.setColour (findColour (menuTextColourId).withMultipliedAlpha (0.3f));
        g.fillRect (r.withHeight (1.0f).withCentre (r.getCentre()));
        return;
    }

    const juce::Colour ink = textColour != nullptr
                                 ? *textColour
                                 : findColour (isHighlighted ? juce::PopupMenu::highlightedTextColourId
                                                             : juce::PopupMenu::textColourId);
    auto r = area.reduced (1);
    if (isHighlighted && isActive)
    {
        g.setColour (findColour (juce::PopupMenu::highlightedBackgroundColourId));
        g.fillRect (r);
    }
    g.setColour (isActive ? ink : ink.withMultipliedAlpha (0.4f));

    auto font = getPopupMenuFont().withHeight (static_cast<float> (area.getHeight()) * 0.7f);
    g.setFont (font);

    auto iconArea = r.removeFromLeft (juce::roundToInt (font.getHeight() * 1.2f)).reduced (3).toFloat();
    if (icon != nullptr)
        icon->drawWithin (g, iconArea,
                          juce::RectanglePlacement::centred | juce::RectanglePlacement::onlyReduceInSize,
                          1.0f);
    else if (isTicked)
        g.fillPath (getTickShape (1.0f), getTickShape (1.0f).getTransformToScaleToFit (
                                             iconArea.reduced (iconArea.getWidth() / 5), true));

    if (hasSubMenu)
    {
        const float arrowH = 0.6f * getPopupMenuFont().getAscent();
        const float x = static_cast<float> (r.removeFromRight (static_cast<int> (arrowH)).getX());
        const float halfH = static_cast<float> (r.getCentreY());
        juce::Path arrow;
        arrow.startNewSubPath (x, halfH - arrowH * 0.5f);
        arrow.lineTo (x + arrowH * 0.6f, halfH);
        arrow.lineTo (x, halfH + arrowH * 0.5f);
        g.strokePath (arrow, juce::PathStrokeType (2.0f));
    }

    r.removeFromRight (3);
    g.drawFittedText (text, r, juce::Justification::centredLeft, 1);
    if (shortcutKeyText.isNotEmpty())
    {
        g.setFont (font.withHeight (font.getHeight() * 0.75f));
        g.drawText (shortcutKeyText, r, juce::Justification::centredRight, true);
    }
}

juce::Rectangle<int> TRQLookAndFeel::getTooltipBounds (const juce::String& tipText,
                                                       juce::Point<int> screenPos,
                                                       juce::Rectangle<int> parentArea)
{
    const juce::Font font = textFont (15.0f);
    const int w = font.getStringWidth (tipText) + 20 + 2 * tooltipMargin;
    const int h = 28 + 2 * tooltipMargin;
    return juce::Rectangle<int> (screenPos.x > parentArea.getCentreX() ? screenPos.x - (w - tooltipMargin)
                                                                       : screenPos.x - tooltipMargin,
                                 screenPos.y > parentArea.getCentreY() ? screenPos.y - (h - tooltipMargin)
                                                                       : screenPos.y + 6,
                                 w, h)
        .constrainedWithin (parentArea);
}

void TRQLookAndFeel::drawTooltip (juce::Graphics& g, const juce::String& text, int width, int height)
{
    const auto box = juce::Rectangle<int> (width, height).reduced (tooltipMargin);
    juce::DropShadow (juce::Colours::black.withAlpha ((juce::uint8)89), 12, {0, 8}).drawForRectangle (g, box);
    const juce::Colour bg = findColour (juce::TooltipWindow::backgroundColourId);
    g.setColour (bg.withAlpha (bg.getFloatAlpha() * 0.65f));
    g.fillRect (box);
    g.setColour (findColour (juce::TooltipWindow::textColourId));
    g.setFont (textFont (15.0f));
    g.drawText (text, box, juce::Justification::centred, true);
}

void TRQLookAndFeel::drawScrollbar (juce::Graphics& g, juce::ScrollBar& bar, int x, int y, int width,
                                    int height, bool isScrollbarVertical, int thumbStartPosition,
                                    int thumbSize, bool isMouseOver, bool isMouseDown)
{
    juce::ignoreUnused (isMouseDown);
    if (thumbSize <= 0)
        return;
    const auto thumb = isScrollbarVertical
                           ? juce::Rectangle<int> (x, thumbStartPosition, width, thumbSize).toFloat()
                           : juce::Rectangle<int> (thumbStartPosition, y, thumbSize, height).toFloat();
    g.setColour (bar.findColour (juce::ScrollBar::thumbColourId));
    g.fillRoundedRectangle (thumb.reduced (2.0f), 2.0f);

    // A few short hatches mark the thumb as something to grab.
    g.setColour (juce::Colours::white.withAlpha (isMouseOver ? 0.8f : 0.5f));
    for (float f : {0.0f, 0.25f, 0.5f, 0.75f})
    {
        const float along = static_cast<float> (thumbSize) * (f + 0.125f);
        if (isScrollbarVertical)
        {
            const float yy = thumb.getY() + along;
            g.drawLine (thumb.getX() + thumb.getWidth() * 0.3f, yy,
                        thumb.getRight() - thumb.getWidth() * 0.3f, yy, 1.0f);
        }
        else
        {
            const float xx = thumb.getX() + along;
            g.drawLine (xx, thumb.getY() + thumb.getHeight() * 0.3f, xx,
                        thumb.getBottom() - thumb.getHeight() * 0.3f, 1.0f);
        }
    }
}
