#include "editor/TRQDrawing.h"

#include <gtest/gtest.h>

using namespace TRQLanguage;

TEST (TRQDrawingSharing, ParsesOnceAndFreesWithTheLastHandle)
{
    ASSERT_FALSE (TRQDrawing::isLoaded()) << "a handle leaked from an earlier test";
    const int before = TRQDrawing::parseCount();
    {
        auto first = TRQDrawing::get();
        ASSERT_NE (first.document(), nullptr);
        auto second = TRQDrawing::get();
        TRQDrawing third (second);
        EXPECT_EQ (first.document(), third.document());
        EXPECT_EQ (TRQDrawing::parseCount(), before + 1);
    }
    EXPECT_FALSE (TRQDrawing::isLoaded());
    {
        auto again = TRQDrawing::get();
        EXPECT_TRUE (TRQDrawing::isLoaded());
        EXPECT_EQ (TRQDrawing::parseCount(), before + 2);
    }
}

TEST (TRQDrawingSharing, CorruptDataGivesNoDocument)
{
    const char junk[] = "definitely not gzip";
    EXPECT_EQ (TRQDrawing::parseGzipped (junk, sizeof junk), nullptr);

    juce::MemoryOutputStream packed;
    {
        juce::GZIPCompressorOutputStream zip (packed, 9, juce::GZIPCompressorOutputStream::windowBitsGZIP);
        zip.writeString ("{\"bg\": [");
    }
    EXPECT_EQ (TRQDrawing::parseGzipped (packed.getData(), packed.getDataSize()), nullptr);
}

namespace
{
std::string pathText (const TRQDrawingList& list)
{
    std::string s;
    for (const auto& e : list.elements)
        s += e.path.toString().toStdString() + "|";
    return s;
}
} // namespace

TEST (TRQDrawingSharing, StateTextsFallBackToEnglishPerLevel)
{
    auto drawing = TRQDrawing::get();
    const auto en = pathText (drawing.paramStringList (14, 1, English, 0));
    EXPECT_FALSE (en.empty());
    EXPECT_EQ (pathText (drawing.paramStringList (14, 1, Korean, 0)), en);
    EXPECT_NE (pathText (drawing.paramStringList (14, 0, Korean, 0)),
               pathText (drawing.paramStringList (14, 0, English, 0)));
    EXPECT_EQ (pathText (drawing.paramStringList (9, 0, French, 0)),
               pathText (drawing.paramStringList (9, 0, English, 0)));
    EXPECT_NE (pathText (drawing.paramStringList (9, 0, Portuguese, 0)),
               pathText (drawing.paramStringList (9, 0, English, 0)));
    // No "en" beside a missing parameter or value: nothing.
    EXPECT_TRUE (drawing.paramStringList (5, 0, English, 0).isEmpty());
    EXPECT_TRUE (drawing.paramStringList (11, 7, English, 0).isEmpty());
    // Other groups have no fallback.
    EXPECT_TRUE (drawing.paramLabelList (16, English, 0).isEmpty());
    EXPECT_TRUE (drawing.trackList (9, 0).isEmpty());
}

TEST (TRQDrawingSharing, AsemicAndUnknownLanguagesDrawAsEnglish)
{
    auto drawing = TRQDrawing::get();
    for (auto language : {Asemic, static_cast<Language> (23)})
    {
        EXPECT_EQ (pathText (drawing.clumpLabelList (language, 0)),
                   pathText (drawing.clumpLabelList (English, 0)));
        EXPECT_EQ (pathText (drawing.paramLabelList (7, language, 1)),
                   pathText (drawing.paramLabelList (7, English, 1)));
        EXPECT_EQ (pathText (drawing.paramStringList (14, 2, language, 0)),
                   pathText (drawing.paramStringList (14, 2, English, 0)));
        EXPECT_EQ (pathText (drawing.hudList (0, 1, language, 0)),
                   pathText (drawing.hudList (0, 1, English, 0)));
    }
    EXPECT_NE (pathText (drawing.clumpLabelList (Arabic, 0)), pathText (drawing.clumpLabelList (English, 0)));
}
