#pragma once

#include "state/TRQUndoManager.h"

#include <juce_core/juce_core.h>

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

class TRQSettingsHost;
class TRQPresetController;

// A set of parameter values with the preset selection they belong to. Values are
// normalised and cover only the parameters that the snapshot was taken of.
struct StateSnapshot
{
    TRQSettingsHost* processor = nullptr;
    std::vector<std::pair<std::uint32_t, float>> values;
    juce::String presetUuid; // empty for a gesture
    bool presetModified = true;
    std::weak_ptr<TRQPresetController> controller;

    // The value recorded for index, or nullptr.
    const float* find (std::uint32_t index) const;
    // Overwrites the value of index, or appends it.
    void set (std::uint32_t index, float value);

    // Reads the controller's modified flag (true when there is no controller).
    void recordModified();
    // Captures all 21 values, the uuid and the modified flag.
    void captureAll (const juce::String& uuid);

    // Sets the values, telling the host, then brings back the preset selection and
    // its modified flag as far as the controller still exists.
    void apply() const;
};

// One change of the history: the values before and after it.
class ChangeAction : public TRQUndoableAction
{
public:
    ChangeAction (TRQSettingsHost& processor, std::weak_ptr<TRQPresetController> controller);

    bool perform() override;
    bool undo() override;

    StateSnapshot before, after;
    TRQSettingsHost& processor;
};
