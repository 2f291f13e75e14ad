#pragma once

#include "meters/HVNLevelMeter.h"

// A lamp whose glow follows the square of the normalised level.
class HVNLEDMeter : public HVNLevelMeter
{
public:
    HVNLEDMeter (uint32_t drawingId, float minimum, float maximum);

    void render (TRQShapeRenderer& renderer) override;
    void setDarkMode (bool on) override;

    float radius = 4.0f, offset = 0.0f, glow = 1.0f;
    juce::Colour base, lit, highlight;
};
