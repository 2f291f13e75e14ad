#include "editor/TRQTextEditorWithLabel.h"

#include "editor/TRQFontFallback.h"

TRQTextEditorWithLabel::TRQTextEditorWithLabel (const juce::String& captionText, bool multiLine)
    : TRQComponentWithLabel<juce::TextEditor> (captionText)
{
    field.setMultiLine (multiLine, true);
    field.setReturnKeyStartsNewLine (false);
    field.setTabKeyUsedAsCharacter (false);
    field.setFont (juce::Font ("Arial Unicode MS", "Regular", 18.0f));
    field.setColour (juce::TextEditor::backgroundColourId, juce::Colours::black.withAlpha (0.18f));
    field.setIndents (6, 5);
    // Text in a script the face lacks switches the field to one that has it.
    field.onTextChange = [this]
    {
        const auto font =
            TRQFontFallback::fontFor (field.getText(), juce::Font ("Arial Unicode MS", "Regular", 18.0f));
        if (font.getTypefaceName() != field.getFont().getTypefaceName())
            field.applyFontToAllText (font, true);
    };
}

void TRQTextEditorWithLabel::setText (const juce::String& text)
{
    field.setText (text, true);
}
