#pragma once

#include "presets/PresetRecord.h"

#include <juce_core/juce_core.h>
#include <nlohmann/json.hpp>

#include <functional>
#include <utility>
#include <vector>

// The two preset files and their JSON: a read-only factory file and a user file that
// all of the maker's plug-ins share, each under its own plug-in number.
namespace TRQPresetFiles
{
struct Locations
{
    juce::File user;
    juce::File factory;
    // Whether the factory presets built into the plug-in stand in for a factory file
    // that isn't there, as on a machine where nothing was installed yet.
    bool builtInFactory = false;
};

// Documents/Halvane/HvnUserPresets.json and <common data>/Halvane/0002/TQPresets.json,
// with the built-in factory presets behind the latter.
Locations standardLocations();

// Where this process reads and writes presets: the standard places unless replaced.
// The renderer and the tests point instances at files of their own; a change applies
// to controllers that load afterwards.
Locations locations();
void setLocations (const Locations& replacement);
void useStandardLocations();

// The files in reading order: the user file first, then the factory file.
std::vector<PresetFileRef> fileRefs();

// What reading the files gathers, before the merge step.
struct Contents
{
    std::vector<PresetSection> sections;
    std::vector<PresetRecord> presets;
    // The default presets that the files name, with the kind of the file naming each.
    std::vector<std::pair<juce::String, std::uint32_t>> favourites;
};

// Appends the sections, presets and favourite of one file. Presets whose channel list
// leaves out (inputs, outputs) are skipped, and so are sections left empty. A missing
// file is empty. A field of the wrong type is skipped, and so is a preset whose uuid
// has the wrong type; a file that isn't JSON, or whose structure is damaged, adds
// what it held before the damage and fails with one short line naming the problem
// and the file.
juce::Result read (const juce::File& file, std::uint32_t kind, int inputs, int outputs, Contents& contents);
// The same for a file of the list, or for the built-in factory presets when the file
// is missing and the reference falls back on them.
juce::Result read (const PresetFileRef& ref, int inputs, int outputs, Contents& contents);
// The factory file as it was built into the plug-in.
std::string builtInFactoryText();
// The same for the text of a file of that name.
juce::Result readText (const std::string& text, const juce::String& fileName, std::uint32_t kind, int inputs,
                       int outputs, Contents& contents);

// The user file is written keeping the order of every object's keys.
using Json = nlohmann::ordered_json;

// The section that a new user file starts with.
Json defaultSection();

// Reads the user file, lets change edit the object under the plug-in number (which has
// a "sections" array whose first item is a section with a "presets" array when change
// runs), and writes the file back whole. The folder is made when missing. Fails,
// leaving the file as it was, when it can't be read, holds text that isn't JSON, has
// its presets in a form that a write would lose, or can't be written: the result
// names the problem and the file in one short line.
juce::Result modifyUserFile (const juce::File& file, const std::function<void (Json& plugin)>& change);

// The number as JSON: the shortest decimal that reads back as the same float, or null
// for a value that isn't finite.
nlohmann::json valueToJson (float value);
} // namespace TRQPresetFiles
