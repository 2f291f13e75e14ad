#pragma once

#include "editor/TRQDrawing.h"

#include <juce_gui_basics/juce_gui_basics.h>

// The panel's static artwork: the background and the group headings, in canvas
// units (793 x 380), for one language and style.
class TRQLayoutComponent : public juce::Component
{
public:
    TRQLayoutComponent();

    void paint (juce::Graphics& g) override;

    // Re-reads the background in the style (1 is dark), then the headings.
    void setStyle (int newStyle);
    // Re-reads the headings in the language.
    void setLanguage (TRQLanguage::Language newLanguage);

    int getStyle() const { return style; }
    TRQLanguage::Language getLanguage() const { return language; }
    const TRQDrawingList& backgroundList() const { return background; }
    const TRQDrawingList& headingList() const { return headings; }

private:
    TRQDrawing drawing;
    TRQDrawingList background;
    TRQDrawingList headings;
    TRQLanguage::Language language = TRQLanguage::English;
    int style = 0;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (TRQLayoutComponent)
};
