#pragma once

#include "editor/DraggableElement.h"
#include "editor/TRQMetaComponent.h"
#include "editor/TRQPresetElement.h"
#include "state/TRQSignals.h"

// One section of the preset browser: a heading strip that opens and closes it, and
// its rows under it. Rows of a user section with two or more presets can be dragged
// into a new order.
class TRQHeaderElement : public TRQMetaComponent, public TRQSignals::Trackable
{
public:
    static constexpr int headingHeight = 20;

    TRQHeaderElement (unsigned sectionIndex, const juce::String& title, bool open, bool movable);

    // (section, now open)
    TRQSignals::Signal<void (unsigned, bool)> toggled;
    // (preset index, new position within the section)
    TRQSignals::Signal<void (std::uint32_t, std::uint32_t)> moved;

    void addRow (std::shared_ptr<TRQPresetElement> row);
    const std::vector<std::shared_ptr<TRQPresetElement>>& getRows() const { return rows; }
    unsigned getSectionIndex() const { return sectionIndex; }
    const juce::String& getTitle() const { return title; }
    bool isOpen() const { return open; }
    void setOpen (bool shouldBeOpen);
    int preferredHeight() const;
    void setStyle (int newStyle);
    DraggableElement& getDraggable() { return *draggable; }

    // Called by a row being dragged; false when the section can't be reordered.
    bool beginRowDrag (TRQPresetElement& row);
    void dragRowTo (float yInHeader);
    void dropRow();

    void paint (juce::Graphics& g) override;
    void resized() override;
    void mouseDown (const juce::MouseEvent& e) override;

private:
    unsigned sectionIndex;
    juce::String title;
    bool open;
    bool movable;
    int style = 0;
    std::vector<std::shared_ptr<TRQPresetElement>> rows;
    std::shared_ptr<DraggableElement> draggable;
};
