#include "editor/TRQPresetSaveModal.h"

TRQPresetSaveModal::TRQPresetSaveModal (std::shared_ptr<TRQPresetController> c, const Values& v,
                                        const Settings& s)
    : TRQPresetModal (std::move (c), v, s)
{
    setUp ("Save New Preset", "Save");
    addNameAndNotes ("New Preset", {});
    addMakeDefault (false);
    addUrl ({}, true);
}

bool TRQPresetSaveModal::submit()
{
    const auto name = nameEditor->getText().trim();
    if (name.isEmpty())
    {
        showError ("Preset Name is Required");
        return false;
    }
    const auto note = notesEditor->getText().trim();
    const bool makeDefault = makeDefaultToggle->getToggleState();
    if (controller == nullptr || !wentThrough (controller->refresh()))
        return false;
    if (const auto* existing = userPresetNamed (name, {}))
    {
        askToReplace (*existing, name, note, makeDefault, {});
        return false;
    }
    const auto newUuid = controller->savePreset (name, note, urlOf (values), values);
    if (!wentThrough (controller->lastWriteResult()))
        return false;
    if (makeDefault && !wentThrough (controller->makeDefault (newUuid, true)))
        return false;
    closeSignal.emit (1);
    return true;
}
