#include "HostedPlugin.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace HostedPlugin
{
namespace
{
// The bundles this build made, unless the environment names installed ones
// (scripts/package-check.sh loads those of the Debian package).
juce::String bundle (const char* variable, const char* built)
{
    const char* installed = std::getenv (variable);
    return installed != nullptr && *installed != 0 ? juce::String (installed) : juce::String (built);
}
} // namespace

const char* formatName (Format format)
{
    return format == Format::vst3 ? "VST3" : "LV2";
}

std::unique_ptr<juce::AudioPluginInstance> load (Format format, double sampleRate, int blockSize)
{
    juce::OwnedArray<juce::PluginDescription> types;
    std::unique_ptr<juce::AudioPluginFormat> pluginFormat;

    if (format == Format::vst3)
    {
        pluginFormat = std::make_unique<juce::VST3PluginFormat>();
        pluginFormat->findAllTypesForFile (types, bundle ("ZOLK_VST3_BUNDLE", ZOLK_VST3_BUNDLE));
    }
    else
    {
        pluginFormat = std::make_unique<juce::LV2PluginFormat>();
        const juce::FileSearchPath bundles (
            juce::File (bundle ("ZOLK_LV2_BUNDLE", ZOLK_LV2_BUNDLE)).getParentDirectory().getFullPathName());
        pluginFormat->searchPathsForPlugins (bundles, false, false);
        pluginFormat->findAllTypesForFile (types, ZOLK_LV2_URI);
    }

    if (types.isEmpty())
    {
        ADD_FAILURE() << "no plug-in found in the " << formatName (format) << " bundle";
        return nullptr;
    }

    juce::String error;
    auto instance = pluginFormat->createInstanceFromDescription (*types[0], sampleRate, blockSize, error);
    if (instance == nullptr)
        ADD_FAILURE() << "cannot instantiate the " << formatName (format) << " plug-in: " << error;
    return instance;
}

juce::AudioProcessorParameter* parameterNamed (juce::AudioProcessor& processor, const juce::String& name)
{
    for (auto* parameter : processor.getParameters())
        if (parameter->getName (1024) == name)
            return parameter;
    return nullptr;
}

juce::AudioBuffer<float> run (juce::AudioProcessor& processor, const juce::AudioBuffer<float>& input,
                              int blockSize, bool bypassed)
{
    const int ins = processor.getTotalNumInputChannels();
    const int outs = processor.getMainBusNumOutputChannels();
    const int total = input.getNumSamples();
    juce::AudioBuffer<float> output (outs, total);
    juce::AudioBuffer<float> block (std::max (ins, processor.getTotalNumOutputChannels()), blockSize);
    juce::MidiBuffer midi;

    // Some formats bypass through the plug-in's own bypass control (LV2's enabled
    // port), which a host sets around the bypassed blocks.
    auto* bypass = bypassed ? processor.getBypassParameter() : nullptr;
    if (bypass != nullptr)
        bypass->setValueNotifyingHost (1.0f);

    for (int position = 0; position < total; position += blockSize)
    {
        const int n = std::min (blockSize, total - position);
        block.setSize (block.getNumChannels(), n, false, false, true);
        block.clear();
        for (int c = 0; c < std::min (ins, input.getNumChannels()); ++c)
            block.copyFrom (c, 0, input, c, position, n);

        if (bypassed)
            processor.processBlockBypassed (block, midi);
        else
            processor.processBlock (block, midi);

        for (int c = 0; c < outs; ++c)
            output.copyFrom (c, position, block, c, 0, n);
    }
    if (bypass != nullptr)
        bypass->setValueNotifyingHost (0.0f);
    return output;
}
} // namespace HostedPlugin
