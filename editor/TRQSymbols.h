#pragma once

#include <juce_core/juce_core.h>

// Code points of the icon font "Hvn Symbols" (tools/artwork/make_fonts.py draws
// the glyphs; both lists must agree).
namespace TRQSymbols
{
constexpr juce::juce_wchar lock = 0xE102;
constexpr juce::juce_wchar undo = 0xE110;
constexpr juce::juce_wchar redo = 0xE111;
constexpr juce::juce_wchar nextPreset = 0xE114;
constexpr juce::juce_wchar previousPreset = 0xE115;
constexpr juce::juce_wchar advancedControls = 0xE120;
constexpr juce::juce_wchar advancedControlsClose = 0xE121;
constexpr juce::juce_wchar getCurrentSettings = 0xE122;
constexpr juce::juce_wchar dismiss = 0xE130;
constexpr juce::juce_wchar rowMenu = 0xE131;
constexpr juce::juce_wchar arrowUp = 0xE140;
constexpr juce::juce_wchar arrowDown = 0xE141;
constexpr juce::juce_wchar arrowLeft = 0xE142;
constexpr juce::juce_wchar arrowRight = 0xE143;

constexpr juce::juce_wchar unitDecibelPerOctave = 0xE800;
constexpr juce::juce_wchar unitKilohertz = 0xE801;
constexpr juce::juce_wchar unitHertz = 0xE802;
constexpr juce::juce_wchar unitDecibel = 0xE803;
constexpr juce::juce_wchar unitPercent = 0xE804;
constexpr juce::juce_wchar unitSecond = 0xE805;
constexpr juce::juce_wchar unitMillisecond = 0xE806;
constexpr juce::juce_wchar unitDegree = 0xE807;
constexpr juce::juce_wchar unitBeatsPerMinute = 0xE808;
constexpr juce::juce_wchar unitTimes = 0xE809;
} // namespace TRQSymbols
