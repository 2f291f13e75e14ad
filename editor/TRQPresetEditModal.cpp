#include "editor/TRQPresetEditModal.h"

#include "state/ParameterRange.h"

TRQPresetEditModal::TRQPresetEditModal (std::shared_ptr<TRQPresetController> c, const Values& v,
                                        const Settings& s)
    : TRQPresetModal (std::move (c), v, s)
{
    setUp ("Edit " + quoted (presetName), "Save");
    juce::String note;
    bool isDefault = false;
    if (controller != nullptr)
        if (const auto index = controller->indexOfUuid (uuid()); index.present)
        {
            const auto preset = controller->getPreset (index.value).value;
            note = preset.note;
            isDefault = controller->getDefaultPresetIndex() == index.value;
            // Should the new name take another preset's place, that preset gets this
            // one's own settings, not those on the panel.
            for (size_t i = 0; i < values.size(); ++i)
                if (preset.values[i].present)
                    values[i] = snapAndClamp ((ParameterId)i,
                                              fromNormalised ((ParameterId)i, preset.values[i].value));
        }
    addNameAndNotes (presetName, note);
    addMakeDefault (isDefault);
}

bool TRQPresetEditModal::submit()
{
    const auto name = nameEditor->getText().trim();
    if (name.isEmpty())
    {
        showError ("Preset Name is Required");
        return false;
    }
    // Another instance may have taken the name, or removed this preset, since the list
    // was read.
    if (controller != nullptr && !wentThrough (controller->refresh()))
        return false;
    if (controller == nullptr || !controller->indexOfUuid (uuid()).present)
    {
        closeSignal.emit (1);
        return false;
    }
    const auto note = notesEditor->getText().trim();
    const bool makeDefault = makeDefaultToggle->getToggleState();
    if (name != presetName)
        if (const auto* existing = userPresetNamed (name, uuid()))
        {
            askToReplace (*existing, name, note, makeDefault, uuid());
            return false;
        }
    if (!wentThrough (controller->editPreset (uuid(), name, note)) ||
        !wentThrough (controller->makeDefault (uuid(), makeDefault)))
        return false;
    closeSignal.emit (1);
    return true;
}
