#include "editor/TRQHUDControl.h"

#include "editor/TRQParameterGestures.h"
#include "editor/TRQTextButton.h"

const std::array<TRQHUDControl::Option, TRQHUDControl::optionCount> TRQHUDControl::options{{
    {0.0f, "Noise On"},
    {-96.0f, "Noise Off"},
}};

namespace
{
// Room around the panel for its shadow.
constexpr int shadowRoom = 4;
} // namespace

const juce::Rectangle<int> TRQHUDControl::panelArea{403, 130, 46, 26};

TRQHUDControl::TRQHUDControl (TRQParameterGestures& g)
    : gestures (g)
    , drawing (TRQDrawing::get())
{
    for (int i = 0; i < optionCount; ++i)
    {
        auto button = std::make_unique<TRQTextButton> (i, 2);
        button->setTooltip (options[(size_t)i].name);
        button->setRadius (2.0f);
        button->setFill (0, juce::Colours::transparentBlack);
        button->setFill (1, juce::Colours::white.withAlpha (0.24f));
        button->clickedSignal.connect (this,
                                       [this] (int option, int)
                                       {
                                           gestures.setRealInGesture (parameterIndex,
                                                                      options[(size_t)option].value);
                                           // A press on the lit option leaves the value as it
                                           // was: show the selection again.
                                           showSelection();
                                       });
        addAndMakeVisible (*button);
        buttons[(size_t)i] = std::move (button);
    }
    setBounds (panelArea.expanded (shadowRoom));
    showSelection();
}

TRQHUDControl::~TRQHUDControl() = default;

int TRQHUDControl::optionFor (float real)
{
    for (int i = 0; i < optionCount; ++i)
        if (options[(size_t)i].value == real)
            return i;
    return -1;
}

bool TRQHUDControl::parameterChanged (float real)
{
    int option = optionFor (real);
    // Any level between the two reads as noise on.
    if (option < 0)
        option = 0;
    if (option == selected)
        return false;
    selected = option;
    showSelection();
    return true;
}

void TRQHUDControl::showSelection()
{
    for (int i = 0; i < optionCount; ++i)
        buttons[(size_t)i]->setState (i == selected ? 1 : 0);
    dirty = true;
}

void TRQHUDControl::setLanguageAndStyle (int newLanguage, int newStyle)
{
    language = newLanguage;
    style = newStyle;
    // Each option's outline sits at its row of the whole panel.
    for (int i = 0; i < optionCount; ++i)
    {
        auto& button = *buttons[(size_t)i];
        const auto list = drawing.hudList (0, i, static_cast<TRQLanguage::Language> (language), style);
        const auto origin = localPanel().getPosition() - button.getPosition().toFloat();
        auto unlit = list, lit = list;
        unlit.setColour (juce::Colours::white.withAlpha (0.5f));
        lit.setColour (juce::Colours::white);
        button.setDrawingLabel (0, unlit, origin);
        button.setDrawingLabel (1, lit, origin);
    }
    dirty = true;
}

juce::Rectangle<float> TRQHUDControl::localPanel() const
{
    return (panelArea - getPosition()).toFloat();
}

bool TRQHUDControl::hitTest (int x, int y)
{
    return localPanel().contains ((float)x, (float)y);
}

void TRQHUDControl::resized()
{
    // One row per option, as the outlines are laid out in the panel.
    const auto panel = localPanel();
    const float rowHeight = (panel.getHeight() - 2.0f) / (float)optionCount;
    for (int i = 0; i < optionCount; ++i)
        buttons[(size_t)i]->setBounds (juce::Rectangle<float> (panel.getX() + 1.0f,
                                                               panel.getY() + 1.0f + rowHeight * (float)i,
                                                               panel.getWidth() - 2.0f, rowHeight)
                                           .toNearestInt());
    setLanguageAndStyle (language, style);
}

void TRQHUDControl::refresh (bool force)
{
    if (dirty || force)
        repaint();
    for (auto& button : buttons)
        button->refresh (force);
    dirty = false;
}

void TRQHUDControl::paint (juce::Graphics& g)
{
    const auto area = localPanel().reduced (0.5f);
    juce::Path panel;
    panel.addRoundedRectangle (area, 2.0f);
    juce::DropShadow (juce::Colours::black.withAlpha (0.3f), 4, {0, 1}).drawForPath (g, panel);
    g.setColour (juce::Colours::white.withAlpha (style == 1 ? 0.12f : 0.3f));
    g.fillPath (panel);
}
