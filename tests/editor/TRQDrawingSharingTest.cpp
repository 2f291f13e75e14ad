#include "editor/TRQDrawing.h"

#include <gtest/gtest.h>

#include <chrono>

using namespace TRQLanguage;

TEST (TRQDrawingSharing, ParsesOnceAndFreesWithTheLastHandle)
{
    ASSERT_FALSE (TRQDrawing::isLoaded()) << "a handle leaked from an earlier test";
    const int before = TRQDrawing::parseCount();
    {
        const auto start = std::chrono::steady_clock::now();
        auto first = TRQDrawing::get();
        const auto ms =
            std::chrono::duration<double, std::milli> (std::chrono::steady_clock::now() - start).count();
        ::testing::Test::RecordProperty ("firstParseMs", std::to_string (ms));
        std::printf ("first parse of the drawing: %.1f ms\n", ms);
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

TEST (TRQDrawingSharing, ReadingEveryListOfALanguageIsQuick)
{
    auto drawing = TRQDrawing::get();
    const auto start = std::chrono::steady_clock::now();
    size_t elements = drawing.bgList (1).elements.size() + drawing.clumpLabelList (Korean, 1).elements.size();
    for (int p = 0; p < 21; ++p)
    {
        elements +=
            drawing.trackList (p, 1).elements.size() + drawing.paramLabelList (p, Korean, 1).elements.size();
        for (int v = 0; v < 3; ++v)
            elements += drawing.paramStringList (p, v, Korean, 1).elements.size();
    }
    const auto ms =
        std::chrono::duration<double, std::milli> (std::chrono::steady_clock::now() - start).count();
    std::printf ("reading every list of one language and style: %zu elements in %.1f ms\n", elements, ms);
    EXPECT_GT (elements, 50u);
    EXPECT_LT (ms, 500.0);
}
