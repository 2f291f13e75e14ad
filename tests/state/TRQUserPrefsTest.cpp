#include "state/TRQUserPrefs.h"
#include "support/ChildTest.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sys/stat.h>

namespace
{
// A preferences file of the test's own; the run's file comes back afterwards.
class UserPrefsTest : public ::testing::Test
{
protected:
    UserPrefsTest() { TRQUserPrefs::Store::setFile (file); }
    ~UserPrefsTest() override
    {
        TRQUserPrefs::Store::setFile (previous);
        folder.deleteRecursively();
    }

    nlohmann::json stored() { return nlohmann::json::parse (file.loadFileAsString().toStdString()); }
    void store (const nlohmann::json& document)
    {
        file.getParentDirectory().createDirectory();
        file.replaceWithText (juce::String (document.dump()));
    }

    juce::TemporaryFile holder{"zolk-prefs"};
    juce::File folder = holder.getFile();
    juce::File file = folder.getChildFile ("Halvane/Preferences.json");
    juce::File previous = TRQUserPrefs::Store::file();
};
} // namespace

TEST_F (UserPrefsTest, WithoutAStoreEachPreferenceTakesItsDefaultAndWritesIt)
{
    EXPECT_TRUE (
        TRQUserPrefs::Store::standardFile().getFullPathName().endsWith ("/Halvane/Preferences.json"));

    const auto prefs = TRQUserPrefs::EditorPrefs::loaded();
    EXPECT_EQ (prefs.alwaysOpenAdvPane.get(), TRQUserPrefs::AlwaysOpenAdvPane::Off);
    EXPECT_EQ (prefs.darkMode.get(), TRQUserPrefs::DarkMode::Off);
    EXPECT_EQ (prefs.fontSource.get(), TRQUserPrefs::FontSource::Embedded);
    EXPECT_EQ (prefs.doubleClickKeyEntry.get(), TRQUserPrefs::DoubleClickKeyEntry::Off);
    EXPECT_EQ (prefs.language.get(), TRQLanguage::English);
    EXPECT_EQ (prefs.metering.get(), TRQUserPrefs::Metering::On);
    EXPECT_EQ (prefs.scrolling.get(), TRQUserPrefs::Scrolling::On);
    EXPECT_EQ (prefs.uiScale.get(), 100);

    const nlohmann::json expected{{"AlwaysOpenAdvPane", 0},   {"DarkMode", 0},         {"FontSource", 0},
                                  {"DoubleClickKeyEntry", 0}, {"Language", "English"}, {"Metering", 1},
                                  {"Scrolling", 1},           {"UIScale", 100}};
    EXPECT_EQ (stored(), expected);
}

// What an editor does when it opens: a store whose values are all good is not
// written, and a value that heals changes its own key only.
TEST_F (UserPrefsTest, LoadingWritesOnlyWhatHeals)
{
    const nlohmann::json good{{"AlwaysOpenAdvPane", 1},   {"DarkMode", 1},          {"FontSource", 0},
                              {"DoubleClickKeyEntry", 0}, {"Language", "Japanese"}, {"Metering", 0},
                              {"Scrolling", 1},           {"UIScale", 300},         {"Theirs", "kept"}};
    store (good);
    const auto text = file.loadFileAsString();
    const auto prefs = TRQUserPrefs::EditorPrefs::loaded();
    EXPECT_EQ (file.loadFileAsString(), text) << "nothing written";
    EXPECT_EQ (prefs.uiScale.get(), 300) << "a number is kept whole";
    EXPECT_EQ (prefs.language.get(), TRQLanguage::Japanese);

    auto healing = good;
    healing["Metering"] = 7;
    store (healing);
    TRQUserPrefs::EditorPrefs::loaded();
    healing["Metering"] = 1;
    EXPECT_EQ (stored(), healing);
}

TEST_F (UserPrefsTest, UnknownValuesHealThemselves)
{
    store ({{"Metering", 7},
            {"Language", "Klingon"},
            {"DarkMode", 1},
            {"Scrolling", "yes"},
            {"UIScale", 100000}});
    TRQUserPrefs::UIScalePref scale;
    scale.load();
    EXPECT_EQ (scale.get(), 100) << "no window is a thousand times wider";
    EXPECT_EQ (stored()["UIScale"], 100);
    TRQUserPrefs::MeteringPref metering;
    TRQUserPrefs::LanguagePref language;
    TRQUserPrefs::DarkModePref darkMode;
    TRQUserPrefs::ScrollingPref scrolling;
    metering.load();
    language.load();
    darkMode.load();
    scrolling.load();

    EXPECT_EQ (metering.get(), TRQUserPrefs::Metering::On);
    EXPECT_EQ (language.get(), TRQLanguage::English);
    EXPECT_EQ (darkMode.get(), TRQUserPrefs::DarkMode::On);
    EXPECT_EQ (scrolling.get(), TRQUserPrefs::Scrolling::On) << "a value of the other kind counts as missing";
    EXPECT_EQ (stored()["Metering"], 1);
    EXPECT_EQ (stored()["Language"], "English");
    EXPECT_EQ (stored()["Scrolling"], 1);
}

TEST_F (UserPrefsTest, ChangesReachTheNextLoadAndKeepTheOtherValues)
{
    store ({{"SomethingElse", "kept"}, {"0001", {{"Own", 3}}}});
    TRQUserPrefs::LanguagePref language;
    language.load();
    TRQUserPrefs::DarkModePref darkMode;
    darkMode.load();
    // Another program changes the file meanwhile: each write merges into it as it is.
    auto now = stored();
    now["SomethingElse"] = "changed";
    now["DarkMode"] = 1;
    store (now);
    language.set (TRQLanguage::Korean);

    TRQUserPrefs::LanguagePref again;
    again.load();
    EXPECT_EQ (again.get(), TRQLanguage::Korean);
    EXPECT_EQ (stored()["Language"], "Korean");
    EXPECT_EQ (stored()["SomethingElse"], "changed");
    EXPECT_EQ (stored()["0001"]["Own"], 3);
    EXPECT_EQ (stored()["DarkMode"], 1);
}

TEST_F (UserPrefsTest, APluginScopeLivesUnderThePluginNumber)
{
    ASSERT_TRUE (TRQUserPrefs::Store::write (TRQUserPrefs::thisPlugin, "Own", 5));
    int value = 0;
    EXPECT_TRUE (TRQUserPrefs::Store::read (TRQUserPrefs::thisPlugin, "Own", value));
    EXPECT_EQ (value, 5);
    EXPECT_FALSE (TRQUserPrefs::Store::read (TRQUserPrefs::allPlugins, "Own", value));
    EXPECT_EQ (stored()["0002"]["Own"], 5);
}

TEST_F (UserPrefsTest, ADamagedStoreReadsAsEmpty)
{
    file.getParentDirectory().createDirectory();
    file.replaceWithText ("{ not json");
    TRQUserPrefs::MeteringPref metering;
    metering.load();
    EXPECT_EQ (metering.get(), TRQUserPrefs::Metering::On);
    EXPECT_EQ (stored()["Metering"], 1);
}

// A read-only store is never written: the value holds for the running editor only.
TEST_F (UserPrefsTest, AReadOnlyStoreStaysAsItIs)
{
    store ({{"DarkMode", 0}});
    const auto text = file.loadFileAsString();
    ::chmod (file.getFullPathName().toRawUTF8(), 0444);
    TRQUserPrefs::DarkModePref darkMode;
    darkMode.set (TRQUserPrefs::DarkMode::On);
    EXPECT_EQ (darkMode.get(), TRQUserPrefs::DarkMode::On);
    EXPECT_EQ (file.loadFileAsString(), text);
    struct stat info;
    ASSERT_EQ (::stat (file.getFullPathName().toRawUTF8(), &info), 0);
    EXPECT_EQ (info.st_mode & 0777, 0444u);
    ::chmod (file.getFullPathName().toRawUTF8(), 0644);
}

// Two programs changing different preferences at the same moment both keep theirs.
TEST_F (UserPrefsTest, TwoProcessesChangingDifferentPreferencesKeepBoth)
{
    store ({{"Theirs", "kept"}});
    const auto go = folder.getChildFile ("go");
    std::vector<std::unique_ptr<juce::ChildProcess>> children;
    for (const char* tag : {"A", "B"})
        children.push_back (
            ChildTest::start ("UserPrefsTest.ChangesInAnotherProcess", file.getFullPathName() + "|" + tag));
    go.create();
    for (auto& child : children)
    {
        ASSERT_NE (child, nullptr);
        EXPECT_EQ (ChildTest::failureOf (*child), "");
    }
    const auto values = stored();
    EXPECT_EQ (values.size(), 81u);
    EXPECT_EQ (values["Theirs"], "kept");
    EXPECT_EQ (values["A39"], 39);
    EXPECT_EQ (values["B0"], 0);
}

// One of the two processes above.
TEST_F (UserPrefsTest, ChangesInAnotherProcess)
{
    const auto role = juce::StringArray::fromTokens (ChildTest::role(), "|", "");
    if (role.size() != 2)
        GTEST_SKIP() << "run by TwoProcessesChangingDifferentPreferencesKeepBoth";
    const juce::File shared (role[0]);
    TRQUserPrefs::Store::setFile (shared);
    const auto go = shared.getParentDirectory().getParentDirectory().getChildFile ("go");
    for (int i = 0; i < 1000 && !go.exists(); ++i)
        juce::Thread::sleep (5);
    for (int i = 0; i < 40; ++i)
        ASSERT_TRUE (TRQUserPrefs::Store::write (TRQUserPrefs::allPlugins,
                                                 (role[1] + juce::String (i)).toStdString(), i));
}
