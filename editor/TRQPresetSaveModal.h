#pragma once

#include "editor/TRQPresetModal.h"

// Saves the settings as a new user preset; a name taken by another user preset asks first.
class TRQPresetSaveModal : public TRQPresetModal
{
public:
    TRQPresetSaveModal (std::shared_ptr<TRQPresetController> controller, const Values& values,
                        const Settings& settings);
    bool submit() override;
};
