#pragma once

#include <juce_core/juce_core.h>

// A value that eases from where it is to a new target over a fixed time, read on
// the message thread at every refresh.
class TRQAnimatedValue
{
public:
    explicit TRQAnimatedValue (double durationMs = 100.0)
        : duration (durationMs)
    {
    }

    void setTarget (float target, double durationMs, double nowMs)
    {
        from = valueAt (nowMs);
        to = target;
        start = nowMs;
        duration = durationMs;
    }
    void jumpTo (float value)
    {
        from = to = value;
        start = 0.0;
    }
    // Ease-out cubic: starts at speed and lands softly.
    float valueAt (double nowMs) const
    {
        if (duration <= 0.0 || nowMs - start >= duration)
            return to;
        const double t = juce::jlimit (0.0, 1.0, (nowMs - start) / duration);
        const double e = 1.0 - std::pow (1.0 - t, 3.0);
        return (float)(from + (to - from) * e);
    }
    bool isMoving (double nowMs) const { return nowMs - start < duration && from != to; }
    float getTarget() const { return to; }

private:
    float from = 0.0f, to = 0.0f;
    double start = 0.0;
    double duration;
};
