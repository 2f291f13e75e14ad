#include "editor/TRQTextDisplay.h"

TRQTextDisplay::TRQTextDisplay (juce::Font f, juce::Justification j)
    : font (std::move (f))
    , justification (j)
{
    setInterceptsMouseClicks (false, false);
}

void TRQTextDisplay::setText (const juce::String& newText)
{
    text = newText;
    layOut();
}

void TRQTextDisplay::setFont (const juce::Font& newFont)
{
    font = newFont;
    layOut();
}

void TRQTextDisplay::setColour (juce::Colour c)
{
    colour = c;
    layOut();
}

void TRQTextDisplay::resized()
{
    layOut();
}

void TRQTextDisplay::layOut()
{
    if (getWidth() <= 0)
        return;
    juce::AttributedString s;
    s.append (text, font, colour);
    s.setJustification (justification);
    layout.createLayout (s, (float)getWidth());
    repaint();
}

void TRQTextDisplay::paint (juce::Graphics& g)
{
    layout.draw (g, getLocalBounds().toFloat());
}
