#include "state/ParameterText.h"

#include "state/ParameterCatalogue.h"
#include "state/ParameterRange.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <stdexcept>

namespace
{
// Labels match values within this distance, so that a value a rounding away from -96
// still reads "Off".
constexpr float specialTolerance = 0.01f;

std::string format (const char* pattern, double x)
{
    char buffer[128];
    const int n = std::snprintf (buffer, sizeof (buffer), pattern, x);
    if (n < 0)
        return {};
    if (static_cast<std::size_t> (n) < sizeof (buffer))
        return std::string (buffer, static_cast<std::size_t> (n));
    std::string big (static_cast<std::size_t> (n) + 1, '\0');
    std::snprintf (big.data(), big.size(), pattern, x);
    big.resize (static_cast<std::size_t> (n));
    return big;
}

const SpecialLabel* specialLabelAt (const ParameterSpec& row, float real)
{
    for (const auto& special : row.specialLabels)
        if (std::fabs (real - special.value) < specialTolerance && !special.label.empty())
            return &special;
    return nullptr;
}

bool showsKilohertz (const ParameterSpec& row, float real)
{
    return row.logarithmic && row.valueKind == ValueKind::frequency && real >= 1000.0f;
}
} // namespace

std::string valueToText (ParameterId id, float real, bool forceSingleLabel)
{
    const ParameterSpec& row = ParameterCatalogue::row (id);

    if (row.stateLabels.size() > 1)
    {
        // Cut to an integer, so -0.5 is state 0; what cuts to no state is an error.
        if (!(real > -1.0f && real < static_cast<float> (row.stateLabels.size())))
            throw std::out_of_range ("invalid vector<T> subscript");
        const auto index = static_cast<std::size_t> (real < 0.0f ? 0.0f : real);
        return row.stateLabels[index];
    }
    if (row.stateLabels.size() == 1)
    {
        if (row.toggleKind != 1 || forceSingleLabel)
            return row.stateLabels.front();
        return real > 0.0f ? "On" : "Off";
    }

    if (const SpecialLabel* special = specialLabelAt (row, real))
        return special->label;

    if (showsKilohertz (row, real))
        return format (real < 10000.0f ? "%0.2f" : "%0.1f", real / 1000.0);

    if (row.valueKind == ValueKind::time)
    {
        double x = real;
        const double step = stepAt (id, real);
        int decimals = static_cast<int> (std::ceil (std::max (0.0, -std::log10 (step))));
        if (x >= 1000.0)
        {
            x /= 1000.0;
            decimals += 3;
        }
        const std::string pattern = "%0." + std::to_string (decimals) + "f";
        return format (pattern.c_str(), x);
    }

    return format (row.format.c_str(), real);
}

std::string unitText (ParameterId id, float real)
{
    const ParameterSpec& row = ParameterCatalogue::row (id);
    if (specialLabelAt (row, real) != nullptr)
        return {};
    if (showsKilohertz (row, real))
        return "kHz";
    if (row.valueKind == ValueKind::time && real >= 1000.0f)
        return "s";
    return row.unit;
}

bool isSpecialValue (ParameterId id, float real)
{
    return specialLabelAt (ParameterCatalogue::row (id), real) != nullptr;
}
