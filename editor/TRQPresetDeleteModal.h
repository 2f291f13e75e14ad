#pragma once

#include "editor/TRQPresetModal.h"

// Asks before a user preset goes.
class TRQPresetDeleteModal : public TRQPresetModal
{
public:
    TRQPresetDeleteModal (std::shared_ptr<TRQPresetController> controller, const Values& values,
                          const Settings& settings);
    bool submit() override;
};
