#include "editor/TRQModalViewer.h"

#include "editor/TRQLookAndFeel.h"
#include "editor/TRQSymbols.h"

bool TRQModalViewer::ModalSettings::operator== (const ModalSettings& other) const
{
    if (hasForm != other.hasForm || data.size() != other.data.size())
        return false;
    for (const auto& [key, value] : data)
    {
        const auto found = other.data.find (key);
        // var's == converts between kinds; a form kind of 1 must not equal "1".
        if (found == other.data.end() || !value.hasSameTypeAs (found->second) || value != found->second)
            return false;
    }
    return true;
}

TRQModalViewer::TRQModalViewer()
    : dismissButton (std::make_shared<TRQTextButton> (0))
{
    setVisible (false);
    setWantsKeyboardFocus (true);
    dismissButton->setTooltip ("Dismiss");
    dismissButton->setGlyph (0, TRQSymbols::dismiss, 24.0f);
    dismissButton->setDrawBackground (false);
    dismissButton->clickedSignal.connect (this, [this] (int, int) { closedSignal.emit(); });
    addChild (dismissButton, true);
}

TRQModalViewer::~TRQModalViewer()
{
    cancelPendingUpdate();
}

void TRQModalViewer::show (std::shared_ptr<juce::Component> newContent, float opacity,
                           const ModalSettings& newSettings, int width)
{
    retire();
    backgroundOpacity = opacity;
    settings = newSettings;
    content = std::move (newContent);
    if (content != nullptr)
        addAndMakeVisible (*content);
    dismissButton->toFront (false);
    setBounds (0, 0, width, 380);
    resized();
    setVisible (true);
    showing = true;
    toFront (false);
    if (isShowing() && !hasKeyboardFocus (true))
    {
        if (content != nullptr && content->getWantsKeyboardFocus())
            content->grabKeyboardFocus();
        else
            grabKeyboardFocus();
    }
}

void TRQModalViewer::clear()
{
    const bool hadFocus = hasKeyboardFocus (true);
    retire();
    showing = false;
    settings = {};
    setVisible (false);
    if (hadFocus)
        if (auto* parent = getParentComponent())
            parent->grabKeyboardFocus();
}

void TRQModalViewer::retire()
{
    if (content == nullptr)
        return;
    content->setVisible (false);
    removeChildComponent (content.get());
    retired.push_back (std::move (content));
    content.reset();
    triggerAsyncUpdate();
}

void TRQModalViewer::handleAsyncUpdate()
{
    retired.clear();
}

void TRQModalViewer::resized()
{
    const int w = getWidth();
    dismissButton->setBounds (w - 32, 4, 28, 28);
    if (content != nullptr)
    {
        // Forms keep a readable measure in the wide window.
        const int formWidth = std::min (w - 48, 400);
        content->setBounds ((w - formWidth) / 2, 8, formWidth, getHeight() - 16);
    }
}

void TRQModalViewer::paint (juce::Graphics& g)
{
    g.fillAll (findColour (TRQLookAndFeel::deepAccentColourId).withAlpha (backgroundOpacity));
}

bool TRQModalViewer::keyPressed (const juce::KeyPress& key)
{
    if (!showing)
        return false;
    if (key == juce::KeyPress::escapeKey)
    {
        closedSignal.emit();
        return true;
    }
    return content != nullptr && content->keyPressed (key);
}
