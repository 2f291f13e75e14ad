#include "editor/TRQHUDControl.h"

#include "editor/TRQParameterGestures.h"

namespace
{
const float optionValues[] = {0.0f, -96.0f};
}

TRQHUDControl::TRQHUDControl (TRQParameterGestures& g)
    : gestures (g)
    , drawing (TRQDrawing::get())
{
    setBounds (403, 130, 46, 26);
    setLanguageAndStyle (0, 0);
}

int TRQHUDControl::optionFor (float real)
{
    for (int i = 0; i < 2; ++i)
        if (optionValues[i] == real)
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
    dirty = true;
    return true;
}

void TRQHUDControl::setLanguageAndStyle (int language, int newStyle)
{
    style = newStyle;
    optionLists.clear();
    for (int i = 0; i < 2; ++i)
        optionLists.push_back (drawing.hudList (0, i, static_cast<TRQLanguage::Language> (language), style));
    dirty = true;
}

void TRQHUDControl::refresh (bool force)
{
    if (dirty || force)
        repaint();
    dirty = false;
}

void TRQHUDControl::paint (juce::Graphics& g)
{
    const auto area = getLocalBounds().toFloat().reduced (0.5f);
    g.setColour (juce::Colours::white.withAlpha (style == 1 ? 0.12f : 0.55f));
    g.fillRoundedRectangle (area, 2.0f);
    if (selected >= 0 && selected < (int)optionLists.size())
        optionLists[(size_t)selected].paint (g);
}

void TRQHUDControl::mouseDown (const juce::MouseEvent& e)
{
    if (e.mods.isPopupMenu())
    {
        TRQComponent::mouseDown (e);
        return;
    }
    const int next = selected == 0 ? 1 : 0;
    gestures.setRealInGesture (parameterIndex, optionValues[next]);
}
