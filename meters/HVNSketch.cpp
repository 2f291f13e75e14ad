#include "meters/HVNSketch.h"

#include <stdexcept>

namespace
{
// Input and output bars on the outer side of their faders' thumbs, against the dB
// scales the artwork draws for them (0 dB level with the track's top, -60 with its
// bottom); the gain-reduction history in the free stretch of the centre strip
// between the mark and the noise switch (the task buttons own the strip below the
// power switch, and GL draws the meters under every component); the detector LED
// right of the compressor's heading, which the artwork keeps clear of it.
const HVNSketchRow rows[] = {
    {0, {17.0f, 54.0f, 4.0f, 218.0f}, false, false},
    {1, {333.0f, 54.0f, 4.0f, 218.0f}, false, false},
    {2, {399.0f, 52.0f, 54.0f, 64.0f}, true, false},
    {3, {147.0f, 14.0f, 10.0f, 10.0f}, true, false},
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
