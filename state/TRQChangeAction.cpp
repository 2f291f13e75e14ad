#include "state/TRQChangeAction.h"

#include "presets/TRQPresetController.h"
#include "state/ParameterRange.h"
#include "state/TRQAudioParameter.h"
#include "state/TRQSettingsHost.h"

const float* StateSnapshot::find (std::uint32_t index) const
{
    for (const auto& entry : values)
        if (entry.first == index)
            return &entry.second;
    return nullptr;
}

void StateSnapshot::set (std::uint32_t index, float value)
{
    for (auto& entry : values)
    {
        if (entry.first == index)
        {
            entry.second = value;
            return;
        }
    }
    values.emplace_back (index, value);
}

void StateSnapshot::recordModified()
{
    const auto link = controller.lock();
    presetModified = link == nullptr || link->getIsModified();
}

void StateSnapshot::captureAll (const juce::String& uuid)
{
    values.clear();
    for (ParameterId id = 0; id < kNumParameters; ++id)
        values.emplace_back (
            id, toNormalised (id, processor->getAudioParameter (static_cast<int> (id)).getRealValue()));
    presetUuid = uuid;
    recordModified();
}

void StateSnapshot::apply() const
{
    for (const auto& [index, value] : values)
    {
        auto& parameter = processor->getAudioParameter (static_cast<int> (index));
        parameter.setValue (value);
        parameter.sendValueChangedMessageToListeners (parameter.getValue());
    }

    const auto link = controller.lock();
    if (link == nullptr)
        return;
    if (presetUuid.isEmpty())
        link->setModified (presetModified);
    else
        link->restoreSelection (presetUuid, presetModified);
}

ChangeAction::ChangeAction (TRQSettingsHost& p, std::weak_ptr<TRQPresetController> controller)
    : processor (p)
{
    for (auto* snapshot : {&before, &after})
    {
        snapshot->processor = &p;
        snapshot->controller = controller;
    }
}

bool ChangeAction::perform()
{
    after.apply();
    return true;
}

bool ChangeAction::undo()
{
    before.apply();
    return true;
}
