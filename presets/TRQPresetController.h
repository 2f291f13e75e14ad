#pragma once

#include "presets/PresetRecord.h"
#include "state/TRQSignals.h"
#include "toolkit/HVNChecked.h"

#include <juce_core/juce_core.h>

#include <array>
#include <cstdint>
#include <vector>

class TRQSettingsHost;

// The merged list of factory and user presets, which one is selected and whether the
// settings still equal it, and every change to the user's presets. Message thread only.
class TRQPresetController : public TRQSignals::Trackable
{
public:
    // The factory default preset, which lastUuid names when no preset was recorded.
    static constexpr const char* factoryDefaultUuid = "43be047e-062c-472a-8485-71b55a339d85";

    // Real values by parameter id, each snapped and clamped.
    using Values = std::array<float, kNumParameters>;

    explicit TRQPresetController (TRQSettingsHost& processor);
    ~TRQPresetController() override;

    TRQSignals::Signal<void()> defaultChanged;
    TRQSignals::Signal<void (bool)> modifiedChanged;
    TRQSignals::Signal<void (const juce::String&, bool)> presetNameChanged; // name, from a selection
    TRQSignals::Signal<void (const juce::String&)> presetUuidChanged;
    TRQSignals::Signal<void (const juce::String&)> beginAction; // the preset being left
    TRQSignals::Signal<void (unsigned)> presetIndexChanged;
    TRQSignals::Signal<void (unsigned)> sectionOpened;
    TRQSignals::Signal<void (const juce::String&)> endAction; // the preset entered
    TRQSignals::Signal<void()> presetsLoaded;

    HVNChecked<PresetRecord> getPreset (std::uint32_t index) const;
    HVNChecked<std::uint32_t> indexOfUuid (const juce::String& uuid) const;
    // "None" for an unknown uuid or an empty name; always present.
    HVNChecked<juce::String> nameOfUuid (const juce::String& uuid) const;
    // Preset 0's note for an unknown uuid; empty only when there are no presets.
    HVNChecked<juce::String> noteOfUuid (const juce::String& uuid) const;
    juce::String lastUuid() const;
    HVNChecked<juce::String> lastUuidChecked() const;
    // Whether this value of id differs, by its step, from the selected preset's.
    bool isParameterModified (std::uint32_t id, float normalised) const;

    const std::vector<PresetRecord>& getPresets() const { return presets; }
    const std::vector<PresetSection>& getSections() const { return sections; }
    std::uint32_t getDefaultPresetIndex() const { return defaultPresetIndex; }
    std::uint32_t getCurrentPresetIndex() const { return currentPresetIndex; }
    bool getHasSelection() const { return hasSelection; }
    bool getIsModified() const { return isModified; }
    // Stores the flag and tells modifiedChanged when it changes.
    void setModified (bool modified);

    // The real value a parameter starts from and resets to: the default preset's, or
    // the catalogue's default where that preset holds none.
    float defaultPresetValue (std::uint32_t id) const;

    // Builds the list of files and reads them.
    void load();
    // Reads the files again.
    void reload();

    bool selectPreset (std::uint32_t index, bool withHistory, bool apply);
    bool selectUuid (const juce::String& uuid);
    void selectNext();
    void selectPrevious();
    // Selects a preset without applying it or entering the history, with the given
    // modified flag: for undo and A/B.
    void restoreSelection (const juce::String& uuid, bool modified);
    void updateModified (HVNChecked<std::uint32_t> id, HVNChecked<float> normalised);

    // Changes to the user's file. When the file can't be read or written, nothing is
    // written and nothing here changes: the result names the problem and the file in
    // one short line.
    // Returns the new uuid, or nothing when the write failed (lastWriteResult says why).
    juce::String savePreset (const juce::String& name, const juce::String& note, const juce::String& url,
                             const Values& values);
    juce::Result replacePreset (const juce::String& uuid, const juce::String& name, const juce::String& note,
                                const juce::String& url, const Values& values);
    juce::Result updatePreset (const juce::String& uuid, const juce::String& url, const Values& values);
    juce::Result editPreset (const juce::String& uuid, const juce::String& name, const juce::String& note);
    juce::Result deletePreset (std::uint32_t index);
    juce::Result movePreset (std::uint32_t index, std::uint32_t position);
    juce::Result setDefaultPreset (std::uint32_t index);
    juce::Result makeDefault (const juce::String& uuid, bool on);
    // What the last of the changes above came to.
    const juce::Result& lastWriteResult() const { return lastWrite; }

    // Why the user file was not read whole at the last load, or empty.
    const juce::String& getUserFileProblem() const { return userFileProblem; }
    // Reads the files again, so that a decision sees what other instances wrote
    // meanwhile; a user file that can't be read or isn't JSON leaves everything as it
    // is, and the result says why.
    juce::Result refresh();

private:
    void loadPresets();
    void applyPreset (const PresetRecord& preset);
    juce::Result writePreset (const juce::String& name, const juce::String& note, const juce::String& url,
                              const juce::String& uuid, const Values& values);
    juce::File userFile() const;
    bool changed (float normalisedA, float normalisedB, std::uint32_t id) const;
    const PresetRecord* selected() const;

    TRQSettingsHost& processor;
    std::uint32_t defaultPresetIndex = 0;
    std::uint32_t currentPresetIndex = 0;
    bool hasSelection = true;
    bool isModified = false;
    std::vector<PresetSection> sections;
    std::vector<PresetRecord> presets;
    std::vector<PresetFileRef> files;
    juce::String userFileProblem;
    juce::Result lastWrite = juce::Result::ok();
};
