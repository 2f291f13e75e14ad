#pragma once

#include "meters/HVNSketch.h"

#include <atomic>
#include <vector>

class MeterData;

// The scrolling picture of gain reduction: one value per pixel column, newest on
// the left, drawn as an area standing on the strip's bottom whose top falls with
// the reduction, under a grid every 12 dB.
class HVNGRHistory : public HVNSketch
{
public:
    HVNGRHistory (uint32_t drawingId, float floorDb);

    void update (float seconds, double now) override;
    void render (TRQShapeRenderer& renderer) override;
    void reset() override;

    // Listener of the meter channel.
    void setValue (const MeterData& record, bool clampIt, double now);

    float spanSeconds = 1.5f;
    bool showGrid = true, autoScale = true, hidden = false;
    uint32_t columns;
    float floorDb;
    float ceilingDb = 0.0f;
    float smoothed = 0.0f;
    float decayRate = -30.003f;
    float latest = 0.0f;
    float restValue = 0.0f;
    double fraction = 0.0;
    std::atomic<double> lastDataTime{-1.0e9};
    std::vector<float> history, xPositions, yPositions;
    std::vector<juce::Point<float>> areaVertices, edgeVertices, gridVertices;
    float edgeWidth = 2.0f;
    // It sits on the red centre strip in both styles: white on red.
    juce::Colour area{0x59ffffff}, edge{0xe6ffffff}, grid{0x30ffffff};
    juce::Colour areaDark{0x59ffffff}, edgeDark{0xe6ffffff}, gridDark{0x30ffffff};
};
