#include "editor/TRQPresetReplaceModal.h"

TRQPresetReplaceModal::TRQPresetReplaceModal (std::shared_ptr<TRQPresetController> c, const Values& v,
                                              const Settings& s)
    : TRQPresetModal (std::move (c), v, s)
{
    values = valuesFromVar (settings.get (Settings::values), values);
    setUp ("Replace " + quoted (presetName), "Replace");
    addNote ("A user preset of that name exists already. Replacing it gives it these settings.");
}

bool TRQPresetReplaceModal::submit()
{
    if (controller != nullptr)
    {
        const auto target = uuid();
        if (!wentThrough (controller->replacePreset (target, settings.get (Settings::name).toString(),
                                                     settings.get (Settings::note).toString(), urlOf (values),
                                                     values)) ||
            !wentThrough (controller->makeDefault (target, (bool)settings.get (Settings::makeDefault))))
            return false;
        // A renamed preset that took another's place leaves its old entry behind.
        if (settings.has (Settings::retireUuid))
            if (const auto old = controller->indexOfUuid (settings.get (Settings::retireUuid).toString());
                old.present && !wentThrough (controller->deletePreset (old.value)))
                return false;
    }
    closeSignal.emit (2);
    return true;
}
