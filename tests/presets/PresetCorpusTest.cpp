#include "fuzz/PresetFuzzChecks.h"

#include <gtest/gtest.h>

// Replays every input the preset fuzzers collected, with the checks they run.
namespace
{
juce::Array<juce::File> corpus (const char* name)
{
    const juce::File folder (juce::String (ZOLK_SOURCE_DIR) + "/fuzz/corpus/" + name);
    return folder.findChildFiles (juce::File::findFiles, false);
}

std::string contentOf (const juce::File& file)
{
    juce::MemoryBlock data;
    file.loadFileAsData (data);
    return std::string (static_cast<const char*> (data.getData()), data.getSize());
}
} // namespace

TEST (PresetCorpus, EveryCollectedPresetFileIsReadAndWrittenSafely)
{
    const auto files = corpus ("preset_file");
    ASSERT_FALSE (files.isEmpty());
    const juce::TemporaryFile folder ("zolk-corpus");
    const auto target = folder.getFile().getChildFile ("HvnUserPresets.json");
    for (const auto& file : files)
    {
        const auto text = contentOf (file);
        EXPECT_EQ (PresetFuzzChecks::checkRead (text), "") << file.getFileName();
        EXPECT_EQ (PresetFuzzChecks::checkWrite (text, target), "") << file.getFileName();
    }
    folder.getFile().deleteRecursively();
}

TEST (PresetCorpus, EveryCollectedURLPastesSafely)
{
    const auto files = corpus ("preset_url");
    ASSERT_FALSE (files.isEmpty());
    for (const auto& file : files)
        EXPECT_EQ (PresetFuzzChecks::checkPaste (contentOf (file)), "") << file.getFileName();
}
