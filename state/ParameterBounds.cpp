#include "state/ParameterBounds.h"

#include <cstddef>

namespace
{
constexpr std::array<bool, 2> fixedStep{false, false};
constexpr float noScaling = -1.0f;

// The catalogue copies its ranges, defaults and steps from here, so that each number
// is written once.
constexpr std::array<ParameterBounds, kNumParameters> boundsTable{{
    // id, min, max, default, step, coarseStep, mediumStep
    {0, 0.0f, 1.0f, 1.0f, 1.0f, 1.0f, 1.0f, fixedStep, noScaling, "power"},
    {1, -24.0f, 12.0f, 0.0f, 0.1f, 3.0f, 0.5f, fixedStep, noScaling, "in"},
    {2, 0.0f, 100.0f, 50.0f, 1.0f, 5.0f, 1.0f, fixedStep, noScaling, "cm"},
    {3, 0.0f, 100.0f, 15.0f, 1.0f, 10.0f, 1.0f, fixedStep, noScaling, "wf"},
    {4, 0.0f, 100.0f, 50.0f, 1.0f, 10.0f, 1.0f, fixedStep, noScaling, "lf"},
    {5, -24.0f, 12.0f, 0.0f, 0.1f, 3.0f, 0.5f, fixedStep, noScaling, "out"},
    {6, 0.0f, 100.0f, 100.0f, 1.0f, 10.0f, 1.0f, fixedStep, noScaling, "mix"},
    {7, 0.1f, 8.0f, 1.0f, 0.1f, 1.0f, 0.1f, fixedStep, noScaling, "cat"},
    {8, 0.1f, 8.0f, 1.0f, 0.1f, 1.0f, 0.1f, fixedStep, noScaling, "cre"},
    {9, 0.0f, 1.0f, 1.0f, 1.0f, 1.0f, 1.0f, fixedStep, noScaling, "csl"},
    {10, 0.0f, 100.0f, 100.0f, 1.0f, 10.0f, 1.0f, fixedStep, noScaling, "wfm"},
    {11, 0.0f, 2.0f, 0.0f, 1.0f, 1.0f, 1.0f, fixedStep, noScaling, "wfs"},
    {12, 0.0f, 360.0f, 0.0f, 1.0f, 15.0f, 1.0f, fixedStep, noScaling, "wfp"},
    {13, -96.0f, 12.0f, 0.0f, 0.1f, 3.0f, 1.0f, fixedStep, noScaling, "lfng"},
    {14, 0.0f, 2.0f, 0.0f, 1.0f, 1.0f, 1.0f, fixedStep, noScaling, "lft"},
    {15, 0.0f, 100.0f, 0.0f, 1.0f, 10.0f, 1.0f, fixedStep, noScaling, "lfc"},
    {16, 0.0f, 1.0f, 0.0f, 1.0f, 1.0f, 1.0f, fixedStep, noScaling, "hq"},
    {17, -36.0f, 0.0f, -18.0f, 0.1f, 3.0f, 0.5f, fixedStep, noScaling, "drl"},
    {18, 0.0f, 1.0f, 0.0f, 1.0f, 1.0f, 1.0f, fixedStep, noScaling, "scl"},
    {19, 0.0f, 100.0f, 0.0f, 1.0f, 10.0f, 1.0f, fixedStep, noScaling, "sce"},
    {20, -100.0f, 100.0f, 0.0f, 1.0f, 10.0f, 1.0f, fixedStep, noScaling, "sct"},
}};

constexpr bool oneRowPerIdInOrder()
{
    for (std::size_t i = 0; i < boundsTable.size(); ++i)
        if (boundsTable[i].id != i)
            return false;
    return true;
}
static_assert (oneRowPerIdInOrder());

constexpr ParameterBounds emptyBounds{kNumParameters, 0.0f, 0.0f,      0.0f,      1.0f,
                                      1.0f,           1.0f, fixedStep, noScaling, ""};
} // namespace

const ParameterBounds& ParameterBounds::of (ParameterId id) noexcept
{
    return isValidParameterId (id) ? boundsTable[id] : emptyBounds;
}

const ParameterBounds* ParameterBounds::find (ParameterId id) noexcept
{
    return isValidParameterId (id) ? &boundsTable[id] : nullptr;
}

const std::array<ParameterBounds, kNumParameters>& ParameterBounds::table() noexcept
{
    return boundsTable;
}
