#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

#include <memory>

// Loads the built plug-in bundles the way a host does.
namespace HostedPlugin
{
enum class Format
{
    vst3,
    lv2
};

const char* formatName (Format format);

// A fresh instance, prepared for nothing yet; fails the calling test if the bundle won't load.
std::unique_ptr<juce::AudioPluginInstance> load (Format format, double sampleRate = 48000.0,
                                                 int blockSize = 512);

// The parameter whose name is given, or null.
juce::AudioProcessorParameter* parameterNamed (juce::AudioProcessor& processor, const juce::String& name);

// Runs a whole signal through the instance in blocks; input channels beyond the
// signal's are silent. Returns the main output.
juce::AudioBuffer<float> run (juce::AudioProcessor& processor, const juce::AudioBuffer<float>& input,
                              int blockSize, bool bypassed = false);
} // namespace HostedPlugin
