#include "presets/TRQPresetFiles.h"

#include "state/ParameterCatalogue.h"
#include "state/ParameterRange.h"
#include "state/TRQSharedFile.h"

#include "BinaryData.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <mutex>
#include <optional>
#include <stdexcept>

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

// Empty, or nothing but blanks and a byte-order mark.
bool isBlank (const std::string& text)
{
    const std::size_t start = text.compare (0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
    return text.find_first_not_of (" \t\r\n", start) == std::string::npos;
}

juce::Result syntaxError (const juce::String& fileName, const std::string& text, std::size_t byte)
{
    const auto end =
        text.begin() + static_cast<std::ptrdiff_t> (std::min (text.size(), byte > 0 ? byte - 1 : 0));
    const auto line = 1 + std::count (text.begin(), end, '\n');
    return juce::Result::fail ("Error at Line " + juce::String (line) + " of " + fileName);
}

juce::Result damaged (const juce::String& fileName)
{
    return juce::Result::fail (fileName + " is Damaged");
}

// Whether (inputs, outputs) is one of the pairs of a "channels" list; a list without
// any well-formed pair, or that is no list, offers the preset everywhere.
bool offeredFor (const nlohmann::json& channels, int inputs, int outputs)
{
    if (!channels.is_array())
        return true;
    bool anyPair = false;
    for (const auto& item : channels)
    {
        if (!item.is_array() || item.size() != 2 || !item[0].is_number() || !item[1].is_number())
            continue;
        anyPair = true;
        if (item[0].get<double>() == inputs && item[1].get<double>() == outputs)
            return true;
    }
    return !anyPair;
}

// A preset object; a name that is missing or no text stops the file. A note of the
// wrong type is left out, and so are values that aren't an object; a uuid of the wrong
// type leaves out the whole preset, which nothing could then name.
std::optional<PresetRecord> readPreset (const nlohmann::json& preset)
{
    PresetRecord record;
    record.name = fromJson (preset.at ("name"));
    if (const auto note = preset.find ("note"); note != preset.end() && note->is_string())
        record.note = fromJson (*note);
    if (const auto uuid = preset.find ("uuid"); uuid != preset.end())
    {
        if (!uuid->is_string())
            return std::nullopt;
        record.uuid = fromJson (*uuid);
    }

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

std::string withLineEndings (const std::string& text)
{
    std::string result;
    result.reserve (text.size() + text.size() / 16);
    for (const char c : text)
    {
        if (c == '\n')
            result += '\r';
        result += c;
    }
    return result;
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

juce::Result read (const juce::File& file, std::uint32_t kind, int inputs, int outputs, Contents& contents)
{
    std::string text;
    if (auto result = TRQSharedFile::read (file, text); result.failed())
        return result;
    return readText (text, file.getFileName(), kind, inputs, outputs, contents);
}

juce::Result read (const PresetFileRef& ref, int inputs, int outputs, Contents& contents)
{
    const auto file = ref.file();
    if (ref.builtInFallback && !file.existsAsFile())
        return readText (builtInFactoryText(), file.getFileName(), ref.kind, inputs, outputs, contents);
    return read (file, ref.kind, inputs, outputs, contents);
}

std::string builtInFactoryText()
{
    return std::string (BinaryData::TQPresets_json, static_cast<size_t> (BinaryData::TQPresets_jsonSize));
}

juce::Result readText (const std::string& text, const juce::String& fileName, std::uint32_t kind, int inputs,
                       int outputs, Contents& contents)
{
    if (isBlank (text))
        return juce::Result::ok();

    // Other plug-ins' entries are checked but not kept: a shared file may be large.
    const auto onlyOurs = [] (int depth, nlohmann::json::parse_event_t event, nlohmann::json& parsed)
    { return depth != 1 || event != nlohmann::json::parse_event_t::key || parsed == pluginNumber(); };
    nlohmann::json document;
    try
    {
        document = nlohmann::json::parse (text, onlyOurs);
    }
    catch (const nlohmann::json::parse_error& e)
    {
        return syntaxError (fileName, text, e.byte);
    }
    if (!document.is_object())
        return damaged (fileName);
    const auto plugin = document.find (pluginNumber());
    if (plugin == document.end())
        return juce::Result::ok();
    if (!plugin->is_object())
        return damaged (fileName);

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
        if (const auto favourite = plugin->find ("favorite");
            favourite != plugin->end() && favourite->is_string())
            if (const auto uuid = fromJson (*favourite); uuid.isNotEmpty())
                contents.favourites.emplace_back (uuid, kind);

        const auto sections = plugin->find ("sections");
        if (sections == plugin->end())
            return juce::Result::ok();
        if (!sections->is_array())
            return damaged (fileName);

        for (const auto& section : *sections)
        {
            title = fromJson (section.at ("section"));
            first = contents.presets.size();
            inSection = true;

            if (const auto presets = section.find ("presets"); presets != section.end())
            {
                if (!presets->is_array())
                    throw std::invalid_argument ("presets");
                for (const auto& preset : *presets)
                {
                    auto record = readPreset (preset);
                    if (!record)
                        continue;
                    if (const auto channels = preset.find ("channels");
                        channels != preset.end() && !channels->empty() &&
                        !offeredFor (*channels, inputs, outputs))
                        continue;
                    record->section = static_cast<std::uint32_t> (contents.sections.size());
                    record->kind = kind;
                    contents.presets.push_back (std::move (*record));
                }
            }
            closeSection();
        }
    }
    catch (const std::exception&)
    {
        closeSection();
        return damaged (fileName);
    }
    return juce::Result::ok();
}

Json defaultSection()
{
    return Json::parse (R"({"section": "User", "about": "User presets. Hooray!\n", "presets": []})");
}

juce::Result modifyUserFile (const juce::File& file, const std::function<void (Json& plugin)>& change)
{
    const auto fileName = file.getFileName();
    return TRQSharedFile::update (
        file,
        [&] (std::string& text)
        {
            Json document = Json::object();
            if (!isBlank (text))
            {
                try
                {
                    document = Json::parse (text);
                }
                catch (const Json::parse_error& e)
                {
                    return syntaxError (fileName, text, e.byte); // the user's file stays as it is
                }
            }
            if (!document.is_object())
                return damaged (fileName);

            // Whatever a write would have to throw away makes the file damaged.
            try
            {
                auto& plugin = document[pluginNumber()];
                if (plugin.is_null())
                    plugin = Json::object();
                if (!plugin.is_object())
                    return damaged (fileName);
                auto& sections = plugin["sections"];
                if (sections.is_null() || (sections.is_array() && sections.empty()))
                    sections = Json::array ({defaultSection()});
                if (!sections.is_array() || !sections[0].is_object())
                    return damaged (fileName);
                auto& presets = sections[0]["presets"];
                if (presets.is_null())
                    presets = Json::array();
                if (!presets.is_array())
                    return damaged (fileName);

                change (plugin);
            }
            catch (const std::exception&)
            {
                return damaged (fileName);
            }

            text = withLineEndings (document.dump (4, ' ', false, Json::error_handler_t::replace));
            return juce::Result::ok();
        });
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
