#pragma once

#include "editor/TRQAnimatedValue.h"

// The life of a passing value display: it comes in, holds while changes keep
// arriving, and goes. Times are milliseconds of one steady clock.
class TRQTransientValue
{
public:
    static constexpr double fadeInMs = 125.0;
    static constexpr double holdMs = 1500.0;
    static constexpr double fadeOutMs = 250.0;

    // A new change: come in from wherever the opacity is, and hold from now.
    void show (double nowMs);
    void end() { valueDisplayActive = false; }
    // Starts the fade-out once the hold is over, and ends when it has run.
    void advance (double nowMs);

    bool isActive() const { return valueDisplayActive; }
    float alpha (double nowMs) const { return valueDisplayActive ? opacity.valueAt (nowMs) : 0.0f; }
    bool isMoving (double nowMs) const { return valueDisplayActive && opacity.isMoving (nowMs); }

private:
    TRQAnimatedValue opacity{fadeInMs};
    double shownMs = 0.0;
    bool valueDisplayActive = false;
};
