#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

#include <memory>

class TRQAudioParameter;
class TRQParameterManager;
class TRQPluginState;
class TRQPresetController;

// What the settings model (undo, presets, preset URLs) needs of the plug-in that
// owns it. The processor implements it; the model never sees the DSP.
class TRQSettingsHost
{
public:
    virtual ~TRQSettingsHost() = default;

    // The host-facing processor, for its listeners and bus layout.
    virtual juce::AudioProcessor& asAudioProcessor() = 0;
    virtual TRQAudioParameter& getAudioParameter (int index) const = 0;
    // Null for an index with no parameter.
    virtual TRQAudioParameter* findParameter (int index) const = 0;
    virtual TRQPluginState& getPluginState() = 0;
    virtual TRQParameterManager& getParameterManager() const = 0;
    virtual std::shared_ptr<TRQPresetController> getPresetController() const = 0;
};
