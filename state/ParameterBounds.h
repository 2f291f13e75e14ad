#pragma once

#include "state/ParameterId.h"

#include <array>

// The numbers of a parameter without the heavy catalogue row, for the conversion and
// snapping path, which runs on every change and must never allocate.
struct ParameterBounds
{
    ParameterId id;
    float min;
    float max;
    float defaultValue;
    float step;
    float coarseStep;
    float mediumStep;
    // Either flag makes the snapping step grow with the value so that values of 1000
    // and above keep three significant digits.
    std::array<bool, 2> enlargeStep;
    // Divides the limits of the range when above 0; negative means no scaling.
    float scale;
    const char* shortKey;

    // The row of a valid id; an invalid id gets an empty row (range 0..0, step 1).
    static const ParameterBounds& of (ParameterId id) noexcept;
    // The row of a valid id, or nullptr.
    static const ParameterBounds* find (ParameterId id) noexcept;
    static const std::array<ParameterBounds, kNumParameters>& table() noexcept;
};
