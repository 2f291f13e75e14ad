#pragma once

#include <juce_graphics/juce_graphics.h>

#include <cstdint>

class TRQShapeRenderer;

// Where a meter element sits on the 793 x 380 canvas, and when it is drawn.
struct HVNSketchRow
{
    uint32_t drawingId = 0;
    juce::Rectangle<float> rectangle;
    bool optional = false;     // skipped unless metering is fully on
    bool advancedPane = false; // drawn only while the advanced pane is open
};

// One moving element of the meter sketch, advanced by the frame's elapsed time and
// drawn on the GL thread.
class HVNSketch
{
public:
    // Throws std::out_of_range("invalid map<K, T> key") for an id without a row.
    explicit HVNSketch (uint32_t drawingId);
    virtual ~HVNSketch();

    virtual void update (float seconds, double now) = 0;
    virtual void render (TRQShapeRenderer& renderer) = 0;
    virtual void mouseDown() {}
    virtual void mouseUp() {}
    virtual void reset() {}
    virtual void setDarkMode (bool on) { darkMode = on; }

    const HVNSketchRow& getRow() const { return *row; }
    bool isInsideCentrePane() const { return insideCentrePane; }

    // The rows of the meter elements on the panel.
    static const HVNSketchRow& rowFor (uint32_t drawingId);

protected:
    const uint32_t drawingId;
    const HVNSketchRow* row;
    bool insideCentrePane = false;
    bool darkMode = false;
};
