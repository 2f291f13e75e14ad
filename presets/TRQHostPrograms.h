#pragma once

#include "presets/PresetRecord.h"
#include "toolkit/HVNChecked.h"

#include <juce_core/juce_core.h>

#include <vector>

// The programs a host lists in its own preset menu: the factory presets, by name, in
// the factory file's order. The list is taken once, when the plug-in is made, because
// hosts fix the number of programs then (and an LV2 bundle names them in its manifest
// at build time); programs find their presets again by uuid, so a reload of the preset
// files never shifts them.
class TRQHostPrograms
{
public:
    explicit TRQHostPrograms (const std::vector<PresetRecord>& presets);

    // At least one: a host needs a program even when no factory preset could be read.
    int size() const;
    // Never empty.
    juce::String name (int program) const;
    // Empty for a program that stands for no preset.
    juce::String uuid (int program) const;
    HVNChecked<int> programOfUuid (const juce::String& uuid) const;

private:
    struct Program
    {
        juce::String name;
        juce::String uuid;
    };
    std::vector<Program> programs;
};
