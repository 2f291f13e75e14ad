#include "HostedPlugin.h"
#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{
constexpr double rate = 48000.0;
constexpr int block = 256;

// Plays a steady two-tone programme through a hosted instance block by block, as
// a host's audio callback would, and watches the output for clicks, fades and
// heap traffic in the plug-in's processing.
struct Player
{
    explicit Player (juce::AudioPluginInstance& p)
        : plugin (p)
        , buffer (std::max (p.getTotalNumInputChannels(), p.getTotalNumOutputChannels()), block)
    {
    }

    juce::AudioProcessorParameter& parameter (const char* name)
    {
        auto* p = HostedPlugin::parameterNamed (plugin, name);
        if (p == nullptr)
            throw std::runtime_error (std::string ("no parameter named ") + name);
        return *p;
    }

    static float input (int channel, long t)
    {
        return 0.25f * static_cast<float> (std::sin (6.283185307 * (440.0 + 110.0 * channel) * t / rate));
    }

    // One block; the message loop turns between blocks so that the host hears of
    // latency changes and the plug-in's worker may finish.
    void play()
    {
        buffer.clear();
        for (int c = 0; c < std::min (2, buffer.getNumChannels()); ++c)
            for (int i = 0; i < block; ++i)
                buffer.setSample (c, i, input (c, t + i));
        {
            AllocationCounter counter;
            plugin.processBlock (buffer, midi);
            const size_t count = counter.allocations() + counter.deallocations();
            extraAllocations += count > hostAllocations ? count - hostAllocations : 0;
            hostAllocations = std::min (hostAllocations, count);
        }

        peak = 0.0f;
        for (int c = 0; c < 2; ++c)
            for (int i = 0; i < block; ++i)
            {
                const float y = buffer.getSample (c, i);
                worstJump = std::max (worstJump, std::abs (y - last[c]));
                last[c] = y;
                peak = std::max (peak, std::abs (y));
            }
        t += block;
        juce::MessageManager::getInstance()->runDispatchLoopUntil (1);
        if (plugin.getLatencySamples() != latencies.back())
            latencies.push_back (plugin.getLatencySamples());
    }

    // The latencies the host was told of since the last call, in order.
    std::vector<int> latencyChanges()
    {
        std::vector<int> changes (latencies.begin() + 1, latencies.end());
        latencies.erase (latencies.begin(), latencies.end() - 1);
        return changes;
    }

    // Plays until the output has stayed at full level for half a second, and
    // counts the dips to silence on the way. Gives up after 10 s.
    int playThroughFades (float steadyPeak)
    {
        int dips = 0, steadyBlocks = 0;
        bool low = false;
        for (int b = 0; b < static_cast<int> (10 * rate / block) && steadyBlocks < rate / 2 / block; ++b)
        {
            play();
            if (!low && peak < 0.2f * steadyPeak)
                low = true;
            if (low && peak > 0.9f * steadyPeak)
            {
                low = false;
                ++dips;
            }
            steadyBlocks = peak > 0.9f * steadyPeak ? steadyBlocks + 1 : 0;
        }
        return dips;
    }

    juce::AudioPluginInstance& plugin;
    juce::AudioBuffer<float> buffer;
    juce::MidiBuffer midi;
    long t = 0;
    float last[2] = {0.0f, 0.0f};
    float worstJump = 0.0f, peak = 0.0f;
    // JUCE's own hosting and wrapping layers take a few allocations in every
    // block; the fewest seen in steady state is theirs, anything above it in a
    // block is the plug-in's.
    size_t hostAllocations = 1000, extraAllocations = 0;
    std::vector<int> latencies{0};
};

// What an instance reports when it starts in one mode or the other.
int startingLatency (bool hq)
{
    auto plugin = HostedPlugin::load (HostedPlugin::Format::vst3, rate, block);
    if (plugin == nullptr)
        return -1;
    HostedPlugin::parameterNamed (*plugin, "HQ Mode")->setValueNotifyingHost (hq ? 1.0f : 0.0f);
    plugin->prepareToPlay (rate, block);
    Player player (*plugin);
    for (int b = 0; b < 20; ++b)
        player.play();
    juce::MessageManager::getInstance()->runDispatchLoopUntil (50);
    return plugin->getLatencySamples();
}
} // namespace

TEST (HostedVST3, HQToggledDuringPlaybackFadesSwapsAndReportsTheNewLatency)
{
    const int hostLatency = startingLatency (false), hqLatency = startingLatency (true);
    ASSERT_GT (hostLatency, 0);
    EXPECT_GT (hqLatency, hostLatency) << "the converters add their delay";

    auto plugin = HostedPlugin::load (HostedPlugin::Format::vst3, rate, block);
    ASSERT_NE (plugin, nullptr);
    plugin->prepareToPlay (rate, block);
    Player player (*plugin);
    auto& hq = player.parameter ("HQ Mode");

    // Steady state of the programme as the plug-in plays it.
    for (int b = 0; b < static_cast<int> (rate / block); ++b)
        player.play();
    ASSERT_EQ (plugin->getLatencySamples(), hostLatency);
    player.latencyChanges();
    const float steadyPeak = player.peak, steadyJump = player.worstJump;
    ASSERT_GT (steadyPeak, 0.05f);
    player.worstJump = 0.0f;
    player.extraAllocations = 0;

    // On: one fade down and up, the host told of the new latency.
    hq.setValueNotifyingHost (1.0f);
    EXPECT_EQ (player.playThroughFades (steadyPeak), 1);
    EXPECT_EQ (player.latencyChanges(), std::vector<int> ({hqLatency}));

    // Off, on, off within three blocks: the swap under way completes, and the
    // last value is already what it leads to.
    hq.setValueNotifyingHost (0.0f);
    player.play();
    hq.setValueNotifyingHost (1.0f);
    player.play();
    hq.setValueNotifyingHost (0.0f);
    EXPECT_EQ (player.playThroughFades (steadyPeak), 1);
    EXPECT_EQ (player.latencyChanges(), std::vector<int> ({hostLatency}));

    // On, off: the swap under way completes, then a second one takes the plug-in
    // back to the last value. The second fade down may start from the silence
    // the first left behind, so the two can share one dip.
    hq.setValueNotifyingHost (1.0f);
    player.play();
    hq.setValueNotifyingHost (0.0f);
    player.play();
    const int dips = player.playThroughFades (steadyPeak);
    EXPECT_GE (dips, 1);
    EXPECT_LE (dips, 2);
    EXPECT_EQ (player.latencyChanges(), std::vector<int> ({hqLatency, hostLatency}));
    EXPECT_EQ (plugin->getLatencySamples(), hostLatency);

    // No click: nothing steeper than the programme itself, across every swap.
    EXPECT_LE (player.worstJump, 1.25f * steadyJump);
    EXPECT_EQ (player.extraAllocations, 0u) << "the plug-in's processing touched the heap";
    plugin->releaseResources();
}

TEST (HostedVST3, MasterOffInHQGivesTheDrySignalAtTheReportedLatencyAndComesBackCleanly)
{
    auto plugin = HostedPlugin::load (HostedPlugin::Format::vst3, rate, block);
    ASSERT_NE (plugin, nullptr);
    HostedPlugin::parameterNamed (*plugin, "HQ Mode")->setValueNotifyingHost (1.0f);
    plugin->prepareToPlay (rate, block);
    Player player (*plugin);

    for (int b = 0; b < 40; ++b)
        player.play();
    const int latency = plugin->getLatencySamples();
    const float steadyJump = player.worstJump;

    player.parameter ("Master On/Off").setValueNotifyingHost (0.0f);
    for (int b = 0; b < 40; ++b)
        player.play();
    float worst = 0.0f;
    for (int c = 0; c < 2; ++c)
        for (int i = 0; i < block; ++i)
            worst = std::max (worst, std::abs (player.buffer.getSample (c, i) -
                                               Player::input (c, player.t - block + i - latency)));
    EXPECT_LT (worst, 1.0e-6f);
    EXPECT_EQ (plugin->getLatencySamples(), latency);

    // Back on: the converters ran all along, so the wet signal returns without
    // a start-up transient.
    player.worstJump = 0.0f;
    player.parameter ("Master On/Off").setValueNotifyingHost (1.0f);
    for (int b = 0; b < 40; ++b)
        player.play();
    EXPECT_LE (player.worstJump, 1.25f * steadyJump);
    plugin->releaseResources();
}
