#include "editor/TRQTaskButtons.h"

#include "editor/TRQSymbols.h"

TRQTaskButtons::TRQTaskButtons()
{
    // The strip is mostly the centre pane's own controls; only the buttons take clicks.
    setInterceptsMouseClicks (false, true);
    const auto deep = juce::Colour::fromFloatRGBA (0.57254905f, 0.23137255f, 0.24705882f, 1.0f);
    auto add = [&] (int id, int states, const juce::String& tooltip)
    {
        auto button = std::make_shared<TRQTextButton> (id, states);
        button->setTooltip (tooltip);
        button->setTextColour (juce::Colours::white.withAlpha (230.0f / 255.0f));
        button->setRadius ((float)frameOf (id).getWidth() * 0.5f);
        for (int s = 0; s < states; ++s)
            button->setFill (s, deep);
        button->clickedSignal.connect (this, [this] (int i, int state) { pressed.emit (i, state); });
        addChild (button, true);
        buttons[id] = button;
        return button;
    };
    auto advanced = add (AdvancedControls, 2, "Advanced Controls");
    advanced->setGlyph (0, TRQSymbols::advancedControls, 28.0f);
    advanced->setGlyph (1, TRQSymbols::advancedControlsClose, 28.0f);
    add (GetCurrentSettings, 1, "Get Current Settings")->setGlyph (0, TRQSymbols::getCurrentSettings, 30.0f);
}

juce::Rectangle<int> TRQTaskButtons::frameOf (int buttonId)
{
    return buttonId == AdvancedControls ? juce::Rectangle<int> (405, 262, 42, 42)
                                        : juce::Rectangle<int> (405, 316, 42, 42);
}

TRQTextButton* TRQTaskButtons::getButton (int buttonId) const
{
    const auto found = buttons.find (buttonId);
    return found != buttons.end() ? found->second.get() : nullptr;
}

void TRQTaskButtons::setButtonState (int buttonId, int state)
{
    if (auto* button = getButton (buttonId))
        button->setState (state);
}

void TRQTaskButtons::resized()
{
    for (auto& [id, button] : buttons)
        button->setBounds (frameOf (id) - getPosition());
}
