#pragma once

#include "editor/TRQDrawingList.h"

#include <juce_gui_basics/juce_gui_basics.h>

// A popup menu item whose label is a shape list of the drawing rather than text:
// the language names, each written in its own script. Draws its own highlight and
// tick, laid out as the look and feel lays out text items.
class TRQDrawableCustomComponent : public juce::PopupMenu::CustomComponent
{
public:
    // box is the frame of the shapes in drawing units; it is fitted to the item's height.
    TRQDrawableCustomComponent (TRQDrawingList shapes, juce::Rectangle<float> box);

    void getIdealSize (int& idealWidth, int& idealHeight) override;
    void paint (juce::Graphics& g) override;

    const TRQDrawingList& getShapes() const { return shapes; }

    static constexpr int standardHeight = 22;

private:
    TRQDrawingList shapes;
    juce::Rectangle<float> box;
};
