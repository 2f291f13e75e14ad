#include "HostedPlugin.h"
#include "support/BusLayouts.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

using HostedPlugin::Format;

namespace
{
const char* const parameterNames[] = {"Master On/Off",
                                      "Input Gain",
                                      "Compression Amount",
                                      "Wow/Flutter Amount",
                                      "Lo-Fi Amount",
                                      "Output Gain",
                                      "Master Mix",
                                      "Comp Attack Time Constant",
                                      "Comp Release Time Constant",
                                      "Comp Stereo Link",
                                      "Wow/Flutter Mix",
                                      "Wow/Flutter Speed",
                                      "Wow/Flutter Phase",
                                      "Lo-Fi Noise Gain",
                                      "Lo-Fi Type",
                                      "Lo-Fi Crunch",
                                      "HQ Mode",
                                      "Digital Ref Level",
                                      "Sidechain Listen",
                                      "Sidechain External",
                                      "Sidechain Tilt"};

// Factory defaults, normalised.
const float defaultValues[] = {1.0f,    24.0f / 36.0f, 0.5f, 0.15f, 0.5f, 24.0f / 36.0f, 1.0f,
                               0.5254f, 0.5254f,       1.0f, 1.0f,  0.0f, 0.0f,          96.0f / 108.0f,
                               0.0f,    0.0f,          0.0f, 0.5f,  0.0f, 0.0f,          0.5f};

// Parameters by their catalogue index. Formats may list them in their own order
// (LV2 sorts by name and adds a bypass), so they are found by name.
juce::AudioProcessorParameter& param (juce::AudioProcessor& plugin, int index)
{
    auto* p = HostedPlugin::parameterNamed (plugin, parameterNames[index]);
    if (p == nullptr)
        throw std::runtime_error (std::string ("no parameter named ") + parameterNames[index]);
    return *p;
}

// Some formats carry parameter changes and their echoes only while audio runs (LV2
// sends them as events of a block): one silent block and a turn of the message
// loop bring plug-in and host up to date.
void settle (juce::AudioProcessor& plugin)
{
    juce::AudioBuffer<float> silence (2, 64);
    silence.clear();
    HostedPlugin::run (plugin, silence, 64);
    juce::MessageManager::getInstance()->runDispatchLoopUntil (20);
}

juce::AudioBuffer<float> sineBurst (int channels, int length, double rate)
{
    juce::AudioBuffer<float> b (channels, length);
    for (int c = 0; c < channels; ++c)
        for (int i = 0; i < length; ++i)
            b.setSample (c, i,
                         static_cast<float> (0.5 * std::sin (6.283185307 * (440.0 + 110.0 * c) * i / rate)));
    return b;
}

juce::AudioProcessor::BusesLayout layout (int ins, int outs, int sidechain)
{
    return BusLayouts::make (ins, outs, sidechain);
}

// Largest difference between the output and the input delayed by `latency`, from `from` on.
float distanceFromDelayedInput (const juce::AudioBuffer<float>& in, const juce::AudioBuffer<float>& out,
                                int latency, int from)
{
    float worst = 0.0f;
    for (int c = 0; c < out.getNumChannels(); ++c)
        for (int i = std::max (from, latency); i < out.getNumSamples(); ++i)
            worst = std::max (worst,
                              std::abs (out.getSample (c, i) -
                                        in.getSample (std::min (c, in.getNumChannels() - 1), i - latency)));
    return worst;
}
} // namespace

class HostedPluginTest : public ::testing::TestWithParam<Format>
{
};

TEST_P (HostedPluginTest, OffersTheTwentyOneParametersWithNamesStepsAndDefaults)
{
    auto plugin = HostedPlugin::load (GetParam());
    ASSERT_NE (plugin, nullptr);
    ASSERT_GE (plugin->getParameters().size(), 21);

    for (int i = 0; i < 21; ++i)
    {
        SCOPED_TRACE (parameterNames[i]);
        if (GetParam() == Format::vst3)
        {
            EXPECT_EQ (plugin->getParameters()[i]->getName (1024), juce::String (parameterNames[i]))
                << "host order";
        }
        auto* p = HostedPlugin::parameterNamed (*plugin, parameterNames[i]);
        ASSERT_NE (p, nullptr);
        EXPECT_NEAR (p->getValue(), defaultValues[i], 1.0e-3f);
        EXPECT_NEAR (p->getDefaultValue(), defaultValues[i], 1.0e-3f);
    }
}

TEST_P (HostedPluginTest, AcceptsAndRefusesLayouts)
{
    auto plugin = HostedPlugin::load (GetParam());
    ASSERT_NE (plugin, nullptr);

    EXPECT_TRUE (plugin->checkBusesLayoutSupported (layout (2, 2, 2)));
    if (GetParam() == Format::lv2)
        return; // an LV2 bundle declares one fixed set of ports

    EXPECT_TRUE (plugin->checkBusesLayoutSupported (layout (1, 2, 1)));
    EXPECT_TRUE (plugin->checkBusesLayoutSupported (layout (1, 1, 1)));
    EXPECT_TRUE (plugin->checkBusesLayoutSupported (layout (2, 2, 1)));
    EXPECT_FALSE (plugin->checkBusesLayoutSupported (layout (2, 1, 2)));
    EXPECT_FALSE (plugin->checkBusesLayoutSupported (layout (2, 2, 3)));
}

TEST_P (HostedPluginTest, SwitchedOffOrBypassedItGivesTheDrySignalAtTheReportedLatency)
{
    constexpr double rate = 48000.0;
    constexpr int block = 256;
    auto plugin = HostedPlugin::load (GetParam(), rate, block);
    ASSERT_NE (plugin, nullptr);
    plugin->prepareToPlay (rate, block);
    const auto input = sineBurst (2, static_cast<int> (rate), rate);

    // Formats deliver a latency change through the host's own channels: a block
    // and a turn of the message loop.
    HostedPlugin::run (*plugin, input, block);
    juce::MessageManager::getInstance()->runDispatchLoopUntil (100);
    const int latency = plugin->getLatencySamples();
    EXPECT_EQ (latency, 17);

    // Audio passes while on.
    const auto on = HostedPlugin::run (*plugin, input, block);
    EXPECT_GT (on.getMagnitude (0, on.getNumSamples() / 2, on.getNumSamples() / 2), 0.01f);

    // Off: after the 50 ms fade the output is the input, delayed exactly by the latency.
    param (*plugin, 0).setValueNotifyingHost (0.0f);
    const auto off = HostedPlugin::run (*plugin, input, block);
    EXPECT_LT (distanceFromDelayedInput (input, off, latency, static_cast<int> (0.1 * rate)), 1.0e-6f);

    // Host bypass behaves the same way, at the same latency.
    param (*plugin, 0).setValueNotifyingHost (1.0f);
    HostedPlugin::run (*plugin, input, block);
    const auto bypassed = HostedPlugin::run (*plugin, input, block, true);
    EXPECT_EQ (plugin->getLatencySamples(), latency);
    EXPECT_LT (distanceFromDelayedInput (input, bypassed, latency, static_cast<int> (0.1 * rate)), 1.0e-6f);
    plugin->releaseResources();
}

TEST_P (HostedPluginTest, StateSavedByOneInstanceRestoresInAnother)
{
    auto first = HostedPlugin::load (GetParam());
    ASSERT_NE (first, nullptr);
    first->prepareToPlay (48000.0, 512);
    juce::Random random (7);
    for (int i = 0; i < 21; ++i)
        param (*first, i).setValueNotifyingHost (random.nextFloat());
    settle (*first);

    juce::MemoryBlock chunk;
    first->getStateInformation (chunk);
    ASSERT_GT (chunk.getSize(), 8u);

    auto second = HostedPlugin::load (GetParam());
    ASSERT_NE (second, nullptr);
    second->prepareToPlay (48000.0, 512);
    second->setStateInformation (chunk.getData(), static_cast<int> (chunk.getSize()));
    settle (*second);

    // The host's view of the first instance holds what it sent, before the
    // plug-in snapped it to its steps; restoring the chunk there too brings the
    // view up to date.
    first->setStateInformation (chunk.getData(), static_cast<int> (chunk.getSize()));
    settle (*first);

    int awayFromDefault = 0;
    for (int i = 0; i < 21; ++i)
    {
        EXPECT_NEAR (param (*second, i).getValue(), param (*first, i).getValue(), 1.0e-6f)
            << parameterNames[i];
        awayFromDefault += std::abs (param (*second, i).getValue() - defaultValues[i]) > 1.0e-3f ? 1 : 0;
    }
    EXPECT_GE (awayFromDefault, 15) << "the restored values are the saved ones, not the defaults";
}

INSTANTIATE_TEST_SUITE_P (Formats, HostedPluginTest, ::testing::Values (Format::vst3, Format::lv2),
                          [] (const auto& info)
                          { return std::string (HostedPlugin::formatName (info.param)); });

// Texts are the plug-in's own only where the format carries them.
TEST (HostedVST3, ShowsTheParametersTextsAndSteps)
{
    auto plugin = HostedPlugin::load (Format::vst3);
    ASSERT_NE (plugin, nullptr);
    const auto& p = plugin->getParameters();

    EXPECT_EQ (p[1]->getText (24.0f / 36.0f, 64), "0.0 dB");
    EXPECT_EQ (p[0]->getText (0.0f, 64), "Off ");
    EXPECT_EQ (p[11]->getText (1.0f, 64), "78 RPM ");
    EXPECT_EQ (p[19]->getText (0.01f, 64), "1 %");
    EXPECT_EQ (p[13]->getText (0.0f, 64), "Off ");

    EXPECT_EQ (p[0]->getNumSteps(), 2);
    EXPECT_EQ (p[11]->getNumSteps(), 3);
    EXPECT_EQ (p[14]->getNumSteps(), 3);
}
