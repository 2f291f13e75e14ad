#pragma once

#include <cmath>
#include <cstdint>

// Context menu item ids: a Cantor pair of (action, value), so one integer carries
// both what to do and with which value (a language, a dark mode) through JUCE's
// popup result.
namespace TRQMenuItemId
{
enum Action
{
    noAction = 0,
    copySettings = 1,
    pasteSettings = 2,
    resetAllToFactory = 3,
    resetAllToPreset = 4,
    saveAsNewPreset = 5,
    updatePreset = 6,
    resetParameter = 7,
    readAbout = 8,
    versionLine = 9,
    alwaysOpenAdvancedPane = 10,
    doubleClickKeyEntry = 11,
    enableMetering = 12,
    enableScrollInput = 13,
    sizeSmall = 14,
    sizeStandard = 15,
    sizeLarge = 16,
    sizeExtraLarge = 17,
    sizeXXL = 18,
    language = 19,
    lockParameter = 20,
    darkMode = 21
};

constexpr int firstAction = copySettings;
constexpr int lastAction = darkMode;

struct Decoded
{
    int action = 0;
    int value = 0;
};

constexpr int encode (int action, int value)
{
    return ((action + value) * (action + value + 1)) / 2 + value;
}

inline Decoded decode (int id)
{
    if (id < 0)
        return {};
    const auto n = static_cast<std::int64_t> (id);
    auto w = static_cast<std::int64_t> (
        std::floor ((std::sqrt (8.0 * static_cast<double> (n) + 1.0) - 1.0) / 2.0));
    // The square root may land a hair off for large ids; settle on the exact row.
    while (w * (w + 1) / 2 > n)
        --w;
    while ((w + 1) * (w + 2) / 2 <= n)
        ++w;
    const auto value = n - w * (w + 1) / 2;
    return {static_cast<int> (w - value), static_cast<int> (value)};
}

constexpr bool isKnownAction (int action)
{
    return action >= firstAction && action <= lastAction;
}
} // namespace TRQMenuItemId
