#pragma once

#include "state/ParameterId.h"

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

// x, y, width, height in face pixels.
struct ParameterRect
{
    float x = 0.0f;
    float y = 0.0f;
    float width = 0.0f;
    float height = 0.0f;
};

// Red, green, blue in 0..1.
struct ParameterColour
{
    float red = 0.0f;
    float green = 0.0f;
    float blue = 0.0f;
};

// A value that reads as a word instead of a number.
struct SpecialLabel
{
    float value = 0.0f;
    std::string label;
};

// A scale label of a fader and its extent along the fader's axis inside the control
// (y for vertical faders, x for horizontal ones).
struct ScaleMark
{
    float value = 0.0f;
    float top = 0.0f;
    float bottom = 0.0f;
};

// One row of the parameter catalogue: everything the plug-in knows about a parameter.
struct ParameterSpec
{
    ParameterId id = 0;
    std::uint32_t order = 0;
    float defaultValue = 0.0f;
    float min = 0.0f;
    float max = 1.0f;
    bool horizontal = false;
    float mediumStep = 1.0f;
    float step = 1.0f;
    float coarseStep = 1.0f;
    std::string name;
    std::string identifier;
    float labelScale = 0.0f;
    std::vector<ParameterId> dependents;
    ParameterColour lightColour;
    ParameterColour darkColour;
    ParameterRect frame;
    ParameterRect innerFrame;
    std::string shortKey;
    std::int32_t lowerPartner = -1;
    std::int32_t upperPartner = -1;
    float partnerRatio = -1.0f;
    std::uint32_t valueKind = 0;
    std::uint32_t toggleKind = 0;
    std::uint32_t controlStyle = 0;
    bool discrete = false;
    bool logarithmic = false;
    std::uint32_t pane = 0;
    std::uint32_t widthHint = 0;
    std::vector<ParameterRect> stateFrames;
    std::vector<std::string> stateLabels;
    std::vector<std::string> longLabels;
    std::string unit;
    std::string format;
    std::vector<SpecialLabel> specialLabels;
    std::vector<std::vector<ParameterId>> lockFrom;
    std::vector<std::vector<ParameterId>> lockTo;
    std::map<float, std::vector<ParameterId>> enableMap;
    std::vector<ParameterId> enableList;
    std::map<ParameterId, ParameterId> linkedByPairs;
    std::array<ParameterId, 2> linkedPrimary{};
    std::array<ParameterId, 2> linkedSecondary{};
    std::vector<ScaleMark> scaleMarks;
    float numSteps = 1.0f;
    // Per-state value maps carried by the stereo-link switch; nothing in the
    // parameter path reads them.
    std::map<std::uint32_t, std::map<std::uint32_t, float>> stateValueMaps;
};

// Value kinds that select a number formatting and a control family.
namespace ValueKind
{
constexpr std::uint32_t frequency = 5;
constexpr std::uint32_t time = 8;
} // namespace ValueKind

// The count the host gets from getNumSteps: the catalogue's figure cut to an integer,
// and 1 where that gives less than 2.
inline int hostStepCount (float numSteps)
{
    const int n = static_cast<int> (numSteps);
    return n < 2 ? 1 : n;
}
