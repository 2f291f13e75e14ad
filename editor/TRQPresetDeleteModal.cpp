#include "editor/TRQPresetDeleteModal.h"

TRQPresetDeleteModal::TRQPresetDeleteModal (std::shared_ptr<TRQPresetController> c, const Values& v,
                                            const Settings& s)
    : TRQPresetModal (std::move (c), v, s)
{
    setUp ("Delete " + quoted (presetName), "Delete");
    addNote ("The preset leaves the list of every instance; this can't be undone.");
}

bool TRQPresetDeleteModal::submit()
{
    if (controller != nullptr)
        if (const auto index = controller->indexOfUuid (uuid()); index.present)
            if (!wentThrough (controller->deletePreset (index.value)))
                return false;
    closeSignal.emit (1);
    return true;
}
