#include "HostedPlugin.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

using HostedPlugin::Format;

namespace
{
struct FactoryPreset
{
    juce::String name;
    juce::var values;
};

std::vector<FactoryPreset> factoryPresets()
{
    std::vector<FactoryPreset> list;
    const auto document = juce::JSON::parse (juce::File (ZOLK_FACTORY_PRESETS));
    for (const auto& section : *document["0002"]["sections"].getArray())
        for (const auto& preset : *section["presets"].getArray())
            list.push_back ({preset["name"].toString(), preset["values"]});
    return list;
}

// Parameters whose normalised value is their real value over a plain factor, with that factor.
const std::pair<const char*, std::pair<const char*, float>> linearParameters[] = {
    {"2", {"Compression Amount", 100.0f}}, {"3", {"Wow/Flutter Amount", 100.0f}},
    {"4", {"Lo-Fi Amount", 100.0f}},       {"11", {"Wow/Flutter Speed", 2.0f}},
    {"14", {"Lo-Fi Type", 2.0f}},
};

float valueOf (juce::AudioProcessor& plugin, const char* name)
{
    auto* parameter = HostedPlugin::parameterNamed (plugin, name);
    return parameter != nullptr ? parameter->getValue() : -1.0f;
}

// Runs silent blocks and the message loop until the condition holds or about two
// seconds pass: formats deliver a program's values through their own channels.
bool settleUntil (juce::AudioProcessor& plugin, const std::function<bool()>& condition, int turns = 100)
{
    juce::AudioBuffer<float> silence (2, 64);
    silence.clear();
    for (int i = 0; i < turns; ++i)
    {
        HostedPlugin::run (plugin, silence, 64);
        juce::MessageManager::getInstance()->runDispatchLoopUntil (20);
        if (condition())
            return true;
    }
    return false;
}

bool holdsPreset (juce::AudioProcessor& plugin, const FactoryPreset& preset)
{
    for (const auto& [key, parameter] : linearParameters)
        if (std::abs (valueOf (plugin, parameter.first) -
                      static_cast<float> (preset.values[key]) / parameter.second) > 1.0e-4f)
            return false;
    return true;
}

// The saved state with the plug-in's own document edited: the host wraps the plug-in's
// chunk in its own (VST3 in XML, LV2 in Turtle), each time in JUCE's base64.
juce::MemoryBlock editSavedState (Format format, const juce::MemoryBlock& chunk,
                                  const std::function<void (juce::XmlElement&)>& edit)
{
    const auto editOurs = [&] (const juce::String& encoded) -> juce::String
    {
        juce::MemoryBlock ours;
        if (!ours.fromBase64Encoding (encoded))
            return {};
        auto document =
            juce::AudioProcessor::getXmlFromBinary (ours.getData(), static_cast<int> (ours.getSize()));
        if (document == nullptr || !document->hasTagName ("MYPLUGINSETTINGS"))
            return {};
        edit (*document);
        juce::MemoryBlock edited;
        juce::AudioProcessor::copyXmlToBinary (*document, edited);
        return edited.toBase64Encoding();
    };

    if (format == Format::vst3)
    {
        auto outer =
            juce::AudioProcessor::getXmlFromBinary (chunk.getData(), static_cast<int> (chunk.getSize()));
        auto* component = outer != nullptr ? outer->getChildByName ("IComponent") : nullptr;
        if (component == nullptr)
            return {};
        const auto edited = editOurs (component->getAllSubText());
        component->deleteAllTextElements();
        component->addTextElement (edited);
        juce::MemoryBlock result;
        juce::AudioProcessor::copyXmlToBinary (*outer, result);
        return result;
    }

    auto text = chunk.toString();
    for (int start = text.indexOfChar ('"'); start >= 0;)
    {
        const int end = text.indexOfChar (start + 1, '"');
        if (end < 0)
            break;
        const auto literal = text.substring (start + 1, end);
        if (const auto edited = editOurs (literal); edited.isNotEmpty())
        {
            text = text.replaceSection (start + 1, literal.length(), edited);
            return {text.toRawUTF8(), text.getNumBytesAsUTF8()};
        }
        start = text.indexOfChar (end + 1, '"');
    }
    return {};
}
} // namespace

class HostedPrograms : public ::testing::TestWithParam<Format>
{
protected:
    const std::vector<FactoryPreset> factory = factoryPresets();

    const FactoryPreset& presetNamed (const juce::String& name) const
    {
        for (const auto& preset : factory)
            if (preset.name == name)
                return preset;
        throw std::runtime_error ("no factory preset " + name.toStdString());
    }

    // The host's index of a program: an LV2 host lists the bundle's presets in an
    // order of its own.
    int programNamed (juce::AudioProcessor& plugin, const juce::String& name)
    {
        for (int i = 0; i < plugin.getNumPrograms(); ++i)
            if (plugin.getProgramName (i) == name)
                return i;
        return -1;
    }
};

TEST_P (HostedPrograms, AreTheFactoryPresetsByName)
{
    auto plugin = HostedPlugin::load (GetParam());
    ASSERT_NE (plugin, nullptr);
    ASSERT_GT (factory.size(), 10u);
    ASSERT_EQ (plugin->getNumPrograms(), static_cast<int> (factory.size()));
    juce::StringArray names;
    for (int i = 0; i < plugin->getNumPrograms(); ++i)
        names.add (plugin->getProgramName (i));
    if (GetParam() == Format::vst3)
    {
        for (size_t i = 0; i < factory.size(); ++i)
            EXPECT_EQ (names[static_cast<int> (i)], factory[i].name) << "in the factory file's order";
    }
    auto unique = names;
    unique.removeDuplicates (false);
    EXPECT_EQ (unique.size(), names.size()) << "each once";
    for (const auto& preset : factory)
        EXPECT_TRUE (names.contains (preset.name)) << preset.name;
}

TEST_P (HostedPrograms, ChoosingOneAppliesItsPreset)
{
    auto plugin = HostedPlugin::load (GetParam());
    ASSERT_NE (plugin, nullptr);
    plugin->prepareToPlay (48000.0, 512);
    for (const auto* name : {"Shellac 78", "Early Sampler", "Default"})
    {
        SCOPED_TRACE (name);
        const int program = programNamed (*plugin, name);
        ASSERT_GE (program, 0);
        const auto& preset = presetNamed (name);
        plugin->setCurrentProgram (program);
        EXPECT_TRUE (settleUntil (*plugin, [&] { return holdsPreset (*plugin, preset); }));
        EXPECT_EQ (plugin->getCurrentProgram(), program);
    }
}

// A host restores a project and then sets the program it stored, as many do: the
// restored settings stay. So do they when the saved program no longer exists, and
// when the host then sets a program out of range.
TEST_P (HostedPrograms, RestoredSettingsOutliveTheHostSettingItsProgramAgain)
{
    auto first = HostedPlugin::load (GetParam());
    ASSERT_NE (first, nullptr);
    first->prepareToPlay (48000.0, 512);
    const int program = programNamed (*first, "Worn Record");
    ASSERT_GE (program, 0);
    first->setCurrentProgram (program);
    const auto& worn = presetNamed ("Worn Record");
    ASSERT_TRUE (settleUntil (*first, [&] { return holdsPreset (*first, worn); }));
    // The preset's values echo back to the host for a moment; the user's change comes after.
    settleUntil (
        *first, [] { return false; }, 10);
    auto* amount = HostedPlugin::parameterNamed (*first, "Compression Amount");
    ASSERT_NE (amount, nullptr);
    amount->setValueNotifyingHost (0.77f);
    settleUntil (
        *first, [] { return false; }, 10);
    ASSERT_NEAR (amount->getValue(), 0.77f, 1.0e-4f);
    juce::MemoryBlock chunk;
    first->getStateInformation (chunk);

    const auto gone = editSavedState (GetParam(), chunk,
                                      [] (juce::XmlElement& root)
                                      {
                                          auto* state = root.getChildByName ("PluginState");
                                          state->setAttribute ("LastPresetRecorded",
                                                               "0badc0de-0000-4000-8000-000000000000");
                                          state->setAttribute ("HostProgram", 4000);
                                      });
    ASSERT_GT (gone.getSize(), 0u);

    // The program stored with the project, and one the host no longer has.
    for (const auto& [saved, storedName] : {std::pair (chunk, "Worn Record"), std::pair (gone, "")})
    {
        auto second = HostedPlugin::load (GetParam());
        ASSERT_NE (second, nullptr);
        second->prepareToPlay (48000.0, 512);
        second->setStateInformation (saved.getData(), static_cast<int> (saved.getSize()));
        const auto keeps = [&]
        { return std::abs (valueOf (*second, "Compression Amount") - 0.77f) < 1.0e-4f; };
        ASSERT_TRUE (settleUntil (*second, keeps));

        // An LV2 host lists presets in an order of its own: it stores the preset itself.
        const int stored = *storedName != 0 ? programNamed (*second, storedName) : 4000;
        second->setCurrentProgram (stored);
        second->setCurrentProgram (-1);
        settleUntil (
            *second, [] { return false; }, 25);
        EXPECT_TRUE (keeps()) << "program " << stored;
        EXPECT_NEAR (valueOf (*second, "Lo-Fi Type"), static_cast<float> (worn.values["14"]) / 2.0f, 1.0e-4f);
    }
}

INSTANTIATE_TEST_SUITE_P (Formats, HostedPrograms, ::testing::Values (Format::vst3, Format::lv2),
                          [] (const auto& info)
                          { return std::string (HostedPlugin::formatName (info.param)); });
