#pragma once

#include "state/TRQLanguage.h"

#include <map>
#include <memory>
#include <string>

// Where the editor's per-user settings are kept. The editor reads them once when it
// opens and writes one whenever the user changes it.
class TRQPreferenceSource
{
public:
    virtual ~TRQPreferenceSource() = default;
    // fallback when the key was never written.
    virtual int getInt (const std::string& key, int fallback) const = 0;
    virtual void setInt (const std::string& key, int value) = 0;
    virtual std::string getString (const std::string& key, const std::string& fallback) const = 0;
    virtual void setString (const std::string& key, const std::string& value) = 0;
};

// Keeps the settings for the life of the process only: shared by every editor so
// that a change holds in the next one opened.
class TRQMemoryPreferenceSource : public TRQPreferenceSource
{
public:
    int getInt (const std::string& key, int fallback) const override;
    void setInt (const std::string& key, int value) override;
    std::string getString (const std::string& key, const std::string& fallback) const override;
    void setString (const std::string& key, const std::string& value) override;

private:
    std::map<std::string, int> ints;
    std::map<std::string, std::string> strings;
};

// The maker's shared per-user store: every plug-in of the maker and every editor
// opened later sees a change.
class TRQUserPreferenceSource : public TRQPreferenceSource
{
public:
    int getInt (const std::string& key, int fallback) const override;
    void setInt (const std::string& key, int value) override;
    std::string getString (const std::string& key, const std::string& fallback) const override;
    void setString (const std::string& key, const std::string& value) override;
};

// The eight settings the editor reads, with their defaults and the healing of
// stored values out of range.
class TRQEditorPreferences
{
public:
    explicit TRQEditorPreferences (std::shared_ptr<TRQPreferenceSource> source);

    // The store every editor uses unless given another: the user's preferences.
    static std::shared_ptr<TRQPreferenceSource> sharedSource();

    bool alwaysOpenAdvPane = false;
    int darkMode = 0;
    int fontSource = 0;
    TRQLanguage::Language language = TRQLanguage::English;
    int metering = 1;
    bool doubleClickKeyEntry = false;
    bool scrolling = true;
    int uiScale = 100;

    void setDarkMode (int value);
    void setLanguage (TRQLanguage::Language value);
    void setMetering (int value);
    void setDoubleClickKeyEntry (bool value);
    void setScrolling (bool value);
    void setUIScale (int percent);
    void setAlwaysOpenAdvPane (bool value);

private:
    int loadSwitch (const char* key, int fallback);
    std::shared_ptr<TRQPreferenceSource> source;
};
