#include "editor/TRQFocusRing.h"

void TRQFocusRing::setRing (juce::Rectangle<float> rectangle, float radius, juce::Colour colour)
{
    Ring next;
    next.bounds = rectangle.expanded (outset);
    next.radius = radius > 0.0f ? outset + radius : radius;
    next.width = ring.width;
    next.colour[0] = colour.getFloatRed();
    next.colour[1] = colour.getFloatGreen();
    next.colour[2] = colour.getFloatBlue();
    next.colour[3] = colour.getFloatAlpha() * 0.65f;
    while (busy.test_and_set (std::memory_order_acquire))
    {
    }
    ring = next;
    busy.clear (std::memory_order_release);
    changed.store (true);
}

TRQFocusRing::Ring TRQFocusRing::getRing() const
{
    while (busy.test_and_set (std::memory_order_acquire))
    {
    }
    Ring copy = ring;
    busy.clear (std::memory_order_release);
    return copy;
}
