#include "state/TRQUserPrefs.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

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

    TRQUserPrefs::AlwaysOpenAdvPanePref alwaysOpen;
    TRQUserPrefs::DarkModePref darkMode;
    TRQUserPrefs::FontSourcePref fontSource;
    TRQUserPrefs::DoubleClickKeyEntryPref keyEntry;
    TRQUserPrefs::LanguagePref language;
    TRQUserPrefs::MeteringPref metering;
    TRQUserPrefs::ScrollingPref scrolling;
    TRQUserPrefs::UIScalePref scale;
    alwaysOpen.load();
    darkMode.load();
    fontSource.load();
    keyEntry.load();
    language.load();
    metering.load();
    scrolling.load();
    scale.load();

    EXPECT_EQ (alwaysOpen.get(), TRQUserPrefs::AlwaysOpenAdvPane::Off);
    EXPECT_EQ (darkMode.get(), TRQUserPrefs::DarkMode::Off);
    EXPECT_EQ (fontSource.get(), TRQUserPrefs::FontSource::Embedded);
    EXPECT_EQ (keyEntry.get(), TRQUserPrefs::DoubleClickKeyEntry::Off);
    EXPECT_EQ (language.get(), TRQLanguage::English);
    EXPECT_EQ (metering.get(), TRQUserPrefs::Metering::On);
    EXPECT_EQ (scrolling.get(), TRQUserPrefs::Scrolling::On);
    EXPECT_EQ (scale.get(), 100);

    const nlohmann::json expected{{"AlwaysOpenAdvPane", 0},   {"DarkMode", 0},         {"FontSource", 0},
                                  {"DoubleClickKeyEntry", 0}, {"Language", "English"}, {"Metering", 1},
                                  {"Scrolling", 1},           {"UIScale", 100}};
    EXPECT_EQ (stored(), expected);
}

TEST_F (UserPrefsTest, UnknownValuesHealThemselves)
{
    store ({{"Metering", 7}, {"Language", "Klingon"}, {"DarkMode", 1}, {"Scrolling", "yes"}});
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

TEST_F (UserPrefsTest, NumbersComeBackAsTheirLowestByte)
{
    TRQUserPrefs::UIScalePref scale;
    scale.set (300);
    EXPECT_EQ (scale.get(), 300);
    EXPECT_EQ (stored()["UIScale"], 300);

    TRQUserPrefs::UIScalePref next;
    next.load();
    EXPECT_EQ (next.get(), 44);
    EXPECT_EQ (stored()["UIScale"], 300) << "what was read is what is stored, so nothing heals";
}

TEST_F (UserPrefsTest, ChangesReachTheNextLoadAndKeepTheOtherValues)
{
    store ({{"SomethingElse", "kept"}, {"0001", {{"Own", 3}}}});
    TRQUserPrefs::LanguagePref language;
    language.set (TRQLanguage::Korean);
    TRQUserPrefs::DarkModePref darkMode;
    darkMode.set (TRQUserPrefs::DarkMode::On);

    TRQUserPrefs::LanguagePref again;
    again.load();
    EXPECT_EQ (again.get(), TRQLanguage::Korean);
    EXPECT_EQ (stored()["Language"], "Korean");
    EXPECT_EQ (stored()["SomethingElse"], "kept");
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
