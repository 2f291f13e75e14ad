#pragma once

#include "state/ParameterId.h"
#include "state/TRQChangeAction.h"
#include "state/TRQSignals.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <map>
#include <memory>
#include <unordered_set>

class TRQSettingsHost;
class TRQPresetController;
class TRQUndoManager;

// Listens to every parameter of the processor and turns gestures, preset changes and
// pasted settings into undoable actions; keeps the A/B memory.
class TRQParameterManager : public juce::AudioProcessorListener, public TRQSignals::Trackable
{
public:
    TRQParameterManager (TRQSettingsHost& processor, TRQUndoManager& undoManager);
    ~TRQParameterManager() override;

    void audioProcessorParameterChanged (juce::AudioProcessor*, int index, float normalised) override;
    void audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails&) override;
    void audioProcessorParameterChangeGestureBegin (juce::AudioProcessor*, int index) override;
    void audioProcessorParameterChangeGestureEnd (juce::AudioProcessor*, int index) override;

    // A bulk change (preset selection, paste): one transaction of its own, from the
    // values of the preset being left to those of the preset entered.
    void beginPresetAction (const juce::String& uuid);
    void endPresetAction (const juce::String& uuid);

    // Flips between the A and B memories, or with copy makes both hold the present
    // settings. Returns whether side B is live now. Leaves the history alone.
    bool toggleAB (const juce::String& presetUuid, bool copy);
    bool getIsOnB() const { return isOnB; }

    void setController (std::shared_ptr<TRQPresetController> presetController);

    // Told of each change of a parameter below 21, on the caller's thread.
    TRQSignals::Signal<void (int, float)> parameterChanged;

private:
    std::unique_ptr<ChangeAction> makeAction() const;
    std::shared_ptr<StateSnapshot> captureSnapshot (const juce::String& uuid) const;
    void keepPartnersInRange (ParameterId id, float normalised);

    TRQSettingsHost& processor;
    TRQUndoManager& undoManager;
    std::unique_ptr<ChangeAction> openAction;
    std::map<juce::String, std::shared_ptr<StateSnapshot>> snapshots;
    // Ids whose partners move under a gesture; no row of this product has partners.
    std::unordered_set<std::uint32_t> gestureDependents;
    std::shared_ptr<TRQPresetController> controller;
    bool isOnB = false;
    bool keepingPartners = false;
};
