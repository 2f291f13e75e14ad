#pragma once

#include "editor/TRQComponent.h"

// A block of text laid out once per size, wrapped and justified.
class TRQTextDisplay : public TRQComponent
{
public:
    TRQTextDisplay (juce::Font font, juce::Justification justification);

    void setText (const juce::String& text);
    const juce::String& getText() const { return text; }
    void setFont (const juce::Font& newFont);
    void setColour (juce::Colour colour);
    // Height the text needs at the present width.
    float getTextHeight() const { return layout.getHeight(); }

    void paint (juce::Graphics& g) override;
    void resized() override;

private:
    void layOut();

    juce::String text;
    juce::Font font;
    juce::Justification justification;
    juce::Colour colour{juce::Colours::white};
    juce::TextLayout layout;
};
