#pragma once

#include "state/ParameterId.h"

#include <string>

// The texts of a parameter's value, from its catalogue row. They read the heavy rows:
// message thread only. Texts are UTF-8.

// The number or word for a value, without unit. A switch shows its state label; with
// forceSingleLabel a one-label switch shows that label whatever the value. Throws
// std::out_of_range for a switch value past its last state.
std::string valueToText (ParameterId id, float real, bool forceSingleLabel);

// The unit shown after the value; empty for special values and unitless rows.
std::string unitText (ParameterId id, float real);

// True when the value shows a word (such as "Off") instead of a number.
bool isSpecialValue (ParameterId id, float real);

// Screens what the user typed into a value field before a number is read from it.
constexpr const char* kTypedValuePattern = "^[BDKTXbdktx0-9\\s\\.\\/\\-]+$";
