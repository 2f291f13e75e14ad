#pragma once

#include "state/ParameterId.h"
#include "state/TRQAudioParameterUI.h"
#include "state/TRQLinkManager.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <atomic>
#include <memory>
#include <unordered_set>

// A host-visible parameter: one per catalogue row. It keeps the real value, speaks
// normalised values to the host and raises a changed flag for the DSP.
//
// setValue is the host's way in and tells the host nothing back, so the processor may
// also use it to apply a value quietly; setValueNotifyingHost is the way to be heard.
class TRQAudioParameter : public juce::AudioProcessorParameterWithID, public TRQAudioParameterUI
{
public:
    // parameterId is the decimal id as text; startValue is the real value to begin
    // with, which is also the preset default. Throws std::out_of_range for an id
    // without a catalogue row.
    TRQAudioParameter (const juce::String& parameterId, const juce::String& name, const juce::String& label,
                       float factoryDefault, float startValue);
    ~TRQAudioParameter() override;

    float getValue() const override;
    void setValue (float normalised) override;
    float getDefaultValue() const override;
    int getNumSteps() const override;
    bool isDiscrete() const override;
    bool isBoolean() const override;
    juce::String getText (float normalised, int maximumLength) const override;
    float getValueForText (const juce::String& text) const override;
    bool isOrientationInverted() const override;
    bool isAutomatable() const override;
    bool isMetaParameter() const override;

    ParameterId getId() const noexcept { return id; }
    float getRealValue() const noexcept { return realValue.load(); }

    // Snaps, clamps and stores a real value and raises the changed flag, telling
    // neither the host nor the link manager: for links and per-layout defaults.
    void storeRealValue (float real) noexcept;

    float getFactoryDefault() const noexcept { return factoryDefault; }

    // The default preset's value; message thread only.
    float getPresetDefault() const noexcept { return presetDefault; }
    void setPresetDefault (float real) noexcept { presetDefault = real; }

    // While false, host changes are dropped.
    void setAutomatable (bool shouldBeAutomatable) noexcept { automatable.store (shouldBeAutomatable); }

    // Values a control may not take.
    const std::unordered_set<float>& getExcludedValues() const noexcept { return excludedValues; }

    TRQLinkManager& getLinkManager() const noexcept { return *linkManager; }
    void setLinkManager (std::unique_ptr<TRQLinkManager> manager);

private:
    const ParameterId id;
    const float factoryDefault;
    const int numSteps;
    const bool discrete;
    float presetDefault;
    std::unordered_set<float> excludedValues;
    std::atomic<bool> automatable{true};
    std::unique_ptr<TRQLinkManager> linkManager;
    std::atomic<float> realValue;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (TRQAudioParameter)
};
