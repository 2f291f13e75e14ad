#pragma once

#include <cstdint>

// A parameter's number: the row of the catalogue, the index in the host's list, the
// key in preset JSON and the suffix of its saved-state attribute. Never renumber.
using ParameterId = std::uint32_t;

// The plug-in has exactly this many parameters; loops over them use this constant
// and never a count read from a file.
constexpr std::uint32_t kNumParameters = 21;

constexpr bool isValidParameterId (ParameterId id)
{
    return id < kNumParameters;
}
