#include "editor/TRQPresetUpdateModal.h"

#include "editor/TRQFontFallback.h"

TRQPresetUpdateModal::TRQPresetUpdateModal (std::shared_ptr<TRQPresetController> c, const Values& v,
                                            const Settings& s)
    : TRQPresetModal (std::move (c), v, s)
{
    setUp ("Update " + quoted (presetName), "Save");
    addUrl (juce::String ("Copy and paste this URL into any instance of ") + JucePlugin_Name +
                " to instantly set all controls to this setting",
            false);
}

bool TRQPresetUpdateModal::submit()
{
    if (controller != nullptr && !wentThrough (controller->updatePreset (uuid(), urlOf (values), values)))
        return false;
    closeSignal.emit (1);
    return true;
}
