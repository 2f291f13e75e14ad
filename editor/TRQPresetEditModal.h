#pragma once

#include "editor/TRQPresetModal.h"

// Renames a user preset, changes its note and whether it is the default.
class TRQPresetEditModal : public TRQPresetModal
{
public:
    TRQPresetEditModal (std::shared_ptr<TRQPresetController> controller, const Values& values,
                        const Settings& settings);
    bool submit() override;
};
