#pragma once

#include "meters/HVNSketch.h"

#include <functional>

class MeterData;

// A bar that follows a level with attack and release ballistics and fades as a whole.
class HVNLevelMeter : public HVNSketch
{
public:
    HVNLevelMeter (uint32_t drawingId, float minimum, float maximum);

    void update (float seconds, double now) override;
    void render (TRQShapeRenderer& renderer) override;
    void reset() override;

    // Listener of the meter channel: the block's peak in dB, clamped to the range.
    void setLevelFromBuffer (const MeterData& record);

    float minimum, maximum;
    bool clamp = true, hold = true, smoothing = true, hidden = false;
    int orientation = 0;
    bool inverted = false;
    float barThickness = 8.0f;
    float offsetX = 0.0f, offsetY = 0.0f;
    float target = 0.0f, displayed = 0.0f, activity = 0.0f, position = 0.0f;
    float alpha = 1.0f, alphaTarget = 1.0f;
    float attackMs = 10.0f, releaseMs = 250.0f;
    juce::Colour fill{0xffc24e54}, fillDark{0xffe0676d}, back{0x14000000}, backDark{0x18ffffff};
    std::function<float (float)> law;
};
