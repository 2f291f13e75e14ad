#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

// Fonts, colours and the house drawing of popup menus, tooltips and scroll bars.
// The families below are what components ask for; unless the user prefers the
// system's fonts they resolve to the faces embedded in the plug-in.
class TRQLookAndFeel : public juce::LookAndFeel_V4
{
public:
    enum ColourIds
    {
        accentColourId = 0x3000001,
        deepAccentColourId = 0x3000002,
        modalTextColourId = 0x3000003,
        modalSecondaryTextColourId = 0x3000004,
        menuTextColourId = 0x3000005,
        menuAccentColourId = 0x3000006
    };

    static constexpr const char* textFamily = "FormaDJR Text Bold";
    static constexpr const char* symbolFamily = "Hvn Symbols";
    static constexpr const char* numberFamily = "Hvn Numbers Compressed Regular";

    // useSystemFonts comes from the FontSource preference (1 = system fonts).
    explicit TRQLookAndFeel (bool useSystemFonts = false);

    // 1 is dark, anything else the default style.
    void setStyle (int style);
    int getStyle() const { return currentStyle; }

    bool usesSystemFonts() const { return useSystemFonts; }

    juce::Font textFont (float height) const;
    juce::Font numberFont (float height) const;
    juce::Font symbolFont (float height) const;

    // Colour of the keyboard focus ring drawn around a control of this colour.
    virtual juce::Colour focusRingColour (juce::Colour controlColour) const;

    juce::Typeface::Ptr getTypefaceForFont (const juce::Font& font) override;

    juce::Font getLabelFont (juce::Label& label) override;
    juce::Font getTextButtonFont (juce::TextButton& button, int buttonHeight) override;

    juce::Font getPopupMenuFont() override;
    void drawPopupMenuBackground (juce::Graphics& g, int width, int height) override;
    void drawPopupMenuItem (juce::Graphics& g, const juce::Rectangle<int>& area, bool isSeparator,
                            bool isActive, bool isHighlighted, bool isTicked, bool hasSubMenu,
                            const juce::String& text, const juce::String& shortcutKeyText,
                            const juce::Drawable* icon, const juce::Colour* textColour) override;

    juce::Rectangle<int> getTooltipBounds (const juce::String& tipText, juce::Point<int> screenPos,
                                           juce::Rectangle<int> parentArea) override;
    void drawTooltip (juce::Graphics& g, const juce::String& text, int width, int height) override;

    void drawScrollbar (juce::Graphics& g, juce::ScrollBar& bar, int x, int y, int width, int height,
                        bool isScrollbarVertical, int thumbStartPosition, int thumbSize, bool isMouseOver,
                        bool isMouseDown) override;

    // The embedded faces, each made once per process on first use.
    static juce::Typeface::Ptr embeddedText();
    static juce::Typeface::Ptr embeddedItalic();
    static juce::Typeface::Ptr embeddedSymbols();
    static juce::Typeface::Ptr embeddedNumbers();
    // How many embedded faces have been made so far.
    static int embeddedTypefacesMade();

    // The margin around a tooltip that carries its shadow.
    static constexpr int tooltipMargin = 12;

private:
    juce::Font defaultNumberFont;
    bool useSystemFonts;
    int currentStyle = 0;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (TRQLookAndFeel)
};
