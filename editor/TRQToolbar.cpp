#include "editor/TRQToolbar.h"

#include "editor/TRQFontFallback.h"
#include "editor/TRQLookAndFeel.h"
#include "editor/TRQSymbols.h"

namespace
{
juce::Colour ink (int style)
{
    return style == 1 ? juce::Colours::white.withAlpha (0.88f) : juce::Colour (0xff2a2a2a);
}

juce::Colour wash (int style)
{
    return style == 1 ? juce::Colours::white.withAlpha (0.08f) : juce::Colours::black.withAlpha (0.06f);
}

juce::Colour accent()
{
    return juce::Colour::fromFloatRGBA (0.7607843f, 0.30588236f, 0.32941177f, 1.0f);
}
} // namespace

TRQToolbar::TRQToolbar()
{
    make (Presets, 2, "Presets");
    make (PrevPreset, 1, "Prev Preset")->setGlyph (0, TRQSymbols::previousPreset, 18.0f);
    make (NextPreset, 1, "Next Preset")->setGlyph (0, TRQSymbols::nextPreset, 18.0f);
    for (int id : {Undo, Redo})
    {
        auto button = make (id, 2, id == Undo ? "Undo" : "Redo");
        for (int s : {0, 1})
            button->setGlyph (s, id == Undo ? TRQSymbols::undo : TRQSymbols::redo, 18.0f);
        button->setDisabledStates ({0});
        button->setDrawBackground (false);
    }
    for (int id : {SelectA, SelectB})
    {
        auto button = make (id, 2, "Toggle A/B");
        for (int s : {0, 1})
            button->setLabel (s, id == SelectA ? "A" : "B",
                              juce::Font (TRQLookAndFeel::textFamily, "Regular", 15.0f));
    }
    auto copy = make (CopyAB, 1, "Copy A to B");
    copy->setDrawBackground (false);
    setActiveSlot (0);
    setUndoState (false, false);
    setPresetName ("None", false);
    setStyle (0);
}

std::shared_ptr<TRQTextButton> TRQToolbar::make (int buttonId, int states, const juce::String& tooltip)
{
    auto button = std::make_shared<TRQTextButton> (buttonId, states);
    button->setTooltip (tooltip);
    button->clickedSignal.connect (this, [this] (int id, int state) { pressed.emit (id, state); });
    addChild (button, true);
    buttons[buttonId] = button;
    return button;
}

TRQTextButton* TRQToolbar::getButton (int buttonId) const
{
    const auto found = buttons.find (buttonId);
    return found != buttons.end() ? found->second.get() : nullptr;
}

void TRQToolbar::setStyle (int newStyle)
{
    style = newStyle;
    for (auto& [id, button] : buttons)
    {
        button->setTextColour (ink (style));
        for (int s = 0; s < button->getStateCount(); ++s)
            button->setFill (s, wash (style));
    }
    // The live slot and an open browser stand out in the accent colour.
    for (int id : {SelectA, SelectB, Presets})
        buttons[id]->setFill (1, accent());
    relabelPresetButton();
    repaint();
}

void TRQToolbar::setPresetName (const juce::String& name, bool isModified)
{
    presetName = name;
    modified = isModified;
    relabelPresetButton();
}

void TRQToolbar::setModified (bool isModified)
{
    setPresetName (presetName, isModified);
}

void TRQToolbar::relabelPresetButton()
{
    // Modified settings show the name in italics with a mark, so the change is seen
    // without reading.
    const juce::Font plain (TRQLookAndFeel::textFamily, "Regular", 16.0f);
    const juce::Font italic (16.0f, juce::Font::italic);
    const auto text = modified ? presetName + " *" : presetName;
    const auto font = TRQFontFallback::fontFor (presetName, modified ? italic : plain);
    auto& button = *buttons[Presets];
    for (int s : {0, 1})
        button.setLabel (s, text, font);
    button.setTooltip ("Presets");
}

void TRQToolbar::setActiveSlot (int slot)
{
    activeSlot = slot == 1 ? 1 : 0;
    buttons[SelectA]->setState (activeSlot == 0 ? 1 : 0);
    buttons[SelectB]->setState (activeSlot == 1 ? 1 : 0);
    buttons[CopyAB]->setTooltip (activeSlot == 0 ? "Copy A to B" : "Copy B to A");
    buttons[CopyAB]->setGlyph (0, activeSlot == 0 ? TRQSymbols::arrowRight : TRQSymbols::arrowLeft, 14.0f);
}

void TRQToolbar::setUndoState (bool canUndo, bool canRedo)
{
    buttons[Undo]->setState (canUndo ? 1 : 0);
    buttons[Redo]->setState (canRedo ? 1 : 0);
}

void TRQToolbar::setPresetsOpen (bool open)
{
    buttons[Presets]->setState (open ? 1 : 0);
}

void TRQToolbar::resized()
{
    const int w = std::max (0, getWidth());
    const int h = std::max (0, getHeight() - 8);
    const int c = (w - 220) / 2;
    buttons[PrevPreset]->setBounds (c, 4, 28, h);
    buttons[Presets]->setBounds (c + 30, 4, 160, h);
    buttons[NextPreset]->setBounds (c + 192, 4, 28, h);
    buttons[Undo]->setBounds (2, 4, 28, h);
    buttons[Redo]->setBounds (2 + 28, 4, 28, h);
    buttons[SelectB]->setBounds (w - 22, 4, 20, h);
    buttons[CopyAB]->setBounds (w - 22 - 20, 4, 20, h);
    buttons[SelectA]->setBounds (w - 22 - 40, 4, 20, h);
}

void TRQToolbar::paint (juce::Graphics& g)
{
    // A hairline keeps the strip apart from the panel above it.
    g.setColour (ink (style).withAlpha (0.15f));
    g.fillRect (0.0f, 0.0f, (float)getWidth(), 1.0f);
}
