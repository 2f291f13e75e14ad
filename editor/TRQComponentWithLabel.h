#pragma once

#include "editor/TRQComponent.h"
#include "editor/TRQLookAndFeel.h"

// A caption above a field; a press on the caption gives the field the keyboard.
template<typename T>
class TRQComponentWithLabel : public TRQComponent
{
public:
    static constexpr int captionHeight = 20;

    explicit TRQComponentWithLabel (const juce::String& captionText)
        : caption (captionText)
    {
        addAndMakeVisible (field);
    }

    T& getField() { return field; }
    const juce::String& getCaption() const { return caption; }

    void paint (juce::Graphics& g) override
    {
        g.setColour (findColour (TRQLookAndFeel::modalTextColourId));
        g.setFont (juce::Font (TRQLookAndFeel::textFamily, "Bold", 16.0f));
        g.drawText (caption, 0, 0, getWidth(), captionHeight, juce::Justification::bottomLeft, true);
    }
    void resized() override
    {
        field.setBounds (0, captionHeight + 2, getWidth(), getHeight() - captionHeight - 2);
    }
    void mouseDown (const juce::MouseEvent&) override { field.grabKeyboardFocus(); }

protected:
    juce::String caption;
    T field;
};
