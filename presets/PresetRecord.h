#pragma once

#include "state/ParameterId.h"
#include "toolkit/HVNChecked.h"

#include <juce_core/juce_core.h>

#include <array>
#include <cstdint>

// Which file a preset or section came from.
namespace PresetKind
{
constexpr std::uint32_t factory = 0;
constexpr std::uint32_t user = 1;
} // namespace PresetKind

// One preset of the merged list. Values are normalised; an absent one leaves its
// parameter alone when the preset is applied.
struct PresetRecord
{
    std::uint32_t section = 0;
    juce::String name;
    juce::String note;
    juce::String uuid;
    std::array<HVNChecked<float>, kNumParameters> values{};
    std::uint32_t kind = PresetKind::factory;
};

// A run of presets of one section of one file; presets of a section are contiguous.
struct PresetSection
{
    juce::String title;
    bool expanded = false;
    std::uint32_t first = 0;
    std::uint32_t count = 0;
    std::uint32_t end = 0;
    std::uint32_t kind = PresetKind::factory;
};

// A preset file and its kind. A factory path is taken relative to the plug-in's own
// file, which leaves an absolute path as it stands.
struct PresetFileRef
{
    std::uint32_t kind = PresetKind::user;
    juce::String path;
    // A missing factory file reads as the factory presets built into the plug-in.
    bool builtInFallback = false;

    juce::File file() const;
};
