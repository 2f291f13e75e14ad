#pragma once

#include "state/ParameterId.h"

// Conversions between a parameter's real value (catalogue units) and the normalised
// 0..1 value the host and the saved state use. Straight-line code on constants: safe
// on any thread, never allocating. An invalid id gives 0 everywhere.

// No clamping: a real value outside the range maps outside 0..1.
float toNormalised (ParameterId id, float real) noexcept;

// Snapped to the parameter's step and held within its range.
float fromNormalised (ParameterId id, float normalised) noexcept;

// The snapping step at a value: the row's step, grown for large values where the row
// asks for it.
float stepAt (ParameterId id, float real) noexcept;

// Rounds to a multiple of the step, halves away from zero.
float snapToStep (ParameterId id, float real) noexcept;

// Not a number gives the bottom of the range.
float snapAndClamp (ParameterId id, float real) noexcept;

// Whether a value lies within the range a control may set, by the literal bounds that
// typed and pasted values are checked against.
bool isWithinAcceptedRange (ParameterId id, float real) noexcept;
