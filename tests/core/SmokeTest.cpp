#include <gtest/gtest.h>
#include <juce_audio_processors/juce_audio_processors.h>

juce::AudioProcessor* JUCE_CALLTYPE createPluginFilter();

TEST (Smoke, CreatesProcessor)
{
    std::unique_ptr<juce::AudioProcessor> p (createPluginFilter());
    EXPECT_TRUE (p != nullptr);
}
