#pragma once

#include "editor/TRQComponent.h"
#include "state/TRQSignals.h"

class TRQHeaderElement;

// One row of the preset browser. A click loads its preset; a right-click or a click
// on the glyph at the right edge asks for the row menu; a drag moves it within a
// section of user presets.
class TRQPresetElement : public TRQComponent, public TRQSignals::Trackable
{
public:
    static constexpr int rowHeight = 22;

    TRQPresetElement (std::uint32_t presetIndex, const juce::String& name, bool isFactory, bool isDefault,
                      bool isCurrent);

    // (presetIndex, event, wants the menu)
    TRQSignals::Signal<void (std::uint32_t, const juce::MouseEvent&, bool)> pressed;

    std::uint32_t getPresetIndex() const { return presetIndex; }
    const juce::String& getName() const { return name; }
    bool getIsFactory() const { return isFactory; }
    bool getIsDefault() const { return isDefault; }
    bool getIsCurrent() const { return isCurrent; }
    void setCurrent (bool current);
    void setStyle (int newStyle);
    juce::Rectangle<int> menuGlyphArea() const;

    void paint (juce::Graphics& g) override;
    void mouseEnter (const juce::MouseEvent& e) override;
    void mouseExit (const juce::MouseEvent& e) override;
    void mouseDown (const juce::MouseEvent& e) override;
    void mouseDrag (const juce::MouseEvent& e) override;
    void mouseUp (const juce::MouseEvent& e) override;

private:
    TRQHeaderElement* header() const;

    std::uint32_t presetIndex;
    juce::String name;
    bool isFactory, isDefault, isCurrent;
    bool isHovered = false;
    bool dragging = false;
    bool menuOpened = false;
    int style = 0;
};
