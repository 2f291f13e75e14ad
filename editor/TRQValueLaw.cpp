#include "editor/TRQValueLaw.h"

#include "state/ParameterCatalogue.h"
#include "state/ParameterText.h"

#include <cmath>
#include <regex>

namespace TRQValueLaw
{
namespace
{
constexpr int buttonFlags = juce::ModifierKeys::leftButtonModifier | juce::ModifierKeys::rightButtonModifier |
                            juce::ModifierKeys::middleButtonModifier;

const ParameterSpec& rowOf (int index)
{
    return ParameterCatalogue::row (static_cast<ParameterId> (index));
}
} // namespace

bool modifiersAre (juce::ModifierKeys mods, int flags)
{
    return (mods.getRawFlags() & ~buttonFlags) == flags;
}

int stepModeFor (juce::ModifierKeys mods)
{
    if (modifiersAre (mods, juce::ModifierKeys::shiftModifier))
        return 2;
    if (modifiersAre (mods, juce::ModifierKeys::ctrlModifier))
        return 0;
    return 1;
}

float stepSize (int index, float, int mode)
{
    const auto& row = rowOf (index);
    switch (mode)
    {
    case 0:
        return row.step;
    case 2:
        return row.coarseStep;
    default:
        return row.mediumStep;
    }
}

float snapToStep (int index, float value, int mode)
{
    const float s = stepSize (index, value, mode);
    if (s <= 0.0f)
        return value;
    return std::round (value / s) * s;
}

float stepUpFrom (int index, float value, int mode, bool wraps)
{
    const auto& row = rowOf (index);
    if (wraps && value >= row.max)
        return row.min;
    const float s = stepSize (index, value, mode);
    float c = std::round (value / s) * s;
    if (c <= value)
        c += stepSize (index, c, mode);
    return c;
}

float stepDownFrom (int index, float value, int mode, bool wraps)
{
    const auto& row = rowOf (index);
    if (wraps && value <= row.min)
        return row.max;
    const float s = stepSize (index, value, mode);
    float c = std::round (value / s) * s;
    if (c >= value)
        c -= stepSize (index, c, mode);
    return c;
}

bool acceptsTypedCharacter (juce::juce_wchar character)
{
    static const std::regex pattern (kTypedValuePattern);
    const juce::String text = juce::String::charToString (character);
    return std::regex_match (text.toStdString(), pattern);
}

std::optional<float> parseTypedValue (const juce::String& text)
{
    if (text.isEmpty())
        return std::nullopt;
    if (!text.containsAnyOf ("0123456789"))
        return 0.0f;
    if (text.containsChar ('/'))
    {
        juce::StringArray tokens;
        tokens.addTokens (text, "/", "\"");
        if (tokens.size() == 2)
            return tokens[0].getFloatValue() / tokens[1].getFloatValue();
        return text.getFloatValue();
    }
    const int k = text.indexOfIgnoreCase ("k");
    if (k >= 0)
        return text.substring (0, k).getFloatValue() * 1000.0f;
    return text.getFloatValue();
}
} // namespace TRQValueLaw
