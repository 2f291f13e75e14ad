#include "core/HVNPublicDSP.h"
#include "core/ProcessorTestSupport.h"
#include "state/TRQAudioParameter.h"
#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

using namespace ProcessorTestSupport;

namespace
{
struct LatencyListener : juce::AudioProcessorListener
{
    int latencyChanges = 0;
    void audioProcessorParameterChanged (juce::AudioProcessor*, int, float) override {}
    void audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails& details) override
    {
        latencyChanges += details.latencyChanged ? 1 : 0;
    }
};

std::vector<float> allValues (juce::AudioProcessor& p)
{
    std::vector<float> values;
    for (int i = 0; i < 21; ++i)
        values.push_back (p.getParameters()[i]->getValue());
    return values;
}
} // namespace

TEST (TRQAudioProcessor, ChecksLayoutsAsTheChannelPairsAllow)
{
    auto p = make();
    EXPECT_TRUE (p->checkBusesLayoutSupported (layout (2, 2, 2)));
    EXPECT_TRUE (p->checkBusesLayoutSupported (layout (2, 2, 1)));
    EXPECT_TRUE (p->checkBusesLayoutSupported (layout (1, 2, 1)));
    EXPECT_TRUE (p->checkBusesLayoutSupported (layout (1, 1, 1)));
    EXPECT_FALSE (p->checkBusesLayoutSupported (layout (2, 1, 2))) << "stereo in, mono out";
    EXPECT_FALSE (p->checkBusesLayoutSupported (layout (2, 2, 3))) << "three-channel sidechain";
    EXPECT_FALSE (p->checkBusesLayoutSupported (layout (2, 2, 0))) << "no sidechain channels";
    EXPECT_FALSE (p->checkBusesLayoutSupported (layout (1, 2, 2))) << "sidechain wider than a mono input";

    // Discrete channels only are refused, even in a count we would take.
    auto discrete = layout (2, 2, 2);
    discrete.inputBuses.getReference (0) = juce::AudioChannelSet::discreteChannels (2);
    EXPECT_FALSE (p->checkBusesLayoutSupported (discrete));
}

TEST (TRQAudioProcessor, NamesItselfAndStartsFromTheCatalogueDefaults)
{
    auto p = make();
    EXPECT_EQ (p->getName(), "Zolk Compressor");
    const auto names = p->getAlternateDisplayNames();
    ASSERT_EQ (names.size(), 14);
    EXPECT_EQ (names[0], "Hvn Zolk Compressor 3");
    EXPECT_EQ (names[13], "Z");
    EXPECT_EQ (p->getParameters().size(), 21);
    EXPECT_EQ (p->getTailLengthSeconds(), 0.0);
    EXPECT_FLOAT_EQ (p->getAudioParameter (2).getRealValue(), 50.0f);
    EXPECT_FLOAT_EQ (p->getAudioParameter (17).getRealValue(), -18.0f);
    EXPECT_FALSE (p->getStateHasBeenSet());
}

TEST (TRQAudioProcessor, RebuildsItsDSPOnlyWhenTheSettingsGrow)
{
    auto p = make();
    p->prepareToPlay (48000.0, 512);
    const auto first = p->getDSP();
    ASSERT_NE (first, nullptr);

    p->prepareToPlay (48000.0, 512);
    EXPECT_EQ (p->getDSP(), first) << "same settings only reset";
    p->prepareToPlay (48000.0, 128);
    EXPECT_EQ (p->getDSP(), first) << "a smaller block never rebuilds";
    p->prepareToPlay (48000.0, 1024);
    EXPECT_NE (p->getDSP(), first) << "a larger block rebuilds";

    const auto second = p->getDSP();
    p->prepareToPlay (44100.0, 1024);
    EXPECT_NE (p->getDSP(), second) << "another rate rebuilds";
}

TEST (TRQAudioProcessor, ReportsItsLatencyToListeners)
{
    auto p = make();
    LatencyListener listener;
    p->addListener (&listener);
    p->prepareToPlay (48000.0, 256);
    EXPECT_GT (p->getLatencySamples(), 0);
    EXPECT_EQ (listener.latencyChanges, 1);
    EXPECT_EQ (static_cast<uint32_t> (p->getLatencySamples()), p->getDSP()->getCurrentLatency());
    p->removeListener (&listener);
}

TEST (TRQAudioProcessor, ZeroLengthBlocksMoveParametersButRunNoAudio)
{
    auto p = make();
    p->prepareToPlay (48000.0, 256);
    juce::AudioBuffer<float> empty (4, 0);
    juce::MidiBuffer midi;
    p->getParameters()[2]->setValueNotifyingHost (0.9f);
    p->processBlock (empty, midi);
    EXPECT_FLOAT_EQ (p->getDSP()->getCurrentDSP()->parameterValue (2), 90.0f);
}

TEST (TRQAudioProcessor, MapsChannelTypesToTheDSPsCodes)
{
    EXPECT_EQ (TRQAudioProcessor::channelCode (1), 1u);
    EXPECT_EQ (TRQAudioProcessor::channelCode (25), 26u);
    EXPECT_EQ (TRQAudioProcessor::channelCode (26), 27u);
    EXPECT_EQ (TRQAudioProcessor::channelCode (27), 25u);
    EXPECT_EQ (TRQAudioProcessor::channelCode (40), 40u);
}

// Every supported layout, parameters moving every block, HQ toggled now and then:
// after the first block the audio thread never touches the heap.
TEST (TRQAudioProcessor, ProcessingNeverAllocates)
{
    const int layouts[][3] = {{1, 1, 1}, {1, 2, 1}, {2, 2, 2}, {2, 2, 1}};
    for (const auto& l : layouts)
    {
        SCOPED_TRACE (juce::String (l[0]) + " in, " + juce::String (l[1]) + " out, " + juce::String (l[2]) +
                      " sidechain");
        auto p = make (l[0], l[1], l[2]);
        constexpr int block = 256;
        p->prepareToPlay (48000.0, block);

        juce::AudioBuffer<float> buffer (std::max (l[0] + l[2], l[1]), block);
        juce::MidiBuffer midi;
        juce::Random random (3);
        fillSine (buffer, 0, 48000.0);
        p->processBlock (buffer, midi);

        size_t allocations = 0;
        for (int b = 1; b < 400; ++b)
        {
            for (int i = 0; i < 21; ++i)
                if (i != 16)
                    p->getParameters()[i]->setValue (random.nextFloat());
            if (b % 60 == 0)
                p->getParameters()[16]->setValue (p->getParameters()[16]->getValue() > 0.5f ? 0.0f : 1.0f);

            fillSine (buffer, b * block, 48000.0);
            AllocationCounter counter;
            if (b % 7 == 0)
                p->processBlockBypassed (buffer, midi);
            else
                p->processBlock (buffer, midi);
            allocations += counter.allocations() + counter.deallocations();
        }
        EXPECT_EQ (allocations, 0u);
    }
}

TEST (TRQAudioProcessor, UnreadableStateChangesNothingButCountsAsSet)
{
    const juce::String foreign = "<OTHERPLUGIN _2=\"0.9\"/>";
    const juce::String good = "<MYPLUGINSETTINGS _2=\"0.9\"/>";
    auto goodChunk = chunkFromXml (good);

    std::vector<juce::MemoryBlock> bad;
    bad.emplace_back();                        // empty
    bad.emplace_back (goodChunk.getData(), 8); // header only
    bad.emplace_back (goodChunk.getData(), 5); // short
    bad.push_back (chunkFromXml (foreign));    // another plug-in's root
    juce::MemoryBlock corrupt (goodChunk);
    static_cast<char*> (corrupt.getData())[0] ^= 0x5a; // wrong magic number
    bad.push_back (corrupt);
    juce::MemoryBlock garbage (goodChunk);
    for (size_t i = 8; i < garbage.getSize(); ++i)
        static_cast<char*> (garbage.getData())[i] = '<'; // not XML
    bad.push_back (garbage);

    for (const auto& chunk : bad)
    {
        auto p = make();
        const auto before = allValues (*p);
        p->setStateInformation (chunk.getData(), static_cast<int> (chunk.getSize()));
        EXPECT_EQ (allValues (*p), before);
        EXPECT_TRUE (p->getStateHasBeenSet());
    }

    auto p = make();
    p->setStateInformation (nullptr, 0);
    EXPECT_TRUE (p->getStateHasBeenSet());
}

TEST (TRQAudioProcessor, StateKeepsMissingValuesAndCutsAnOverlongLength)
{
    auto p = make();
    auto chunk =
        chunkFromXml ("<MYPLUGINSETTINGS _2=\"0.9\" _4=\"0.1\"><PluginState AdvancedPaneIsOpen=\"1\"/>"
                      "</MYPLUGINSETTINGS>");
    // A length field that runs past the block is cut to what is there.
    auto* bytes = static_cast<uint8_t*> (chunk.getData());
    bytes[4] = 0xff;
    bytes[5] = 0xff;
    p->setStateInformation (chunk.getData(), static_cast<int> (chunk.getSize()));

    EXPECT_FLOAT_EQ (p->getAudioParameter (2).getRealValue(), 90.0f);
    EXPECT_FLOAT_EQ (p->getAudioParameter (4).getRealValue(), 10.0f);
    EXPECT_FLOAT_EQ (p->getAudioParameter (3).getRealValue(), 15.0f) << "missing attributes keep the value";
    EXPECT_EQ (p->getPluginState().getAttribute ("AdvancedPaneIsOpen"), "1");
}

TEST (TRQAudioProcessor, SavedStateRoundTrips)
{
    auto first = make();
    first->getParameters()[5]->setValueNotifyingHost (0.25f);
    first->getPluginState().setLastPresetRecorded ("some-uuid");
    juce::MemoryBlock chunk;
    first->getStateInformation (chunk);

    const auto xml =
        juce::AudioProcessor::getXmlFromBinary (chunk.getData(), static_cast<int> (chunk.getSize()));
    ASSERT_NE (xml, nullptr);
    EXPECT_TRUE (xml->hasTagName ("MYPLUGINSETTINGS"));
    EXPECT_TRUE (xml->hasAttribute ("_20"));
    EXPECT_FALSE (xml->hasAttribute ("defaultChunk")) << "only the AAX wrapper writes it";
    EXPECT_NE (xml->getChildByName ("PluginState"), nullptr);

    auto second = make();
    second->setStateInformation (chunk.getData(), static_cast<int> (chunk.getSize()));
    EXPECT_EQ (allValues (*second), allValues (*first));
    EXPECT_EQ (second->getPluginState().getAttribute ("LastPresetRecorded"), "some-uuid");
}

TEST (TRQAudioProcessor, AAXDefaultChunkStartsAFreshInstanceOnItsDefaults)
{
    auto saved = make (2, 2, 2, true);
    saved->getParameters()[2]->setValueNotifyingHost (0.9f);
    juce::MemoryBlock chunk;
    saved->getStateInformation (chunk);
    auto xml = juce::AudioProcessor::getXmlFromBinary (chunk.getData(), static_cast<int> (chunk.getSize()));
    ASSERT_NE (xml, nullptr);
    EXPECT_EQ (xml->getStringAttribute ("defaultChunk"), "1") << "never received a state";

    auto fresh = make (2, 2, 2, true);
    fresh->setStateInformation (chunk.getData(), static_cast<int> (chunk.getSize()));
    EXPECT_FLOAT_EQ (fresh->getAudioParameter (2).getRealValue(), 50.0f) << "default chunk applies the defaults";

    // Now that it has a state, the same chunk's numbers are used.
    fresh->setStateInformation (chunk.getData(), static_cast<int> (chunk.getSize()));
    EXPECT_FLOAT_EQ (fresh->getAudioParameter (2).getRealValue(), 90.0f);
    juce::MemoryBlock again;
    fresh->getStateInformation (again);
    xml = juce::AudioProcessor::getXmlFromBinary (again.getData(), static_cast<int> (again.getSize()));
    EXPECT_EQ (xml->getStringAttribute ("defaultChunk"), "0");

    // Outside AAX the attribute is ignored.
    auto plain = make();
    plain->setStateInformation (chunk.getData(), static_cast<int> (chunk.getSize()));
    EXPECT_FLOAT_EQ (plain->getAudioParameter (2).getRealValue(), 90.0f);
}

TEST (TRQAudioProcessor, AAXAddsTheGainReductionMeterBehindTheParameters)
{
    auto aax = make (2, 2, 2, true);
    ASSERT_EQ (aax->getParameters().size(), 22);
    auto* meter = aax->getParameters()[21];
    EXPECT_EQ (meter->getName (64), "Gain Reduction");
    EXPECT_EQ (meter->getCategory(), juce::AudioProcessorParameter::compressorLimiterGainReductionMeter);
    EXPECT_FALSE (meter->isAutomatable());
    EXPECT_TRUE (aax->getDSP() == nullptr);
    aax->prepareToPlay (48000.0, 256);
    EXPECT_TRUE (aax->getDSP()->getResetOnTransportStart());
}

TEST (TRQAudioProcessor, MonoLayoutsStartTheStereoLinkWhereTheDSPPutsItUnlessAStateWasRestored)
{
    auto monoToMono = make (1, 1, 1);
    monoToMono->prepareToPlay (48000.0, 256);
    EXPECT_EQ (monoToMono->getAudioParameter (9).getRealValue(), 0.0f);

    auto monoToStereo = make (1, 2, 1);
    monoToStereo->getParameters()[9]->setValue (0.0f);
    monoToStereo->prepareToPlay (48000.0, 256);
    EXPECT_EQ (monoToStereo->getAudioParameter (9).getRealValue(), 1.0f);

    auto restored = make (1, 1, 1);
    const auto chunk = chunkFromXml ("<MYPLUGINSETTINGS _9=\"1\"/>");
    restored->setStateInformation (chunk.getData(), static_cast<int> (chunk.getSize()));
    restored->prepareToPlay (48000.0, 256);
    EXPECT_EQ (restored->getAudioParameter (9).getRealValue(), 1.0f) << "a restored session keeps its value";
}
