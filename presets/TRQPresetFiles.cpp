#include "presets/TRQPresetFiles.h"

#include "state/ParameterCatalogue.h"
#include "state/ParameterRange.h"

#include "BinaryData.h"

#include <charconv>
#include <cmath>
#include <mutex>
#include <optional>

juce::File PresetFileRef::file() const
{
    if (kind == PresetKind::factory)
        return juce::File::getSpecialLocation (juce::File::currentApplicationFile)
            .getParentDirectory()
            .getChildFile (path);
    return juce::File (path);
}

namespace TRQPresetFiles
{
namespace
{
std::mutex locationsLock;
std::optional<Locations> replacedLocations;

const std::string& pluginNumber()
{
    return ParameterCatalogue::product().pluginNumber;
}

juce::String fromJson (const nlohmann::json& value)
{
    return juce::String::fromUTF8 (value.get<std::string>().c_str());
}

// The pair (inputs, outputs) of each well-formed item of a "channels" list.
bool offeredFor (const nlohmann::json& channels, int inputs, int outputs)
{
    bool anyPair = false;
    for (const auto& item : channels)
    {
        if (!item.is_array() || item.size() != 2)
            continue;
        anyPair = true;
        if (item[0].get<int>() == inputs && item[1].get<int>() == outputs)
            return true;
    }
    return !anyPair;
}

PresetRecord readPreset (const nlohmann::json& preset)
{
    PresetRecord record;
    record.name = fromJson (preset.at ("name"));
    if (const auto note = preset.find ("note"); note != preset.end() && !note->is_null())
        record.note = fromJson (*note);
    if (const auto uuid = preset.find ("uuid"); uuid != preset.end())
        record.uuid = fromJson (*uuid);

    if (const auto values = preset.find ("values"); values != preset.end() && values->is_object())
    {
        for (ParameterId id = 0; id < kNumParameters; ++id)
        {
            const auto entry = values->find (std::to_string (id));
            if (entry != values->end() && entry->is_number())
                record.values[id] = toNormalised (id, entry->get<float>());
        }
    }
    return record;
}
} // namespace

Locations standardLocations()
{
    const auto documents = juce::File::getSpecialLocation (juce::File::userDocumentsDirectory);
    const auto common = juce::File::getSpecialLocation (juce::File::commonApplicationDataDirectory);
    return {documents.getChildFile ("Halvane/HvnUserPresets.json"),
            common.getChildFile ("Halvane").getChildFile (pluginNumber()).getChildFile ("TQPresets.json"),
            true};
}

Locations locations()
{
    const std::lock_guard<std::mutex> lock (locationsLock);
    return replacedLocations ? *replacedLocations : standardLocations();
}

void setLocations (const Locations& replacement)
{
    const std::lock_guard<std::mutex> lock (locationsLock);
    replacedLocations = replacement;
}

void useStandardLocations()
{
    const std::lock_guard<std::mutex> lock (locationsLock);
    replacedLocations.reset();
}

std::vector<PresetFileRef> fileRefs()
{
    const auto where = locations();
    return {{PresetKind::user, where.user.getFullPathName()},
            {PresetKind::factory, where.factory.getFullPathName(), where.builtInFactory}};
}

void read (const juce::File& file, std::uint32_t kind, int inputs, int outputs, Contents& contents)
{
    if (file.existsAsFile())
        readText (file.loadFileAsString().toStdString(), kind, inputs, outputs, contents);
}

void read (const PresetFileRef& ref, int inputs, int outputs, Contents& contents)
{
    const auto file = ref.file();
    if (ref.builtInFallback && !file.existsAsFile())
        readText (builtInFactoryText(), ref.kind, inputs, outputs, contents);
    else
        read (file, ref.kind, inputs, outputs, contents);
}

std::string builtInFactoryText()
{
    return std::string (BinaryData::TQPresets_json, static_cast<size_t> (BinaryData::TQPresets_jsonSize));
}

void readText (const std::string& text, std::uint32_t kind, int inputs, int outputs, Contents& contents)
{
    if (text.empty())
        return;

    // A section whose presets were read before a failure still gets its entry, so that
    // every record kept names a section that exists.
    juce::String title;
    std::size_t first = contents.presets.size();
    bool inSection = false;
    const auto closeSection = [&]
    {
        const auto end = contents.presets.size();
        if (inSection && end > first)
        {
            PresetSection section;
            section.title = title;
            section.first = static_cast<std::uint32_t> (first);
            section.count = static_cast<std::uint32_t> (end - first);
            section.end = static_cast<std::uint32_t> (end);
            section.kind = kind;
            contents.sections.push_back (section);
        }
        inSection = false;
    };

    try
    {
        const auto document = nlohmann::json::parse (text);
        if (!document.is_object() || !document.contains (pluginNumber()))
            return;
        const auto& plugin = document.at (pluginNumber());

        if (const auto favourite = plugin.find ("favorite");
            favourite != plugin.end() && !favourite->is_null())
            if (const auto uuid = fromJson (*favourite); uuid.isNotEmpty())
                contents.favourites.emplace_back (uuid, kind);

        const auto sections = plugin.find ("sections");
        if (sections == plugin.end())
            return;

        for (const auto& section : *sections)
        {
            title = fromJson (section.at ("section"));
            first = contents.presets.size();
            inSection = true;

            if (const auto presets = section.find ("presets"); presets != section.end())
            {
                for (const auto& preset : *presets)
                {
                    auto record = readPreset (preset);
                    if (const auto channels = preset.find ("channels");
                        channels != preset.end() && !channels->empty() &&
                        !offeredFor (*channels, inputs, outputs))
                        continue;
                    record.section = static_cast<std::uint32_t> (contents.sections.size());
                    record.kind = kind;
                    contents.presets.push_back (std::move (record));
                }
            }
            closeSection();
        }
    }
    catch (const std::exception&)
    {
        closeSection();
    }
}

nlohmann::json defaultSection()
{
    return nlohmann::json::parse (
        R"({"section": "User", "about": "User presets. Hooray!\n", "presets": []})");
}

bool modifyUserFile (const juce::File& file, const std::function<void (nlohmann::json& plugin)>& change)
{
    if (!file.existsAsFile() && !file.create().wasOk())
        return false;

    nlohmann::json document = nlohmann::json::object();
    const auto text = file.loadFileAsString();
    if (text.trim().isNotEmpty())
    {
        try
        {
            document = nlohmann::json::parse (text.toStdString());
        }
        catch (const std::exception&)
        {
            return false; // the user's file stays as it is
        }
    }
    if (!document.is_object())
        return false;

    try
    {
        auto& plugin = document[pluginNumber()];
        if (plugin.is_null())
            plugin = nlohmann::json::object();
        if (!plugin.is_object())
            return false;
        auto& sections = plugin["sections"];
        if (!sections.is_array() || sections.empty())
            sections = nlohmann::json::array ({defaultSection()});

        change (plugin);
    }
    catch (const std::exception&)
    {
        return false;
    }

    return file.replaceWithText (juce::String::fromUTF8 (document.dump (4).c_str()), false, false, "\r\n");
}

nlohmann::json valueToJson (float value)
{
    if (!std::isfinite (value))
        return nullptr;
    // Both conversions are locale-free and exact: the double holds the float's
    // shortest decimal form, which the JSON writer prints as such.
    char buffer[32];
    const auto written = std::to_chars (buffer, buffer + sizeof (buffer), value);
    double shortest = value;
    std::from_chars (buffer, written.ptr, shortest);
    return shortest;
}
} // namespace TRQPresetFiles
