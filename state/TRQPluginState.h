#pragma once

#include "state/TRQSignals.h"

#include <juce_core/juce_core.h>

#include <array>

// The settings that travel with a saved project besides the 21 parameter values:
// the selected preset, whether the advanced pane is open, and the parameter locks.
class TRQPluginState : public TRQSignals::Trackable
{
public:
    static constexpr const char* elementName = "PluginState";
    static constexpr const char* lastPresetAttribute = "LastPresetRecorded";
    static constexpr const char* advancedPaneAttribute = "AdvancedPaneIsOpen";
    static constexpr const char* lockStatesAttribute = "ParameterLockStates";

    using LockStates = std::array<bool, 21>;

    TRQPluginState();
    ~TRQPluginState() override;

    void setLastPresetRecorded (juce::String uuid);
    void setAdvancedPaneIsOpen (bool isOpen);
    void setLockStates (const LockStates& locks);
    void setLock (unsigned id, bool locked);
    LockStates getLockStates() const;

    juce::String getAttribute (const juce::String& name) const { return element.getStringAttribute (name); }

    const juce::XmlElement& getElement() const { return element; }

    // Takes the attributes of a "PluginState" element read from a saved chunk.
    void replaceWith (const juce::XmlElement& restored);

private:
    juce::XmlElement element{elementName};
};
