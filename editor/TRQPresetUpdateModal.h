#pragma once

#include "editor/TRQPresetModal.h"

// Stores the present settings into an existing user preset.
class TRQPresetUpdateModal : public TRQPresetModal
{
public:
    TRQPresetUpdateModal (std::shared_ptr<TRQPresetController> controller, const Values& values,
                          const Settings& settings);
    bool submit() override;
};
