#include "meters/HVNLEDMeter.h"

#include "meters/TRQShapeRenderer.h"

namespace
{
juce::Colour quad (float r, float g, float b, float a)
{
    return juce::Colour::fromFloatRGBA (r, g, b, a);
}
} // namespace

HVNLEDMeter::HVNLEDMeter (uint32_t id, float lo, float hi)
    : HVNLevelMeter (id, lo, hi)
{
    law = [this] (float x)
    {
        const float n = (x - minimum) / (maximum - minimum);
        return n * n;
    };
    setDarkMode (false);
}

void HVNLEDMeter::setDarkMode (bool on)
{
    HVNLevelMeter::setDarkMode (on);
    base = quad (0.0f, 0.0f, 0.0f, 0.2f);
    lit = quad (1.0f, 0.0f, 0.0f, 0.8f);
    highlight = quad (1.0f, 1.0f, 1.0f, 0.2f);
    if (on)
    {
        // The dark panel wants a lighter off state: a quarter of the way to white.
        base = base.interpolatedWith (highlight, 0.25f);
    }
}

void HVNLEDMeter::render (TRQShapeRenderer& renderer)
{
    if (hidden)
        return;
    const auto& r = row->rectangle;
    renderer.setRegion (r);
    const juce::Point<float> centre (r.getWidth() * 0.5f + offset, r.getHeight() * 0.5f);
    renderer.strokeWidth = 1.5f;
    renderer.gradientFraction = 0.35f;
    renderer.setColour (base.withMultipliedAlpha (alpha));
    renderer.gradientCircle (centre, radius);
    renderer.gradientFraction = 1.0f;
    renderer.setColour (lit.withAlpha (lit.getFloatAlpha() * alpha * glow * position));
    renderer.gradientCircle (centre, radius);
}
