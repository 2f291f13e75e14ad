#include "state/TRQParameterManager.h"

#include "presets/TRQPresetController.h"
#include "state/ParameterCatalogue.h"
#include "state/ParameterRange.h"
#include "state/TRQAudioParameter.h"
#include "state/TRQSettingsHost.h"
#include "state/TRQUndoManager.h"

#include <algorithm>

namespace
{
// Gestures that start within this time of the last transaction's start join it.
constexpr std::int64_t joinWindowMs = 500;

bool isParameterIndex (int index)
{
    return index >= 0 && index < static_cast<int> (kNumParameters);
}

// The ids that move along with a parameter: its dependents and its partners.
std::vector<ParameterId> dependentsOf (ParameterId id)
{
    const auto& row = ParameterCatalogue::row (id);
    auto ids = row.dependents;
    for (const auto partner : {row.lowerPartner, row.upperPartner})
        if (partner >= 0)
            ids.push_back (static_cast<ParameterId> (partner));
    return ids;
}

float normalisedNow (TRQSettingsHost& processor, ParameterId id)
{
    return toNormalised (id, processor.getAudioParameter (static_cast<int> (id)).getRealValue());
}
} // namespace

TRQParameterManager::TRQParameterManager (TRQSettingsHost& p, TRQUndoManager& u)
    : processor (p)
    , undoManager (u)
{
    processor.asAudioProcessor().addListener (this);
}

TRQParameterManager::~TRQParameterManager()
{
    processor.asAudioProcessor().removeListener (this);
}

void TRQParameterManager::setController (std::shared_ptr<TRQPresetController> presetController)
{
    controller = std::move (presetController);
}

std::unique_ptr<ChangeAction> TRQParameterManager::makeAction() const
{
    return std::make_unique<ChangeAction> (processor, controller);
}

void TRQParameterManager::audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails&) {}

void TRQParameterManager::audioProcessorParameterChangeGestureBegin (juce::AudioProcessor*, int index)
{
    if (!isParameterIndex (index))
        return;
    const auto id = static_cast<ParameterId> (index);

    if (openAction == nullptr)
    {
        openAction = makeAction();
        openAction->before.recordModified();
    }
    openAction->before.values.emplace_back (id, normalisedNow (processor, id));

    for (const auto dependent : dependentsOf (id))
    {
        openAction->before.values.emplace_back (dependent, normalisedNow (processor, dependent));
        gestureDependents.insert (id);
    }
}

void TRQParameterManager::audioProcessorParameterChangeGestureEnd (juce::AudioProcessor*, int index)
{
    if (!isParameterIndex (index) || openAction == nullptr)
        return;
    const auto id = static_cast<ParameterId> (index);
    auto& before = openAction->before;
    auto& after = openAction->after;
    if (before.values.empty() || before.find (id) == nullptr)
        return;

    after.set (id, normalisedNow (processor, id));
    if (gestureDependents.erase (id) > 0)
        for (const auto dependent : dependentsOf (id))
            after.set (dependent, normalisedNow (processor, dependent));

    // Other gestures are still open.
    if (after.values.size() != before.values.size())
        return;

    // A click that moved nothing leaves no trace.
    if (after.values == before.values && after.presetUuid == before.presetUuid)
    {
        openAction.reset();
        return;
    }

    after.recordModified();

    if (before.presetUuid.isEmpty() && undoManager.nowMs() - undoManager.lastTimeStampMs() >= joinWindowMs)
        undoManager.beginNewTransaction();

    undoManager.perform (openAction.release());
}

void TRQParameterManager::audioProcessorParameterChanged (juce::AudioProcessor*, int index, float normalised)
{
    if (!isParameterIndex (index))
        return;
    parameterChanged.emit (index, normalised);

    const auto id = static_cast<ParameterId> (index);
    if (gestureDependents.count (id) != 0 && !keepingPartners)
        keepPartnersInRange (id, normalised);
}

// Keeps partners within their ratio of the moved parameter; when a partner is already
// at its limit, the moved parameter is held back instead. No row of this product has
// partners, so this never runs here.
void TRQParameterManager::keepPartnersInRange (ParameterId id, float normalised)
{
    keepingPartners = true;
    const auto& row = ParameterCatalogue::row (id);
    const float x = snapAndClamp (id, fromNormalised (id, normalised));
    for (const auto partner : {row.upperPartner, row.lowerPartner})
    {
        if (partner < 0)
            continue;
        const auto p = static_cast<ParameterId> (partner);
        const bool upper = partner == row.upperPartner;
        auto& other = processor.getAudioParameter (static_cast<int> (p));
        const float y = other.getRealValue();
        const float limit =
            snapAndClamp (p, upper ? std::min (y, x * row.partnerRatio) : std::max (y, x * row.partnerRatio));
        if (limit != y)
        {
            other.setValueNotifyingHost (toNormalised (p, limit));
        }
        else
        {
            const float back = snapAndClamp (id, upper ? std::max (x, y / row.partnerRatio)
                                                       : std::min (x, y / row.partnerRatio));
            processor.getAudioParameter (static_cast<int> (id))
                .setValueNotifyingHost (toNormalised (id, back));
        }
    }
    keepingPartners = false;
}

std::shared_ptr<StateSnapshot> TRQParameterManager::captureSnapshot (const juce::String& uuid) const
{
    auto snapshot = std::make_shared<StateSnapshot>();
    snapshot->processor = &processor;
    snapshot->controller = controller;
    snapshot->captureAll (uuid);
    return snapshot;
}

void TRQParameterManager::beginPresetAction (const juce::String& uuid)
{
    undoManager.beginNewTransaction();
    openAction = makeAction();
    openAction->before.captureAll (uuid);
}

void TRQParameterManager::endPresetAction (const juce::String& uuid)
{
    if (openAction == nullptr)
        openAction = makeAction();
    openAction->after.captureAll (uuid);
    undoManager.perform (openAction.release());
}

bool TRQParameterManager::toggleAB (const juce::String& presetUuid, bool copy)
{
    isOnB = !isOnB;
    if (copy)
    {
        snapshots["A"] = captureSnapshot (presetUuid);
        snapshots["B"] = captureSnapshot (presetUuid);
        return isOnB;
    }

    const juce::String leaving = isOnB ? "A" : "B";
    const juce::String entering = isOnB ? "B" : "A";
    snapshots[leaving] = captureSnapshot (presetUuid);
    if (const auto found = snapshots.find (entering); found != snapshots.end())
        found->second->apply();
    return isOnB;
}
