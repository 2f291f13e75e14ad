#pragma once

#include <juce_graphics/juce_graphics.h>

#include <atomic>

// What the GL pass needs to draw a control's keyboard focus ring. Written on the
// message thread, read on the GL thread; the few fields travel together under a
// spin flag that is held only for a copy.
class TRQFocusRing
{
public:
    struct Ring
    {
        juce::Rectangle<float> bounds;
        float radius = 0.0f;
        float width = 4.0f;
        float colour[4] = {0.0f, 0.0f, 0.0f, 0.0f};
    };

    virtual ~TRQFocusRing() = default;

    // rectangle in the component's own units; grown by the outset on each side.
    void setRing (juce::Rectangle<float> rectangle, float radius, juce::Colour colour);
    Ring getRing() const;
    bool takeChanged() { return changed.exchange (false); }
    bool hasRing() const { return ringVisible.load(); }
    void setRingVisible (bool visible) { ringVisible.store (visible); }

    float outset = 3.0f;

private:
    Ring ring;
    mutable std::atomic_flag busy = ATOMIC_FLAG_INIT;
    std::atomic<bool> changed{false};
    std::atomic<bool> ringVisible{true};
};
