#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

// The layer over a section's rows that shows a row being dragged: a snapshot of it
// under the mouse and a line where it will land. It takes no clicks; the rows feed
// it.
class DraggableElement : public juce::Component
{
public:
    DraggableElement();

    void begin (int rowIndex, const juce::Image& snapshot, int rowHeight, int rowCount);
    // y in this component's units.
    void dragTo (float y);
    // The slot the row lands in (0 to rowCount, counted before it was taken out) and
    // ends the drag; -1 if none was running.
    int end();
    bool isDragging() const { return dragIndex >= 0; }
    int getDragIndex() const { return dragIndex; }
    int slotFor (float y) const;

    void paint (juce::Graphics& g) override;

private:
    int dragIndex = -1;
    int rowHeight = 1;
    int rowCount = 0;
    float mouseY = 0.0f;
    juce::Image image;
};
