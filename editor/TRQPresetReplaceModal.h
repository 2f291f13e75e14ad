#pragma once

#include "editor/TRQPresetModal.h"

// Asks before a new or renamed preset takes the place of another of the same name.
class TRQPresetReplaceModal : public TRQPresetModal
{
public:
    TRQPresetReplaceModal (std::shared_ptr<TRQPresetController> controller, const Values& values,
                           const Settings& settings);
    bool submit() override;
};
