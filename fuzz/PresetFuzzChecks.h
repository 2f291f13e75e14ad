#pragma once

// What must hold for any input to the preset reader, the user file's write-back and
// the URL paster. Shared by the fuzz targets, which stop on the first fault, and by
// the tests that replay their corpora. Each check returns what went wrong, or an
// empty text.

#include "core/TRQAudioProcessor.h"
#include "presets/TRQPresetFiles.h"
#include "presets/TRQPresetURL.h"
#include "state/ParameterCatalogue.h"
#include "state/ParameterRange.h"
#include "state/TRQAudioParameter.h"
#include "state/TRQUndoManager.h"

#include <cmath>
#include <cstdint>
#include <string>

namespace PresetFuzzChecks
{
// Every preset kept names a section that exists, and sections cover the list in order.
inline std::string checkRead (const std::string& text)
{
    TRQPresetFiles::Contents contents;
    TRQPresetFiles::readText (text, "HvnUserPresets.json", PresetKind::user, 2, 2, contents);
    std::uint32_t next = 0;
    for (std::size_t s = 0; s < contents.sections.size(); ++s)
    {
        const auto& section = contents.sections[s];
        if (section.first != next || section.count == 0 || section.end != section.first + section.count)
            return "section " + std::to_string (s) + " doesn't continue the list";
        for (auto i = section.first; i < section.end; ++i)
            if (i >= contents.presets.size() || contents.presets[i].section != s)
                return "preset " + std::to_string (i) + " isn't in its section";
        next = section.end;
    }
    if (next != contents.presets.size())
        return "presets without a section";
    for (const auto& favourite : contents.favourites)
        if (favourite.first.isEmpty())
            return "an empty favourite";
    return {};
}

// A write either adds the preset and keeps every other plug-in's entry, or leaves a
// file it couldn't read exactly as it was.
inline std::string checkWrite (const std::string& text, const juce::File& file)
{
    file.getParentDirectory().createDirectory();
    file.replaceWithText (juce::String::fromUTF8 (text.data(), static_cast<int> (text.size())));
    const auto before = file.loadFileAsString();
    const auto wrote =
        TRQPresetFiles::modifyUserFile (file,
                                        [] (TRQPresetFiles::Json& plugin) {
                                            plugin["sections"][0]["presets"].push_back ({{"name", "fuzz"}});
                                        })
            .wasOk();
    const auto after = file.loadFileAsString();
    if (!wrote)
        return after == before ? std::string() : "a failed write changed the file";

    const auto original = before.trim().isEmpty()
                              ? nlohmann::json::object()
                              : nlohmann::json::parse (before.toStdString(), nullptr, false);
    const auto written = nlohmann::json::parse (after.toStdString(), nullptr, false);
    if (!original.is_object() || !written.is_object())
        return "wrote over a file that wasn't a JSON object";
    for (const auto& [key, value] : original.items())
        if (key != ParameterCatalogue::product().pluginNumber &&
            written.value (key, nlohmann::json()) != value)
            return "lost the entry " + key;
    const auto& presets = written["0002"]["sections"][0]["presets"];
    if (!presets.is_array() || presets.empty() || presets.back() != nlohmann::json{{"name", "fuzz"}})
        return "the new preset is missing";
    return {};
}

// A paste is one step of the history, leaves every value in range on its step, and
// the URL of the result pastes back to the same values (power aside, which URLs never
// carry).
inline std::string checkPaste (const std::string& text)
{
    TRQAudioProcessor first, second;
    const auto steps = first.getUndoManager().getNumTransactions();
    TRQPresetURL::pasteSettings (first, juce::String::fromUTF8 (text.data(), static_cast<int> (text.size())));
    if (first.getUndoManager().getNumTransactions() != steps + 1)
        return "a paste isn't one step";

    for (ParameterId id = 0; id < kNumParameters; ++id)
    {
        const float value = first.getAudioParameter (static_cast<int> (id)).getRealValue();
        const auto& row = ParameterCatalogue::row (id);
        if (!std::isfinite (value) || value < row.min || value > row.max || snapAndClamp (id, value) != value)
            return "parameter " + std::to_string (id) + " took " + std::to_string (value);
    }

    TRQPresetURL::pasteSettings (second, TRQPresetURL::settingsAsUrl (first));
    for (int id = 1; id < static_cast<int> (kNumParameters); ++id)
        if (second.getAudioParameter (id).getRealValue() != first.getAudioParameter (id).getRealValue())
            return "parameter " + std::to_string (id) + " changed on its way through the URL";
    return {};
}
} // namespace PresetFuzzChecks
