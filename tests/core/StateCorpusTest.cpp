#include "core/ProcessorTestSupport.h"
#include "state/TRQStateChunk.h"

#include <gtest/gtest.h>

// Replays every chunk the state fuzzer collected: none may crash the reader, and
// one that is not a settings document must leave every parameter alone.
TEST (StateCorpus, EveryCollectedChunkIsReadSafely)
{
    const juce::File corpus (juce::String (ZOLK_SOURCE_DIR) + "/fuzz/corpus/state");
    const auto files = corpus.findChildFiles (juce::File::findFiles, false);
    ASSERT_FALSE (files.isEmpty()) << "no corpus in " << corpus.getFullPathName();

    for (const auto& file : files)
    {
        juce::MemoryBlock data;
        ASSERT_TRUE (file.loadFileAsData (data));

        auto p = ProcessorTestSupport::make();
        std::vector<float> before;
        for (int i = 0; i < 21; ++i)
            before.push_back (p->getParameters()[i]->getValue());

        p->setStateInformation (data.getData(), static_cast<int> (data.getSize()));
        EXPECT_TRUE (p->getStateHasBeenSet());

        const auto xml = TRQStateChunk::read (data.getData(), static_cast<int> (data.getSize()));
        if (data.getSize() <= 8 || xml == nullptr || !xml->hasTagName ("MYPLUGINSETTINGS"))
        {
            for (int i = 0; i < 21; ++i)
                EXPECT_EQ (p->getParameters()[i]->getValue(), before[static_cast<size_t> (i)])
                    << file.getFileName();
        }

        for (int i = 0; i < 21; ++i)
        {
            const float v = p->getParameters()[i]->getValue();
            EXPECT_TRUE (v >= 0.0f && v <= 1.0f) << file.getFileName() << " parameter " << i;
        }
    }
}
