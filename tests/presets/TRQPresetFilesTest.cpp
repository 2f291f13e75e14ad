#include "presets/TRQPresetFiles.h"
#include "state/ParameterRange.h"
#include "support/PresetFolder.h"

#include <gtest/gtest.h>

namespace
{
// Both files, where the test's PresetFolder put them, in reading order.
TRQPresetFiles::Contents readBoth (int ins = 2, int outs = 2)
{
    TRQPresetFiles::Contents contents;
    for (const auto& ref : TRQPresetFiles::fileRefs())
        TRQPresetFiles::read (ref.file(), ref.kind, ins, outs, contents);
    return contents;
}
} // namespace

TEST (TRQPresetFiles, TheUserFileIsReadFirstAndStandsInTheDocumentsFolder)
{
    const auto standard = TRQPresetFiles::standardLocations();
    EXPECT_TRUE (standard.user.getFullPathName().endsWith ("/Halvane/HvnUserPresets.json"));
    EXPECT_TRUE (standard.factory.getFullPathName().endsWith ("/Halvane/0002/TQPresets.json"));

    PresetFolder folder;
    const auto refs = TRQPresetFiles::fileRefs();
    ASSERT_EQ (refs.size(), 2u);
    EXPECT_EQ (refs[0].kind, PresetKind::user);
    EXPECT_EQ (refs[0].file(), folder.user());
    EXPECT_EQ (refs[1].kind, PresetKind::factory);
    EXPECT_EQ (refs[1].file(), folder.factory());
}

TEST (TRQPresetFiles, MissingFilesAreEmpty)
{
    PresetFolder folder;
    const auto contents = readBoth();
    EXPECT_TRUE (contents.presets.empty());
    EXPECT_TRUE (contents.sections.empty());
}

TEST (TRQPresetFiles, ReadsSectionsPresetsAndTheirValues)
{
    PresetFolder folder;
    auto only = PresetFolder::preset ("Only One", "u-1", {{1, 6.0f}});
    only["note"] = nullptr;
    auto texts = PresetFolder::preset ("Texts", "u-2", {{2, 60.0f}});
    texts["values"]["3"] = "loud";
    texts["values"]["4"] = nullptr;
    texts["note"] = "A note";
    PresetFolder::write (folder.factory(),
                         {PresetFolder::section ("First", {only, texts}), PresetFolder::section ("Empty", {}),
                          PresetFolder::section ("Third", {PresetFolder::preset ("Lone", "u-3", {})})},
                         "u-2");

    const auto contents = readBoth();
    ASSERT_EQ (contents.presets.size(), 3u);
    ASSERT_EQ (contents.sections.size(), 2u) << "a section without presets is not shown";
    EXPECT_EQ (contents.sections[0].title, "First");
    EXPECT_EQ (contents.sections[0].first, 0u);
    EXPECT_EQ (contents.sections[0].count, 2u);
    EXPECT_EQ (contents.sections[0].end, 2u);
    EXPECT_EQ (contents.sections[1].title, "Third");
    EXPECT_EQ (contents.sections[1].first, 2u);
    EXPECT_EQ (contents.presets[2].section, 1u);
    EXPECT_EQ (contents.presets[2].kind, PresetKind::factory);
    ASSERT_EQ (contents.favourites.size(), 1u);
    EXPECT_EQ (contents.favourites[0].first, "u-2");

    const auto& first = contents.presets[0];
    EXPECT_EQ (first.name, "Only One");
    EXPECT_EQ (first.note, "");
    EXPECT_TRUE (first.values[1]);
    EXPECT_FLOAT_EQ (first.values[1].value, toNormalised (1, 6.0f));
    EXPECT_FALSE (first.values[2]) << "only the values given are present";

    const auto& second = contents.presets[1];
    EXPECT_EQ (second.note, "A note");
    EXPECT_TRUE (second.values[2]);
    EXPECT_FALSE (second.values[3]) << "text is no value";
    EXPECT_FALSE (second.values[4]) << "null is no value";
}

TEST (TRQPresetFiles, OffersPresetsOnlyForTheirChannelPairs)
{
    PresetFolder folder;
    auto monoOnly = PresetFolder::preset ("Mono", "m", {});
    monoOnly["channels"] = nlohmann::json::array ({nlohmann::json::array ({1, 1})});
    auto everywhere = PresetFolder::preset ("Everywhere", "e", {});
    everywhere["channels"] = nlohmann::json::array();
    auto oddItems = PresetFolder::preset ("Odd items", "o", {});
    oddItems["channels"] = nlohmann::json::array ({nlohmann::json::array ({2}), "stereo"});
    PresetFolder::write (folder.factory(), {PresetFolder::section ("S", {monoOnly, everywhere, oddItems})});

    const auto stereo = readBoth (2, 2);
    ASSERT_EQ (stereo.presets.size(), 2u);
    EXPECT_EQ (stereo.presets[0].name, "Everywhere");
    EXPECT_EQ (stereo.presets[1].name, "Odd items") << "items that aren't pairs are ignored";
    EXPECT_EQ (readBoth (1, 1).presets.size(), 3u);
}

// A field of the wrong type costs that field, or that one preset for a uuid; every
// other preset of the file is listed.
TEST (TRQPresetFiles, AWrongTypeHidesOnlyWhatItSpoils)
{
    struct Case
    {
        const char* field;
        nlohmann::json value;
        std::size_t listed;
    };
    const std::vector<Case> cases{
        {"favorite", 7, 3},
        {"note", nlohmann::json::array ({"a"}), 3},
        {"uuid", 42, 2},
        {"channels", "stereo", 3},
        {"channels", nlohmann::json::array ({nlohmann::json::array ({"in", "out"})}), 3},
        {"values", nlohmann::json::array ({1, 2}), 3}};
    for (const auto& c : cases)
    {
        PresetFolder folder;
        auto odd = PresetFolder::preset ("Odd", "o", {{1, 3.0f}});
        odd["note"] = "kept";
        const bool ofThePlugin = std::string (c.field) == "favorite";
        if (!ofThePlugin)
            odd[c.field] = c.value;
        PresetFolder::write (
            folder.user(), {PresetFolder::section ("User", {PresetFolder::preset ("A", "a", {{1, 1.0f}}), odd,
                                                            PresetFolder::preset ("B", "b", {{1, 2.0f}})})});
        if (ofThePlugin)
        {
            auto document = PresetFolder::read (folder.user());
            document["0002"]["favorite"] = c.value;
            folder.user().replaceWithText (juce::String (document.dump()));
        }

        TRQPresetFiles::Contents contents;
        EXPECT_TRUE (TRQPresetFiles::read (folder.user(), PresetKind::user, 2, 2, contents).wasOk())
            << c.field;
        ASSERT_EQ (contents.presets.size(), c.listed) << c.field;
        EXPECT_EQ (contents.presets.back().name, "B") << c.field;
        EXPECT_TRUE (contents.favourites.empty()) << c.field;
        if (c.listed == 3)
        {
            const auto& read = contents.presets[1];
            EXPECT_EQ (read.note, std::string (c.field) == "note" ? "" : "kept") << c.field;
            EXPECT_EQ ((bool)read.values[1], std::string (c.field) != "values") << c.field;
        }
    }
}

TEST (TRQPresetFiles, ADamagedFileKeepsWhatWasReadBeforeTheDamage)
{
    PresetFolder folder;
    auto nameless = PresetFolder::preset ("x", "n", {});
    nameless.erase ("name");
    PresetFolder::write (folder.user(),
                         {PresetFolder::section ("Mine", {PresetFolder::preset ("Good", "g", {}), nameless,
                                                          PresetFolder::preset ("Lost", "l", {})}),
                          PresetFolder::section ("Never read", {PresetFolder::preset ("Gone", "z", {})})});
    PresetFolder::write (folder.factory(),
                         {PresetFolder::section ("Factory", {PresetFolder::preset ("F", "f", {})})});

    TRQPresetFiles::Contents contents;
    EXPECT_EQ (TRQPresetFiles::read (folder.user(), PresetKind::user, 2, 2, contents).getErrorMessage(),
               "HvnUserPresets.json is Damaged");
    EXPECT_TRUE (TRQPresetFiles::read (folder.factory(), PresetKind::factory, 2, 2, contents).wasOk());
    ASSERT_EQ (contents.presets.size(), 2u);
    EXPECT_EQ (contents.presets[0].name, "Good");
    EXPECT_EQ (contents.presets[1].name, "F") << "the next file is still read";
    ASSERT_EQ (contents.sections.size(), 2u);
    EXPECT_EQ (contents.sections[0].title, "Mine");
    EXPECT_EQ (contents.presets[1].section, 1u);

    folder.factory().replaceWithText ("{\"0002\": {\"sections\": [\n {\"section\": \"S\", \"presets\": [");
    EXPECT_EQ (readBoth().presets.size(), 1u) << "text that isn't JSON reads as nothing";
    contents = {};
    EXPECT_EQ (TRQPresetFiles::read (folder.factory(), PresetKind::factory, 2, 2, contents).getErrorMessage(),
               "Error at Line 2 of TQPresets.json");
    folder.factory().replaceWithData ("\xEF\xBB\xBF \r\n", 6);
    EXPECT_TRUE (TRQPresetFiles::read (folder.factory(), PresetKind::factory, 2, 2, contents).wasOk())
        << "blanks and a byte-order mark are an empty file";
}

TEST (TRQPresetFiles, AWriteMakesTheFileWithAUserSectionAndKeepsOtherPlugins)
{
    PresetFolder folder;
    ASSERT_TRUE (
        TRQPresetFiles::modifyUserFile (folder.user(),
                                        [] (TRQPresetFiles::Json& plugin) {
                                            plugin["sections"][0]["presets"].push_back ({{"name", "N"}});
                                        })
            .wasOk());
    const auto text = folder.user().loadFileAsString();
    EXPECT_TRUE (text.contains ("\r\n"));
    EXPECT_TRUE (text.contains ("\r\n    \"0002\": {")) << "indented by four";
    auto document = PresetFolder::read (folder.user());
    const auto& section = document["0002"]["sections"][0];
    EXPECT_EQ (section["section"], "User");
    EXPECT_EQ (section["about"], "User presets. Hooray!\n");
    EXPECT_EQ (section["presets"][0]["name"], "N");

    document["0001"] = {{"sections", nlohmann::json::array()}, {"favorite", "other"}};
    folder.user().replaceWithText (juce::String (document.dump()));
    ASSERT_TRUE (TRQPresetFiles::modifyUserFile (folder.user(), [] (TRQPresetFiles::Json& plugin)
                                                 { plugin["favorite"] = "x"; })
                     .wasOk());
    document = PresetFolder::read (folder.user());
    EXPECT_EQ (document["0001"]["favorite"], "other");
    EXPECT_EQ (document["0002"]["favorite"], "x");
}

TEST (TRQPresetFiles, AUserFileThatIsNotJSONIsLeftAsItIs)
{
    PresetFolder folder;
    folder.user().getParentDirectory().createDirectory();
    folder.user().replaceWithText ("my notes, not presets");
    EXPECT_EQ (
        TRQPresetFiles::modifyUserFile (folder.user(), [] (TRQPresetFiles::Json&) {}).getErrorMessage(),
        "Error at Line 1 of HvnUserPresets.json");
    EXPECT_EQ (folder.user().loadFileAsString(), "my notes, not presets");
}

TEST (TRQPresetFiles, WritesTheShortestNumberThatReadsBackAsTheFloat)
{
    EXPECT_EQ (TRQPresetFiles::valueToJson (2.3f).dump(), "2.3");
    EXPECT_EQ (TRQPresetFiles::valueToJson (50.0f).dump(), "50.0");
    EXPECT_EQ (TRQPresetFiles::valueToJson (-95.9f).dump(), "-95.9");
    EXPECT_TRUE (TRQPresetFiles::valueToJson (std::numeric_limits<float>::quiet_NaN()).is_null());
    EXPECT_TRUE (TRQPresetFiles::valueToJson (std::numeric_limits<float>::infinity()).is_null());
    EXPECT_EQ (TRQPresetFiles::valueToJson (0.1f).get<float>(), 0.1f);
}
