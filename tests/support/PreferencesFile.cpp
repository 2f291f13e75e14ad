#include "support/PreferencesFile.h"

#include "state/TRQUserPrefs.h"

PreferencesFile::PreferencesFile()
    : previous (TRQUserPrefs::Store::file())
{
    use();
}

PreferencesFile::~PreferencesFile()
{
    TRQUserPrefs::Store::setFile (previous);
    folder.deleteRecursively();
}

void PreferencesFile::use() const
{
    TRQUserPrefs::Store::setFile (file());
}

void PreferencesFile::setInt (const std::string& key, int value)
{
    TRQUserPrefs::Store::write (TRQUserPrefs::allPlugins, key, value);
}

void PreferencesFile::setString (const std::string& key, const std::string& value)
{
    TRQUserPrefs::Store::write (TRQUserPrefs::allPlugins, key, value);
}

int PreferencesFile::getInt (const std::string& key, int fallback) const
{
    int value = 0;
    return TRQUserPrefs::Store::read (TRQUserPrefs::allPlugins, key, value) ? value : fallback;
}

std::string PreferencesFile::getString (const std::string& key, const std::string& fallback) const
{
    std::string value;
    return TRQUserPrefs::Store::read (TRQUserPrefs::allPlugins, key, value) ? value : fallback;
}

nlohmann::json PreferencesFile::stored() const
{
    if (!file().existsAsFile())
        return nlohmann::json::object();
    return nlohmann::json::parse (file().loadFileAsString().toStdString(), nullptr, false);
}
