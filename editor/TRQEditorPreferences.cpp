#include "editor/TRQEditorPreferences.h"

#include "state/TRQUserPrefs.h"

int TRQMemoryPreferenceSource::getInt (const std::string& key, int fallback) const
{
    auto found = ints.find (key);
    return found != ints.end() ? found->second : fallback;
}

void TRQMemoryPreferenceSource::setInt (const std::string& key, int value)
{
    ints[key] = value;
}

std::string TRQMemoryPreferenceSource::getString (const std::string& key, const std::string& fallback) const
{
    auto found = strings.find (key);
    return found != strings.end() ? found->second : fallback;
}

void TRQMemoryPreferenceSource::setString (const std::string& key, const std::string& value)
{
    strings[key] = value;
}

int TRQUserPreferenceSource::getInt (const std::string& key, int fallback) const
{
    int value = 0;
    return TRQUserPrefs::Store::read (TRQUserPrefs::allPlugins, key, value) ? value : fallback;
}

void TRQUserPreferenceSource::setInt (const std::string& key, int value)
{
    TRQUserPrefs::Store::write (TRQUserPrefs::allPlugins, key, value);
}

std::string TRQUserPreferenceSource::getString (const std::string& key, const std::string& fallback) const
{
    std::string value;
    return TRQUserPrefs::Store::read (TRQUserPrefs::allPlugins, key, value) ? value : fallback;
}

void TRQUserPreferenceSource::setString (const std::string& key, const std::string& value)
{
    TRQUserPrefs::Store::write (TRQUserPrefs::allPlugins, key, value);
}

std::shared_ptr<TRQPreferenceSource> TRQEditorPreferences::sharedSource()
{
    return std::make_shared<TRQUserPreferenceSource>();
}

TRQEditorPreferences::TRQEditorPreferences (std::shared_ptr<TRQPreferenceSource> s)
    : source (std::move (s))
{
    alwaysOpenAdvPane = loadSwitch ("AlwaysOpenAdvPane", 0) != 0;
    darkMode = loadSwitch ("DarkMode", 0);
    fontSource = loadSwitch ("FontSource", 0);
    doubleClickKeyEntry = loadSwitch ("DoubleClickKeyEntry", 0) != 0;
    const auto name = source->getString ("Language", "English");
    language = TRQLanguage::languageFromName (name);
    source->setString ("Language", TRQLanguage::languageName (language));
    metering = loadSwitch ("Metering", 1);
    scrolling = loadSwitch ("Scrolling", 1) != 0;
    // Stored as one byte, as the registry form keeps it.
    uiScale = source->getInt ("UIScale", 100) & 0xff;
    source->setInt ("UIScale", uiScale);
}

int TRQEditorPreferences::loadSwitch (const char* key, int fallback)
{
    int value = source->getInt (key, fallback) & 0xff;
    if (value != 0 && value != 1)
        value = fallback;
    source->setInt (key, value);
    return value;
}

void TRQEditorPreferences::setDarkMode (int value)
{
    darkMode = value;
    source->setInt ("DarkMode", value);
}

void TRQEditorPreferences::setLanguage (TRQLanguage::Language value)
{
    language = value;
    source->setString ("Language", TRQLanguage::languageName (value));
}

void TRQEditorPreferences::setMetering (int value)
{
    metering = value;
    source->setInt ("Metering", value);
}

void TRQEditorPreferences::setDoubleClickKeyEntry (bool value)
{
    doubleClickKeyEntry = value;
    source->setInt ("DoubleClickKeyEntry", value ? 1 : 0);
}

void TRQEditorPreferences::setScrolling (bool value)
{
    scrolling = value;
    source->setInt ("Scrolling", value ? 1 : 0);
}

void TRQEditorPreferences::setUIScale (int percent)
{
    uiScale = percent;
    source->setInt ("UIScale", percent);
}

void TRQEditorPreferences::setAlwaysOpenAdvPane (bool value)
{
    alwaysOpenAdvPane = value;
    source->setInt ("AlwaysOpenAdvPane", value ? 1 : 0);
}
