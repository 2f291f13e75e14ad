#include "editor/TRQDrawing.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>

using json = nlohmann::json;

namespace
{
const std::vector<std::string> languageKeys = {"en", "es", "pt",      "fr",      "ar",
                                               "ko", "ja", "zh-Hans", "zh-Hant", "emoji"};

std::set<std::string> keysOf (const json& object)
{
    std::set<std::string> keys;
    for (auto& [k, v] : object.items())
        keys.insert (k);
    return keys;
}

std::set<std::string> numbers (std::initializer_list<int> ids)
{
    std::set<std::string> s;
    for (int id : ids)
        s.insert (std::to_string (id));
    return s;
}

// Calls f on every element record of the document, with a description of where it is.
template<typename F>
void forEachElement (const json& node, const std::string& where, F&& f)
{
    if (node.is_array())
    {
        for (const auto& e : node)
            f (e, where);
        return;
    }
    if (node.is_object())
        for (auto& [k, v] : node.items())
            forEachElement (v, where + "/" + k, f);
}

class TRQDrawingDocument : public ::testing::Test
{
protected:
    TRQDrawing drawing = TRQDrawing::get();
    const json& doc() { return *drawing.document(); }
};
} // namespace

TEST_F (TRQDrawingDocument, HasExactlyTheTopLevelGroups)
{
    ASSERT_NE (drawing.document(), nullptr);
    EXPECT_EQ (keysOf (doc()),
               (std::set<std::string>{"bg", "clump-labels", "tracks", "param-labels", "nameplate",
                                      "autoglossonyms", "param-string-translations", "hud-controls", "md5"}));
    EXPECT_TRUE (std::regex_match (doc()["md5"].get<std::string>(), std::regex ("[0-9a-f]{32}")));
    EXPECT_EQ (doc()["bg"].size(), 14u);
    ASSERT_EQ (doc()["nameplate"].size(), 1u);
    EXPECT_EQ (doc()["nameplate"][0]["bounds"], json::parse ("[0.0,0.0,375.0,112.5]"));
    EXPECT_FALSE (doc()["nameplate"][0].contains ("dark"));
}

TEST_F (TRQDrawingDocument, LanguageGroupsHaveAllTenLanguages)
{
    const std::set<std::string> ten (languageKeys.begin(), languageKeys.end());
    EXPECT_EQ (keysOf (doc()["clump-labels"]), ten);
    EXPECT_EQ (keysOf (doc()["autoglossonyms"]), ten);
    for (const auto& key : languageKeys)
    {
        EXPECT_EQ (doc()["clump-labels"][key].size(), 9u) << key;
        for (const auto& e : doc()["clump-labels"][key])
            EXPECT_EQ (e["bounds"], json::parse ("[0,0,793,380]"));
        EXPECT_EQ (doc()["autoglossonyms"][key][0]["bounds"], json::parse ("[0,0,100,24]"));
    }
    EXPECT_EQ (keysOf (doc()["param-labels"]), numbers ({6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 17, 19, 20}));
    for (auto& [id, perLanguage] : doc()["param-labels"].items())
        EXPECT_EQ (keysOf (perLanguage), ten) << id;

    const auto& hud = doc()["hud-controls"];
    EXPECT_EQ (keysOf (hud), std::set<std::string>{"0"});
    EXPECT_EQ (keysOf (hud["0"]), (std::set<std::string>{"0", "1"}));
    for (const char* option : {"0", "1"})
    {
        EXPECT_EQ (keysOf (hud["0"][option]), ten);
        EXPECT_EQ (hud["0"][option]["en"][0]["bounds"], json::parse ("[403,224,46,26]"));
    }
    EXPECT_EQ (hud["0"]["0"]["en"][0]["default"]["fill"][1][3], 1.0);
    EXPECT_EQ (hud["0"]["1"]["en"][0]["default"]["fill"][1][3], 0.2);
}

TEST_F (TRQDrawingDocument, TracksAreTheFifteenSlidersWithFramesFromTheBottom)
{
    EXPECT_EQ (keysOf (doc()["tracks"]), numbers ({1, 2, 3, 4, 5, 6, 7, 8, 10, 12, 13, 15, 17, 19, 20}));
    for (auto& [id, list] : doc()["tracks"].items())
    {
        ASSERT_EQ (list.size(), 3u) << id;
        EXPECT_FALSE (list[0]["d"].get<std::string>().empty());
        EXPECT_EQ (list[1]["d"], "");
        EXPECT_EQ (list[2]["d"], "");
        EXPECT_TRUE (list[0].contains ("dark"));
    }
    EXPECT_EQ (doc()["tracks"]["1"][0]["bounds"], json::parse ("[0,90,79,254]"));
    EXPECT_EQ (doc()["tracks"]["6"][0]["bounds"], json::parse ("[0,30,395,60]"));
    // Paths in the control's own units: a main fader's ruler line starts at its
    // track's bottom.
    EXPECT_EQ (doc()["tracks"]["2"][0]["d"].get<std::string>().substr (0, 11), "m 32.50 236");
}

TEST_F (TRQDrawingDocument, StateTextsAreSparseAsDesigned)
{
    const auto& t = doc()["param-string-translations"];
    EXPECT_EQ (keysOf (t), numbers ({0, 9, 11, 14, 16, 18}));
    const std::set<std::string> en{"en"}, all (languageKeys.begin(), languageKeys.end());
    EXPECT_EQ (keysOf (t["0"]), (std::set<std::string>{"0", "1"}));
    EXPECT_EQ (keysOf (t["0"]["1"]), en);
    EXPECT_EQ (keysOf (t["9"]["0"]), (std::set<std::string>{"en", "pt", "ja"}));
    EXPECT_EQ (keysOf (t["11"]), (std::set<std::string>{"0", "1", "2"}));
    EXPECT_EQ (keysOf (t["11"]["2"]), en);
    EXPECT_EQ (keysOf (t["14"]["0"]), all);
    EXPECT_EQ (keysOf (t["14"]["2"]), (std::set<std::string>{"en", "es", "pt", "fr", "ar", "ja", "emoji"}));
    EXPECT_EQ (keysOf (t["16"]["0"]), en);
    EXPECT_EQ (keysOf (t["18"]["1"]), en);
    EXPECT_EQ (t["0"]["0"]["en"][0]["bounds"], json::parse ("[0,0,34,38]"));
    EXPECT_EQ (t["16"]["1"]["en"][0]["bounds"], json::parse ("[0,0,26,30]"));
    EXPECT_EQ (t["18"]["0"]["en"][0]["bounds"], json::parse ("[0,0,2,16]"));
    for (const char* v : {"0", "1"})
    {
        const double w = t["9"][v]["en"][0]["bounds"][2];
        EXPECT_GE (w, 39.0);
        EXPECT_LE (w, 45.0);
        EXPECT_EQ (t["9"][v]["en"][0]["bounds"][3], 22);
    }
}

TEST_F (TRQDrawingDocument, EveryPathFollowsTheGrammarAndParses)
{
    // Letters m l q c z, numbers with at most two decimals; a fraction keeps both.
    const std::regex token ("[mlqcz]|-?[0-9]+(\\.[0-9]{2})?");
    int elements = 0, withDark = 0;
    forEachElement (doc(), "",
                    [&] (const json& e, const std::string& where)
                    {
                        if (!e.is_object())
                            return;
                        ++elements;
                        withDark += e.contains ("dark") ? 1 : 0;
                        ASSERT_TRUE (e.contains ("default")) << where;
                        ASSERT_TRUE (e.contains ("bounds")) << where;
                        const std::string d = e["d"];
                        std::istringstream in (d);
                        std::string t;
                        while (in >> t)
                            ASSERT_TRUE (std::regex_match (t, token)) << where << ": " << t;
                        juce::Path p;
                        p.restoreFromString (juce::String::fromUTF8 (d.c_str()));
                        EXPECT_EQ (p.isEmpty(), d.empty()) << where;
                    });
    EXPECT_GT (elements, 300);
    EXPECT_GT (withDark, 150);
}

TEST_F (TRQDrawingDocument, TextLiesInsideItsControl)
{
    for (auto& [id, perLanguage] : doc()["param-labels"].items())
        for (auto& [lang, list] : perLanguage.items())
        {
            auto labels = readDrawingList (list, "default");
            const auto& b = labels.elements.front().bounds;
            const auto ink = labels.elements.front().path.getBounds();
            EXPECT_TRUE (juce::Rectangle<float> (0, 0, b.getWidth(), b.getHeight()).contains (ink))
                << id << " " << lang << " " << ink.toString();
        }
    // Captions stay clear of their fader's ruler and numbers.
    for (auto& [id, perLanguage] : doc()["param-labels"].items())
    {
        if (!doc()["tracks"].contains (id))
            continue;
        const auto ruler = readDrawingList (doc()["tracks"][id], "default").elements.front().path.getBounds();
        for (auto& [lang, list] : perLanguage.items())
            EXPECT_FALSE (
                readDrawingList (list, "default").elements.front().path.getBounds().intersects (ruler))
                << id << " " << lang;
    }
    for (auto& [id, values] : doc()["param-string-translations"].items())
        for (auto& [value, perLanguage] : values.items())
            for (auto& [lang, list] : perLanguage.items())
            {
                auto texts = readDrawingList (list, "default");
                const auto& b = texts.elements.front().bounds;
                EXPECT_TRUE (b.expanded (0.5f).contains (texts.elements.front().path.getBounds()))
                    << id << "/" << value << "/" << lang;
            }
}

TEST_F (TRQDrawingDocument, HeadingsDoNotOverlapEachOther)
{
    for (const auto& key : languageKeys)
    {
        auto headings = readDrawingList (doc()["clump-labels"][key], "default");
        for (size_t i = 0; i < headings.elements.size(); ++i)
            for (size_t j = i + 1; j < headings.elements.size(); ++j)
                EXPECT_FALSE (
                    headings.elements[i].path.getBounds().intersects (headings.elements[j].path.getBounds()))
                    << key << " " << i << " " << j;
    }
}
