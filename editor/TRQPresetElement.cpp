#include "editor/TRQPresetElement.h"

#include "editor/TRQFontFallback.h"
#include "editor/TRQHeaderElement.h"
#include "editor/TRQLookAndFeel.h"
#include "editor/TRQSymbols.h"

TRQPresetElement::TRQPresetElement (std::uint32_t index, const juce::String& presetName, bool factory,
                                    bool isDefaultPreset, bool current)
    : presetIndex (index)
    , name (presetName)
    , isFactory (factory)
    , isDefault (isDefaultPreset)
    , isCurrent (current)
{
}

void TRQPresetElement::setCurrent (bool current)
{
    if (current != isCurrent)
        repaint();
    isCurrent = current;
}

void TRQPresetElement::setStyle (int newStyle)
{
    style = newStyle;
    repaint();
}

juce::Rectangle<int> TRQPresetElement::menuGlyphArea() const
{
    return {getWidth() - 28, 0, 28, getHeight()};
}

TRQHeaderElement* TRQPresetElement::header() const
{
    return dynamic_cast<TRQHeaderElement*> (getParentComponent());
}

void TRQPresetElement::paint (juce::Graphics& g)
{
    const auto accent = juce::Colour::fromFloatRGBA (0.7607843f, 0.30588236f, 0.32941177f, 1.0f);
    const auto ink = style == 1 ? juce::Colours::white.withAlpha (0.88f) : juce::Colour (0xff2a2a2a);
    auto area = getLocalBounds().toFloat().reduced (2.0f, 1.0f);
    if (isCurrent)
    {
        g.setColour (accent);
        g.fillRoundedRectangle (area, 3.0f);
    }
    else if (isHovered)
    {
        g.setColour (ink.withAlpha (0.08f));
        g.fillRoundedRectangle (area, 3.0f);
    }
    const auto textColour = isCurrent ? juce::Colours::white : ink;
    // The current preset carries a dot, the default one a ring, so both read at a glance.
    const auto marker = juce::Rectangle<float> (10.0f, (float)getHeight() * 0.5f - 3.0f, 6.0f, 6.0f);
    g.setColour (textColour);
    if (isCurrent)
        g.fillEllipse (marker);
    else if (isDefault)
        g.drawEllipse (marker, 1.2f);
    if (isCurrent && isDefault)
        g.drawEllipse (marker.expanded (2.0f), 1.0f);

    const int right = isHovered ? 30 : 8;
    g.setFont (TRQFontFallback::fontFor (name, juce::Font (TRQLookAndFeel::textFamily, "Regular", 15.0f)));
    g.drawText (name, 24, 0, getWidth() - 24 - right, getHeight(), juce::Justification::centredLeft, true);

    if (isHovered)
    {
        g.setFont (juce::Font (TRQLookAndFeel::symbolFamily, "Regular", 22.0f));
        g.drawText (juce::String::charToString (TRQSymbols::rowMenu), menuGlyphArea(),
                    juce::Justification::centred, false);
    }
}

void TRQPresetElement::mouseEnter (const juce::MouseEvent&)
{
    isHovered = true;
    repaint();
}

void TRQPresetElement::mouseExit (const juce::MouseEvent&)
{
    isHovered = false;
    repaint();
}

void TRQPresetElement::mouseDown (const juce::MouseEvent& e)
{
    dragging = false;
    menuOpened = false;
    if (e.mods.isPopupMenu() || menuGlyphArea().contains (e.getPosition()))
    {
        menuOpened = true;
        pressed.emit (presetIndex, e, true);
    }
}

void TRQPresetElement::mouseDrag (const juce::MouseEvent& e)
{
    if (menuOpened || e.mods.isPopupMenu())
        return;
    if (!dragging && e.getDistanceFromDragStart() > 4)
        if (auto* h = header(); h != nullptr && h->beginRowDrag (*this))
            dragging = true;
    if (dragging)
        if (auto* h = header())
            h->dragRowTo (e.getEventRelativeTo (h).position.y);
}

void TRQPresetElement::mouseUp (const juce::MouseEvent& e)
{
    if (dragging)
    {
        dragging = false;
        if (auto* h = header())
            h->dropRow();
        return;
    }
    if (!menuOpened && !e.mods.isPopupMenu() && getLocalBounds().contains (e.getPosition()))
        pressed.emit (presetIndex, e, false);
    menuOpened = false;
}
