#pragma once

#include "presets/TRQPresetFiles.h"

#include <juce_core/juce_core.h>
#include <nlohmann/json.hpp>

#include <map>
#include <string>
#include <vector>

// Preset files of a test's own. While it lives, processors made by the test read and
// write these; the previous places come back when it goes.
class PresetFolder
{
public:
    PresetFolder();
    ~PresetFolder();

    juce::File user() const { return folder.getChildFile ("Documents/Halvane/HvnUserPresets.json"); }
    juce::File factory() const { return folder.getChildFile ("common/Halvane/0002/TQPresets.json"); }

    // Writes a file holding these sections (and a favourite when not empty) under 0002.
    static void write (const juce::File& file, const std::vector<nlohmann::json>& sections,
                       const std::string& favourite = {});
    static nlohmann::json read (const juce::File& file);

    // A preset object; values are real values by id.
    static nlohmann::json preset (const std::string& name, const std::string& uuid,
                                  const std::map<int, float>& values);
    // A preset object holding all 21 catalogue defaults with these changes.
    static nlohmann::json fullPreset (const std::string& name, const std::string& uuid,
                                      const std::map<int, float>& changes = {});
    static nlohmann::json section (const std::string& title, const std::vector<nlohmann::json>& presets);

private:
    juce::TemporaryFile holder{"zolk-presets"};
    juce::File folder = holder.getFile();
    TRQPresetFiles::Locations previous = TRQPresetFiles::locations();
};
