#include "meters/HVNSketch.h"

#include <stdexcept>

namespace
{
// Input and output bars beside their faders' tracks, the gain-reduction history
// in the free stretch of the centre strip between the mark and the noise switch
// (the task buttons own the strip below the power switch, and GL draws the meters
// under every component), the detector LED by the compressor's heading.
const HVNSketchRow rows[] = {
    {0, {64.0f, 54.0f, 6.0f, 218.0f}, false, false},
    {1, {380.0f, 54.0f, 6.0f, 218.0f}, false, false},
    {2, {399.0f, 52.0f, 54.0f, 64.0f}, true, false},
    {3, {146.0f, 10.0f, 10.0f, 10.0f}, true, false},
};
} // namespace

const HVNSketchRow& HVNSketch::rowFor (uint32_t id)
{
    for (const auto& r : rows)
        if (r.drawingId == id)
            return r;
    throw std::out_of_range ("invalid map<K, T> key");
}

HVNSketch::HVNSketch (uint32_t id)
    : drawingId (id)
    , row (&rowFor (id))
{
    const auto& r = row->rectangle;
    insideCentrePane =
        r.getX() >= 395.0f && r.getX() <= 395.0f + 62.0f && r.getY() >= 0.0f && r.getY() <= 380.0f;
}

HVNSketch::~HVNSketch() = default;
