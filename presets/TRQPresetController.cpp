#include "presets/TRQPresetController.h"

#include "presets/TRQPresetFiles.h"
#include "state/ParameterCatalogue.h"
#include "state/ParameterRange.h"
#include "state/TRQAudioParameter.h"
#include "state/TRQPluginState.h"
#include "state/TRQSettingsHost.h"

#include <algorithm>

namespace
{
std::string textOf (const juce::String& s)
{
    return s.toStdString();
}

// The uuid of a preset object as the loader reads it: empty when absent.
juce::String uuidOf (const nlohmann::json& preset)
{
    const auto uuid = preset.find ("uuid");
    return uuid != preset.end() && uuid->is_string()
               ? juce::String::fromUTF8 (uuid->get<std::string>().c_str())
               : juce::String();
}

nlohmann::json& presetsOf (nlohmann::json& section)
{
    auto& list = section["presets"];
    if (!list.is_array())
        list = nlohmann::json::array();
    return list;
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
    for (const auto& ref : files)
        TRQPresetFiles::read (ref, ins, outs, contents);
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

void TRQPresetController::writePreset (const juce::String& name, const juce::String& note,
                                       const juce::String& url, const juce::String& uuid,
                                       const Values& values)
{
    nlohmann::json object = nlohmann::json::object();
    object["name"] = textOf (name);
    object["note"] = textOf (note);
    object["url"] = textOf (url);
    object["uuid"] = textOf (uuid);
    auto& stored = object["values"] = nlohmann::json::object();
    for (ParameterId id = 0; id < kNumParameters; ++id)
        stored[std::to_string (id)] = TRQPresetFiles::valueToJson (values[id]);

    TRQPresetFiles::modifyUserFile (
        userFile(),
        [&] (nlohmann::json& plugin)
        {
            // Only the first section's names are matched.
            auto& list = presetsOf (plugin["sections"][0]);
            const auto same =
                std::find_if (list.begin(), list.end(),
                              [&] (const nlohmann::json& p)
                              { return p.is_object() && p.value ("name", std::string()) == object["name"]; });
            if (same != list.end())
                *same = object;
            else
                list.push_back (object);
        });
    reload();

    if (const auto index = indexOfUuid (uuid))
        selectPreset (index.value, true, true);
    isModified = false;
    modifiedChanged.emit (false);
}

juce::String TRQPresetController::savePreset (const juce::String& name, const juce::String& note,
                                              const juce::String& url, const Values& values)
{
    const auto uuid = juce::Uuid().toDashedString();
    writePreset (name, note, url, uuid, values);
    return uuid;
}

void TRQPresetController::replacePreset (const juce::String& uuid, const juce::String& name,
                                         const juce::String& note, const juce::String& url,
                                         const Values& values)
{
    writePreset (name, note, url, uuid, values);
}

void TRQPresetController::updatePreset (const juce::String& uuid, const juce::String& url,
                                        const Values& values)
{
    const auto index = indexOfUuid (uuid);
    if (!index)
        return;
    const auto name = presets[index.value].name;
    const auto note = presets[index.value].note;
    writePreset (name, note, url, uuid, values);
}

void TRQPresetController::editPreset (const juce::String& uuid, const juce::String& name,
                                      const juce::String& note)
{
    const auto index = indexOfUuid (uuid);
    if (!index || (presets[index.value].name == name && presets[index.value].note == note))
        return;

    TRQPresetFiles::modifyUserFile (userFile(),
                                    [&] (nlohmann::json& plugin)
                                    {
                                        auto& list = presetsOf (plugin["sections"][0]);
                                        for (auto& preset : list)
                                        {
                                            if (preset.is_object() && uuidOf (preset) == uuid)
                                            {
                                                preset["name"] = textOf (name);
                                                preset["note"] = textOf (note);
                                                break;
                                            }
                                        }
                                    });
    if (uuid == lastUuid())
        presetNameChanged.emit (name, false);
    reload();
}

void TRQPresetController::deletePreset (std::uint32_t index)
{
    if (index >= presets.size())
        return;
    const auto uuid = presets[index].uuid;

    TRQPresetFiles::modifyUserFile (userFile(),
                                    [&] (nlohmann::json& plugin)
                                    {
                                        for (auto& section : plugin["sections"])
                                        {
                                            auto& list = presetsOf (section);
                                            list.erase (std::remove_if (list.begin(), list.end(),
                                                                        [&] (const nlohmann::json& p) {
                                                                            return p.is_object() &&
                                                                                   uuidOf (p) == uuid;
                                                                        }),
                                                        list.end());
                                        }
                                    });
    reload();
}

void TRQPresetController::movePreset (std::uint32_t index, std::uint32_t position)
{
    if (index >= presets.size())
        return;
    const auto uuid = presets[index].uuid;

    TRQPresetFiles::modifyUserFile (
        userFile(),
        [&] (nlohmann::json& plugin)
        {
            for (auto& section : plugin["sections"])
            {
                auto& list = presetsOf (section);
                const auto found = std::find_if (list.begin(), list.end(),
                                                 [&] (const nlohmann::json& p)
                                                 { return p.is_object() && uuidOf (p) == uuid; });
                if (found == list.end())
                    continue;
                auto moved = std::move (*found);
                list.erase (found);
                const auto at = std::min<std::size_t> (position, list.size());
                list.insert (list.begin() + static_cast<std::ptrdiff_t> (at), std::move (moved));
            }
        });
    reload();
}

void TRQPresetController::setDefaultPreset (std::uint32_t index)
{
    if (index >= presets.size() || defaultPresetIndex == index)
        return;
    defaultPresetIndex = index;
    const auto uuid = textOf (presets[index].uuid);
    TRQPresetFiles::modifyUserFile (userFile(), [&] (nlohmann::json& plugin) { plugin["favorite"] = uuid; });
    reload();
    defaultChanged.emit();
}

void TRQPresetController::makeDefault (const juce::String& uuid, bool on)
{
    const auto index = indexOfUuid (uuid);
    if (!index)
        return;
    if (on)
    {
        setDefaultPreset (index.value);
        return;
    }
    if (index.value != defaultPresetIndex)
        return;
    const auto factory = std::find_if (presets.begin(), presets.end(),
                                       [] (const PresetRecord& r) { return r.kind == PresetKind::factory; });
    setDefaultPreset (factory != presets.end() ? static_cast<std::uint32_t> (factory - presets.begin()) : 0);
}
