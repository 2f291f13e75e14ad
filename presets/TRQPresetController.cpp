#include "presets/TRQPresetController.h"

#include "presets/TRQPresetFiles.h"
#include "state/ParameterCatalogue.h"
#include "state/ParameterRange.h"
#include "state/TRQAudioParameter.h"
#include "state/TRQPluginState.h"
#include "state/TRQSettingsHost.h"
#include "state/TRQSharedFile.h"

#include <algorithm>

namespace
{
using Json = TRQPresetFiles::Json;

std::string textOf (const juce::String& s)
{
    return s.toStdString();
}

// Whether a preset object carries this uuid as the loader reads it: a missing one is
// empty, and one of another type names nothing.
bool hasUuid (const Json& preset, const juce::String& uuid)
{
    if (!preset.is_object())
        return false;
    const auto found = preset.find ("uuid");
    if (found == preset.end())
        return uuid.isEmpty();
    return found->is_string() && juce::String::fromUTF8 (found->get<std::string>().c_str()) == uuid;
}

bool hasName (const Json& preset, const std::string& name)
{
    if (!preset.is_object())
        return false;
    const auto found = preset.find ("name");
    return found != preset.end() && found->is_string() && found->get<std::string>() == name;
}

// The "presets" array of a section, or nullptr for a section of another form, which
// is left as it stands.
Json* presetsOf (Json& section)
{
    if (!section.is_object())
        return nullptr;
    const auto found = section.find ("presets");
    return found != section.end() && found->is_array() ? &*found : nullptr;
}
} // namespace

TRQPresetController::TRQPresetController (TRQSettingsHost& p)
    : processor (p)
{
}

TRQPresetController::~TRQPresetController() = default;

// ---- queries ----

HVNChecked<PresetRecord> TRQPresetController::getPreset (std::uint32_t index) const
{
    if (index >= presets.size())
        return {};
    return presets[index];
}

HVNChecked<std::uint32_t> TRQPresetController::indexOfUuid (const juce::String& uuid) const
{
    for (std::size_t i = 0; i < presets.size(); ++i)
        if (presets[i].uuid == uuid)
            return static_cast<std::uint32_t> (i);
    return {};
}

HVNChecked<juce::String> TRQPresetController::nameOfUuid (const juce::String& uuid) const
{
    const auto index = indexOfUuid (uuid);
    if (!index || presets[index.value].name.isEmpty())
        return juce::String ("None");
    return presets[index.value].name;
}

HVNChecked<juce::String> TRQPresetController::noteOfUuid (const juce::String& uuid) const
{
    if (presets.empty())
        return juce::String();
    return presets[indexOfUuid (uuid).valueOr (0)].note;
}

juce::String TRQPresetController::lastUuid() const
{
    return lastUuidChecked().valueOr (factoryDefaultUuid);
}

HVNChecked<juce::String> TRQPresetController::lastUuidChecked() const
{
    const auto recorded = processor.getPluginState().getAttribute (TRQPluginState::lastPresetAttribute);
    if (recorded.isEmpty())
        return {};
    return recorded;
}

const PresetRecord* TRQPresetController::selected() const
{
    return currentPresetIndex < presets.size() ? &presets[currentPresetIndex] : nullptr;
}

bool TRQPresetController::changed (float a, float b, std::uint32_t id) const
{
    return fromNormalised (id, a) != fromNormalised (id, b);
}

bool TRQPresetController::isParameterModified (std::uint32_t id, float normalised) const
{
    const auto* preset = selected();
    if (id == 0 || !isValidParameterId (id) || preset == nullptr || !preset->values[id])
        return false;
    return changed (normalised, preset->values[id].value, id);
}

float TRQPresetController::defaultPresetValue (std::uint32_t id) const
{
    if (defaultPresetIndex < presets.size())
        if (const auto& stored = presets[defaultPresetIndex].values[id])
            return fromNormalised (id, stored.value);
    return snapAndClamp (id, ParameterCatalogue::row (id).defaultValue);
}

void TRQPresetController::setModified (bool modified)
{
    if (modified == isModified)
        return;
    isModified = modified;
    modifiedChanged.emit (modified);
}

// ---- loading ----

void TRQPresetController::load()
{
    files = TRQPresetFiles::fileRefs();
    loadPresets();
}

void TRQPresetController::reload()
{
    loadPresets();
}

juce::File TRQPresetController::userFile() const
{
    for (const auto& ref : files)
        if (ref.kind == PresetKind::user)
            return ref.file();
    return TRQPresetFiles::locations().user;
}

void TRQPresetController::loadPresets()
{
    const auto kept = sections;
    TRQPresetFiles::Contents contents;
    const int ins = processor.asAudioProcessor().getMainBusNumInputChannels();
    const int outs = processor.asAudioProcessor().getMainBusNumOutputChannels();
    userFileProblem = {};
    for (const auto& ref : files)
    {
        const auto result = TRQPresetFiles::read (ref, ins, outs, contents);
        if (ref.kind == PresetKind::user && result.failed())
            userFileProblem = result.getErrorMessage();
    }
    sections = std::move (contents.sections);
    presets = std::move (contents.presets);

    for (auto& section : sections)
    {
        const auto same = std::find_if (kept.begin(), kept.end(),
                                        [&] (const PresetSection& s) { return s.title == section.title; });
        if (same != kept.end())
            section.expanded = same->expanded;
    }

    // A favourite named by the user's file ends the search; the factory file's own
    // favourite stands when the user's names none that is offered here.
    bool found = false;
    for (const auto& [uuid, kind] : contents.favourites)
    {
        if (const auto index = indexOfUuid (uuid))
        {
            defaultPresetIndex = index.value;
            found = true;
            if (kind == PresetKind::user)
                break;
        }
    }
    if (!found)
    {
        const auto factory =
            std::find_if (presets.begin(), presets.end(),
                          [] (const PresetRecord& r) { return r.kind == PresetKind::factory; });
        defaultPresetIndex =
            factory != presets.end() ? static_cast<std::uint32_t> (factory - presets.begin()) : 0;
    }

    hasSelection = false;

    auto selection = defaultPresetIndex;
    bool fromDefault = true;
    if (const auto recorded = lastUuidChecked())
    {
        if (const auto index = indexOfUuid (recorded.value))
        {
            selection = index.value;
            fromDefault = false;
        }
    }

    if (selection < presets.size() && presets[selection].section < sections.size())
    {
        selectPreset (selection, false, false);
        if (fromDefault)
            updateModified ({}, {});
    }

    presetsLoaded.emit();
}

// ---- selection ----

bool TRQPresetController::selectPreset (std::uint32_t index, bool withHistory, bool apply)
{
    if (presets.empty() || index >= presets.size())
        return false;
    if (hasSelection && currentPresetIndex == index && !isModified)
        return false;

    const auto oldIndex = currentPresetIndex;
    const bool hadSelection = hasSelection;
    currentPresetIndex = index;
    hasSelection = true;
    const auto preset = presets[index]; // signals below may reload the list

    if (preset.section < sections.size() && !sections[preset.section].expanded)
    {
        sections[preset.section].expanded = true;
        sectionOpened.emit (preset.section);
    }

    const bool history = withHistory && hadSelection;
    if (history)
        beginAction.emit (oldIndex < presets.size() ? presets[oldIndex].uuid : juce::String());
    if (apply)
        applyPreset (preset);

    presetNameChanged.emit (preset.name, true);
    presetUuidChanged.emit (preset.uuid);
    presetIndexChanged.emit (index);

    if (history)
        endAction.emit (preset.uuid);
    return true;
}

bool TRQPresetController::selectUuid (const juce::String& uuid)
{
    return selectPreset (indexOfUuid (uuid).valueOr (0), true, true);
}

void TRQPresetController::selectNext()
{
    if (presets.empty())
        return;
    const auto next = currentPresetIndex + 1 >= presets.size() ? 0u : currentPresetIndex + 1;
    selectPreset (next, true, true);
}

void TRQPresetController::selectPrevious()
{
    if (presets.empty())
        return;
    const auto previous = currentPresetIndex == 0 || currentPresetIndex > presets.size()
                              ? static_cast<std::uint32_t> (presets.size() - 1)
                              : currentPresetIndex - 1;
    selectPreset (previous, true, true);
}

void TRQPresetController::applyPreset (const PresetRecord& preset)
{
    auto locks = processor.getPluginState().getLockStates();
    for (const auto& row : ParameterCatalogue::rows())
    {
        if (row.lockFrom.empty())
            continue;
        bool locked = false;
        for (const auto& list : row.lockFrom)
            for (const auto id : list)
                locked = locked || (isValidParameterId (id) && locks[id]);
        locks[row.id] = locked;
    }

    for (ParameterId id = 0; id < kNumParameters; ++id)
    {
        auto* parameter = processor.findParameter (static_cast<int> (id));
        if (parameter == nullptr || locks[id] || !preset.values[id])
            continue;
        const auto& row = ParameterCatalogue::row (id);
        const float value =
            std::clamp (preset.values[id].value, toNormalised (id, row.min), toNormalised (id, row.max));
        parameter->setValue (value);
        parameter->sendValueChangedMessageToListeners (parameter->getValue());
    }

    isModified = false;
    modifiedChanged.emit (false);
}

void TRQPresetController::restoreSelection (const juce::String& uuid, bool modified)
{
    const auto index = indexOfUuid (uuid);
    if (!index)
        return;
    selectPreset (index.value, false, false);
    isModified = modified;
    modifiedChanged.emit (modified);
    const auto& preset = presets[index.value];
    presetNameChanged.emit (preset.name, false);
    presetUuidChanged.emit (preset.uuid);
}

void TRQPresetController::updateModified (HVNChecked<std::uint32_t> id, HVNChecked<float> normalised)
{
    bool result = id && normalised && isParameterModified (id.value, normalised.value);

    if (!result)
    {
        if (const auto* preset = selected())
        {
            for (ParameterId other = 1; other < kNumParameters && !result; ++other)
            {
                const auto* parameter = processor.findParameter (static_cast<int> (other));
                if (parameter == nullptr || (id && id.value == other) || !preset->values[other])
                    continue;
                result = changed (parameter->getValue(), preset->values[other].value, other);
            }
        }
    }

    setModified (result);
}

// ---- writing ----

juce::Result TRQPresetController::refresh()
{
    // Only a file that can't be read, or isn't JSON, would empty the user's part of
    // the list; a damaged entry costs what it spoils, as on any load.
    std::string text;
    const auto user = userFile();
    auto result = TRQSharedFile::read (user, text);
    if (result.wasOk() && !nlohmann::json::accept (text))
    {
        TRQPresetFiles::Contents contents;
        result = TRQPresetFiles::readText (text, user.getFileName(), PresetKind::user, 0, 0, contents);
    }
    if (result.failed())
        return result;
    loadPresets();
    return juce::Result::ok();
}

juce::Result TRQPresetController::writePreset (const juce::String& name, const juce::String& note,
                                               const juce::String& url, const juce::String& uuid,
                                               const Values& values)
{
    Json object = Json::object();
    object["name"] = textOf (name);
    object["note"] = textOf (note);
    object["url"] = textOf (url);
    object["uuid"] = textOf (uuid);
    auto& stored = object["values"] = Json::object();
    for (ParameterId id = 0; id < kNumParameters; ++id)
        stored[std::to_string (id)] = TRQPresetFiles::valueToJson (values[id]);

    const auto result = TRQPresetFiles::modifyUserFile (
        userFile(),
        [&] (Json& plugin)
        {
            // Only the first section's names are matched.
            auto& list = *presetsOf (plugin["sections"][0]);
            const auto same = std::find_if (list.begin(), list.end(),
                                            [&] (const Json& p) { return hasName (p, textOf (name)); });
            if (same != list.end())
                *same = object;
            else
                list.push_back (object);
        });
    if (result.failed())
        return result;
    reload();

    if (const auto index = indexOfUuid (uuid))
        selectPreset (index.value, true, true);
    isModified = false;
    modifiedChanged.emit (false);
    return result;
}

juce::String TRQPresetController::savePreset (const juce::String& name, const juce::String& note,
                                              const juce::String& url, const Values& values)
{
    const auto uuid = juce::Uuid().toDashedString();
    lastWrite = writePreset (name, note, url, uuid, values);
    return lastWrite.wasOk() ? uuid : juce::String();
}

juce::Result TRQPresetController::replacePreset (const juce::String& uuid, const juce::String& name,
                                                 const juce::String& note, const juce::String& url,
                                                 const Values& values)
{
    return lastWrite = writePreset (name, note, url, uuid, values);
}

juce::Result TRQPresetController::updatePreset (const juce::String& uuid, const juce::String& url,
                                                const Values& values)
{
    const auto index = indexOfUuid (uuid);
    if (!index)
        return lastWrite = juce::Result::ok();
    const auto name = presets[index.value].name;
    const auto note = presets[index.value].note;
    return lastWrite = writePreset (name, note, url, uuid, values);
}

juce::Result TRQPresetController::editPreset (const juce::String& uuid, const juce::String& name,
                                              const juce::String& note)
{
    const auto index = indexOfUuid (uuid);
    if (!index || (presets[index.value].name == name && presets[index.value].note == note))
        return lastWrite = juce::Result::ok();

    lastWrite = TRQPresetFiles::modifyUserFile (userFile(),
                                                [&] (Json& plugin)
                                                {
                                                    auto& list = *presetsOf (plugin["sections"][0]);
                                                    for (auto& preset : list)
                                                    {
                                                        if (hasUuid (preset, uuid))
                                                        {
                                                            preset["name"] = textOf (name);
                                                            preset["note"] = textOf (note);
                                                            break;
                                                        }
                                                    }
                                                });
    if (lastWrite.failed())
        return lastWrite;
    if (uuid == lastUuid())
        presetNameChanged.emit (name, false);
    reload();
    return lastWrite;
}

juce::Result TRQPresetController::deletePreset (std::uint32_t index)
{
    if (index >= presets.size())
        return lastWrite = juce::Result::ok();
    const auto uuid = presets[index].uuid;

    lastWrite = TRQPresetFiles::modifyUserFile (
        userFile(),
        [&] (Json& plugin)
        {
            for (auto& section : plugin["sections"])
                if (auto* list = presetsOf (section))
                    list->erase (std::remove_if (list->begin(), list->end(),
                                                 [&] (const Json& p) { return hasUuid (p, uuid); }),
                                 list->end());
        });
    if (lastWrite.wasOk())
        reload();
    return lastWrite;
}

juce::Result TRQPresetController::movePreset (std::uint32_t index, std::uint32_t position)
{
    if (index >= presets.size())
        return lastWrite = juce::Result::ok();
    const auto uuid = presets[index].uuid;

    lastWrite = TRQPresetFiles::modifyUserFile (
        userFile(),
        [&] (Json& plugin)
        {
            for (auto& section : plugin["sections"])
            {
                auto* list = presetsOf (section);
                if (list == nullptr)
                    continue;
                const auto found = std::find_if (list->begin(), list->end(),
                                                 [&] (const Json& p) { return hasUuid (p, uuid); });
                if (found == list->end())
                    continue;
                auto moved = std::move (*found);
                list->erase (found);
                const auto at = std::min<std::size_t> (position, list->size());
                list->insert (list->begin() + static_cast<std::ptrdiff_t> (at), std::move (moved));
            }
        });
    if (lastWrite.wasOk())
        reload();
    return lastWrite;
}

juce::Result TRQPresetController::setDefaultPreset (std::uint32_t index)
{
    if (index >= presets.size() || defaultPresetIndex == index)
        return lastWrite = juce::Result::ok();
    const auto uuid = textOf (presets[index].uuid);
    lastWrite =
        TRQPresetFiles::modifyUserFile (userFile(), [&] (Json& plugin) { plugin["favorite"] = uuid; });
    if (lastWrite.failed())
        return lastWrite;
    defaultPresetIndex = index;
    reload();
    defaultChanged.emit();
    return lastWrite;
}

juce::Result TRQPresetController::makeDefault (const juce::String& uuid, bool on)
{
    const auto index = indexOfUuid (uuid);
    if (!index)
        return lastWrite = juce::Result::ok();
    if (on)
        return setDefaultPreset (index.value);
    if (index.value != defaultPresetIndex)
        return lastWrite = juce::Result::ok();
    const auto factory = std::find_if (presets.begin(), presets.end(),
                                       [] (const PresetRecord& r) { return r.kind == PresetKind::factory; });
    return setDefaultPreset (factory != presets.end() ? static_cast<std::uint32_t> (factory - presets.begin())
                                                      : 0);
}
