#include "meters/HVNGRHistory.h"

#include "meters/SharedMeterTypes.h"
#include "meters/TRQShapeRenderer.h"

#include <algorithm>
#include <cmath>

HVNGRHistory::HVNGRHistory (uint32_t id, float floor)
    : HVNSketch (id)
    , columns ((uint32_t)std::max (2L, std::lround (row->rectangle.getWidth())))
    , floorDb (floor)
{
    history.assign (columns, 0.0f);
    xPositions.resize (columns);
    yPositions.resize (columns);
    const float width = row->rectangle.getWidth();
    for (uint32_t i = 0; i < columns; ++i)
        xPositions[i] = (float)i / (float)(columns - 1) * width;
    areaVertices.reserve (2 * columns);
    edgeVertices.reserve (2 * columns);
    gridVertices.reserve (16);
}

void HVNGRHistory::reset()
{
    std::fill (history.begin(), history.end(), restValue);
    smoothed = latest = restValue;
    fraction = 0.0;
}

void HVNGRHistory::setValue (const MeterData& record, bool clampIt, double now)
{
    const auto* point = dynamic_cast<const SharedMeterTypes::DataPoint<float>*> (&record);
    if (point == nullptr)
        return;
    float value = point->value;
    if (clampIt)
        value = std::clamp (value, floorDb, ceilingDb);
    latest = value;
    lastDataTime.exchange (now);
}

void HVNGRHistory::update (float t, double now)
{
    float targetValue = latest;
    float exponent = t * decayRate;
    if (now - lastDataTime.load() > 0.1)
    {
        targetValue = restValue;
        latest = restValue;
        exponent = t * decayRate * 0.2f;
    }
    smoothed = std::exp (exponent) * (smoothed - targetValue) + targetValue;

    const double x = (double)columns * (double)t / (double)spanSeconds + fraction;
    const double k = std::floor (x);
    fraction = x - k;
    if (k < 0.0)
        reset(); // the clock stepped back
    else if (k >= 1.0)
    {
        const auto m = (uint32_t)std::min<double> (k, (double)columns);
        const float previousNewest = history[0];
        std::move_backward (history.begin(), history.end() - m, history.end());
        for (uint32_t i = 1; i < m; ++i)
        {
            const float w = (float)i / (float)m;
            history[i] = w * previousNewest + (1.0f - w) * smoothed;
        }
        history[0] = smoothed;
    }

    if (autoScale)
    {
        const float lowest = *std::min_element (history.begin(), history.end()) - 3.0f;
        const float c = std::exp (-0.5f * t);
        floorDb = std::clamp (c * (floorDb - lowest) + lowest, -48.0f, -12.0f);
    }

    // Levels to heights above the strip's bottom: the floor at 2, no reduction at
    // the top.
    const float height = row->rectangle.getHeight();
    const float range = ceilingDb - floorDb;
    for (uint32_t i = 0; i < columns; ++i)
        yPositions[i] = 2.0f + (history[i] - floorDb) / range * (height - 2.0f);
}

void HVNGRHistory::render (TRQShapeRenderer& renderer)
{
    if (hidden)
        return;
    const auto& r = row->rectangle;
    const float width = r.getWidth(), height = r.getHeight();
    renderer.setRegion (r);
    // Heights count up from the bottom of the strip, as GL's do; the renderer's
    // helpers take canvas units, which count down from its top.
    auto at = [height] (float x, float up) { return juce::Point<float> (x, height - up); };

    // One line every 12 dB, counted up from the floor, and a line along the top
    // while the scale follows the history.
    gridVertices.clear();
    if (showGrid)
    {
        const int k = (int)std::floor (floorDb / -12.0f) + 1;
        for (int i = 1; i < k; ++i)
        {
            const float y = -((float)i * 12.0f / floorDb * height);
            gridVertices.push_back (at (0.0f, y));
            gridVertices.push_back (at (width, y));
        }
    }
    if (autoScale)
    {
        gridVertices.push_back (at (0.0f, height - 0.5f));
        gridVertices.push_back (at (width, height - 0.5f));
    }
    renderer.setColour (darkMode ? gridDark : grid);
    if (!gridVertices.empty())
        renderer.lines (gridVertices, 1.0f);

    // The area stands on the bottom and reaches up to each column's level: full
    // height without reduction, down to 2 units at the floor. Its top edge is a
    // line of its own.
    areaVertices.clear();
    edgeVertices.clear();
    for (uint32_t i = 0; i < columns; ++i)
    {
        areaVertices.push_back (at (xPositions[i], -1.0f));
        areaVertices.push_back (at (xPositions[i], yPositions[i]));
        if (i > 0)
        {
            edgeVertices.push_back (at (xPositions[i - 1], yPositions[i - 1]));
            edgeVertices.push_back (at (xPositions[i], yPositions[i]));
        }
    }
    renderer.setColour (darkMode ? areaDark : area);
    renderer.triangleStrip (areaVertices);
    renderer.setColour (darkMode ? edgeDark : edge);
    renderer.lines (edgeVertices, edgeWidth);
}
