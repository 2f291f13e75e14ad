#include "meters/HVNLevelMeter.h"

#include "meters/SharedMeterTypes.h"
#include "meters/TRQShapeRenderer.h"

#include <algorithm>
#include <cmath>

HVNLevelMeter::HVNLevelMeter (uint32_t id, float lo, float hi)
    : HVNSketch (id)
    , minimum (lo)
    , maximum (hi)
{
    reset();
}

void HVNLevelMeter::reset()
{
    target = displayed = inverted ? maximum : minimum;
    activity = minimum;
}

void HVNLevelMeter::setLevelFromBuffer (const MeterData& record)
{
    const auto* meter = dynamic_cast<const SharedMeterTypes::HVNAudioBufferMeter<double>*> (&record);
    if (meter == nullptr || meter->buffer == nullptr)
        return;
    const auto& buffer = *meter->buffer;
    const uint32_t frames = std::min (meter->frames, buffer.frames());
    double peak = 0.0;
    for (uint32_t c = 0; c < buffer.channels(); ++c)
    {
        const double* samples = buffer.channel (c);
        for (uint32_t i = 0; i < frames; ++i)
            peak = std::max (peak, std::abs (samples[i]));
    }
    const float db = (float)(8.685889638065037 * std::log (peak));
    // NaN compares false both ways and leaves the last value in place.
    if (db >= maximum)
        target = maximum;
    else if (db <= minimum)
        target = minimum;
    else if (db > minimum && db < maximum)
        target = db;
}

void HVNLevelMeter::update (float t, double)
{
    if (!smoothing)
        displayed = target;
    else
    {
        const bool rising = inverted ? target < displayed : target > displayed;
        const float timeConstant = rising ? attackMs : releaseMs;
        const float c = std::exp (-1000.0f * t / timeConstant);
        displayed = c * (displayed - target) + target;
    }
    if (hold)
    {
        if (target >= minimum)
            activity = std::exp (-100.0f * t) * (activity - maximum) + maximum;
        else
            activity = std::exp (-t) * (activity - minimum) + minimum;
    }
    position = law ? law (displayed) : (displayed - minimum) / (maximum - minimum);
    if (clamp)
        position = std::clamp (position, 0.0f, 1.0f);
    if (alpha != alphaTarget)
    {
        alpha = std::exp (-4.0f * t) * (alpha - alphaTarget) + alphaTarget;
        if (std::abs (alpha - alphaTarget) < 0.01f)
            alpha = alphaTarget;
    }
    hidden = alpha == 0.0f;
}

void HVNLevelMeter::render (TRQShapeRenderer& renderer)
{
    if (hidden)
        return;
    const auto& r = row->rectangle;
    renderer.setRegion (r);
    const float thickness = std::min (barThickness, orientation == 0 ? r.getWidth() : r.getHeight());
    const float across = ((orientation == 0 ? r.getWidth() : r.getHeight()) - thickness) * 0.5f;
    const float full = orientation == 0 ? r.getHeight() : r.getWidth();

    renderer.setColour ((darkMode ? backDark : back).withMultipliedAlpha (alpha));
    if (orientation == 0)
        renderer.fillRect ({offsetX + across, offsetY, thickness, full});
    else
        renderer.fillRect ({offsetX, offsetY + across, full, thickness});

    float length = full * position;
    float start = 0.0f;
    if (inverted)
        length = full - length; // hangs from the far end; the free part shrinks
    if (orientation == 0)
        start = inverted ? 0.0f : full - length;
    else
        start = inverted ? full - length : 0.0f;
    if (length < 0.0f)
    {
        start += length;
        length = -length;
    }
    renderer.setColour ((darkMode ? fillDark : fill).withMultipliedAlpha (alpha));
    if (orientation == 0)
        renderer.fillRect ({offsetX + across, offsetY + start, thickness, length});
    else
        renderer.fillRect ({offsetX + start, offsetY + across, length, thickness});
}
