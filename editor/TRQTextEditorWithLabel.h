#pragma once

#include "editor/TRQComponentWithLabel.h"

// A captioned text field in the forms' face.
class TRQTextEditorWithLabel : public TRQComponentWithLabel<juce::TextEditor>
{
public:
    explicit TRQTextEditorWithLabel (const juce::String& caption, bool multiLine = false);

    juce::String getText() const { return field.getText(); }
    void setText (const juce::String& text);
};
