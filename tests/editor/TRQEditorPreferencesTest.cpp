#include "editor/TRQEditorPreferences.h"

#include <gtest/gtest.h>

TEST (TRQEditorPreferences, MissingValuesTakeDefaultsAndAreWritten)
{
    auto source = std::make_shared<TRQMemoryPreferenceSource>();
    TRQEditorPreferences prefs (source);
    EXPECT_EQ (prefs.darkMode, 0);
    EXPECT_EQ (prefs.metering, 1);
    EXPECT_TRUE (prefs.scrolling);
    EXPECT_EQ (prefs.uiScale, 100);
    EXPECT_EQ (prefs.language, TRQLanguage::English);
    EXPECT_EQ (source->getInt ("Metering", -1), 1);
    EXPECT_EQ (source->getString ("Language", ""), "English");
}

TEST (TRQEditorPreferences, OutOfRangeValuesHeal)
{
    auto source = std::make_shared<TRQMemoryPreferenceSource>();
    source->setInt ("Metering", 7);
    source->setString ("Language", "Klingon");
    source->setInt ("UIScale", 300); // one byte is kept
    TRQEditorPreferences prefs (source);
    EXPECT_EQ (prefs.metering, 1);
    EXPECT_EQ (source->getInt ("Metering", -1), 1);
    EXPECT_EQ (prefs.language, TRQLanguage::English);
    EXPECT_EQ (source->getString ("Language", ""), "English");
    EXPECT_EQ (prefs.uiScale, 300 % 256);
}

TEST (TRQEditorPreferences, ChangesReachTheNextEditor)
{
    auto source = std::make_shared<TRQMemoryPreferenceSource>();
    {
        TRQEditorPreferences prefs (source);
        prefs.setDarkMode (1);
        prefs.setLanguage (TRQLanguage::Japanese);
        prefs.setUIScale (140);
    }
    TRQEditorPreferences next (source);
    EXPECT_EQ (next.darkMode, 1);
    EXPECT_EQ (next.language, TRQLanguage::Japanese);
    EXPECT_EQ (next.uiScale, 140);
}

TEST (TRQEditorPreferences, TheUserStoreIsSharedAndKeepsOneByte)
{
    TRQUserPreferenceSource store;
    store.setInt ("UIScale", 140);
    store.setString ("Language", "French");
    TRQEditorPreferences prefs (TRQEditorPreferences::sharedSource());
    EXPECT_EQ (prefs.uiScale, 140);
    EXPECT_EQ (prefs.language, TRQLanguage::French);
    store.setInt ("UIScale", 300);
    EXPECT_EQ (store.getInt ("UIScale", 0), 44);
    store.setInt ("UIScale", 100);
    store.setString ("Language", "English");
}
