#include "state/ParameterRange.h"

#include "state/ParameterBounds.h"

#include <algorithm>
#include <cmath>

namespace
{
// -ln 0.1, 1 / ln 80 and ln 80: the time-constant multipliers 0.1 to 8 take equal
// travel for equal ratios.
constexpr double logOffset = 2.3025851;
constexpr double logToNormalised = 0.2282049;
constexpr double logSpan = 4.3820267;
} // namespace

float toNormalised (ParameterId id, float real) noexcept
{
    const double x = real;
    switch (id)
    {
    case 0:
    case 9:
    case 16:
    case 18:
        return real;
    case 1:
    case 5:
        return static_cast<float> ((x + 24.0) / 36.0);
    case 2:
    case 3:
    case 4:
    case 6:
    case 10:
    case 15:
    case 19:
        return static_cast<float> (x / 100.0);
    case 7:
    case 8:
        return static_cast<float> ((std::log (x) + logOffset) * logToNormalised);
    case 11:
    case 14:
        return static_cast<float> (x * 0.5);
    case 12:
        return static_cast<float> (x / 360.0);
    case 13:
        return static_cast<float> ((x + 96.0) / 108.0);
    case 17:
        return static_cast<float> ((x + 36.0) / 36.0);
    case 20:
        return static_cast<float> ((x + 100.0) / 200.0);
    default:
        return 0.0f;
    }
}

namespace
{
double unsnapped (ParameterId id, double n) noexcept
{
    switch (id)
    {
    case 0:
    case 9:
    case 16:
    case 18:
        return n;
    case 1:
    case 5:
        return 36.0 * n - 24.0;
    case 2:
    case 3:
    case 4:
    case 6:
    case 10:
    case 15:
    case 19:
        return 100.0 * n;
    case 7:
    case 8:
        return std::exp (logSpan * n - logOffset);
    case 11:
    case 14:
        return 2.0 * n;
    case 12:
        return 360.0 * n;
    case 13:
        return 108.0 * n - 96.0;
    case 17:
        return 36.0 * n - 36.0;
    case 20:
        return 200.0 * n - 100.0;
    default:
        return 0.0;
    }
}
} // namespace

float fromNormalised (ParameterId id, float normalised) noexcept
{
    if (!isValidParameterId (id))
        return 0.0f;
    return snapAndClamp (id, static_cast<float> (unsnapped (id, normalised)));
}

float stepAt (ParameterId id, float real) noexcept
{
    if (!isValidParameterId (id))
        return 0.0f;
    const ParameterBounds& b = ParameterBounds::of (id);
    double step = b.step;
    if (b.enlargeStep[0] || b.enlargeStep[1])
    {
        // Three significant digits from 1000 upwards. log10 of zero or less is not a
        // number or -inf, which leaves the step as it is.
        const double decades = std::floor (std::log10 (static_cast<double> (real))) - 2.0;
        if (decades > 0.0)
            step *= std::pow (10.0, decades);
    }
    return static_cast<float> (step);
}

float snapToStep (ParameterId id, float real) noexcept
{
    if (!isValidParameterId (id))
        return 0.0f;
    const double step = stepAt (id, real);
    // A fractional step such as 0.1 has no exact binary form: multiplying by it would
    // land one float off the decimal (9 x 0.1f is not 0.9f), so divide by its
    // reciprocal instead, which makes a snapped value snap to itself.
    const double perUnit = std::round (1.0 / step);
    if (step < 1.0 && std::fabs (perUnit * step - 1.0) < 1e-6)
        return static_cast<float> (std::round (real * perUnit) / perUnit);
    return static_cast<float> (std::round (real / step) * step);
}

float snapAndClamp (ParameterId id, float real) noexcept
{
    if (!isValidParameterId (id))
        return 0.0f;
    const ParameterBounds& b = ParameterBounds::of (id);
    float low = b.min;
    float high = b.max;
    if (b.scale > 0.0f)
    {
        low = std::max (b.min, b.min / b.scale);
        high = std::min (b.max, b.max / b.scale);
    }
    // Not a number (a negative time constant through the logarithm, a host's NaN)
    // would pass the clamp untouched: it goes to the bottom of the range.
    const float snapped = snapToStep (id, real);
    return std::isnan (snapped) ? low : std::clamp (snapped, low, high);
}

bool isWithinAcceptedRange (ParameterId id, float real) noexcept
{
    float low = 0.0f;
    float high = 0.0f;
    switch (id)
    {
    case 1:
    case 5:
        low = -24.0f;
        high = 12.0f;
        break;
    case 7:
    case 8:
        low = 0.1f;
        high = 8.0f;
        break;
    case 13:
        low = -96.0f;
        high = 12.0f;
        break;
    case 17:
        low = -36.0f;
        high = 0.0f;
        break;
    case 20:
        low = -100.0f;
        high = 100.0f;
        break;
    case 0:
    case 9:
    case 16:
    case 18:
        high = 1.0f;
        break;
    case 2:
    case 3:
    case 4:
    case 6:
    case 10:
    case 15:
    case 19:
        high = 100.0f;
        break;
    case 11:
    case 14:
        high = 2.0f;
        break;
    case 12:
        high = 360.0f;
        break;
    default:
        break;
    }
    return real >= low && real <= high;
}
