#pragma once

#include <juce_core/juce_core.h>
#include <nlohmann/json.hpp>

#include <string>

// A preferences file of a test's own. While it lives, preferences are read from and
// written to it, and every editor made meanwhile starts from what it holds; the
// previous file comes back when it goes.
class PreferencesFile
{
public:
    PreferencesFile();
    ~PreferencesFile();

    juce::File file() const { return folder.getChildFile ("Halvane/Preferences.json"); }
    // Points the store at this file again.
    void use() const;

    // Values as another program would store them: shared by all plug-ins.
    void setInt (const std::string& key, int value);
    void setString (const std::string& key, const std::string& value);
    int getInt (const std::string& key, int fallback) const;
    std::string getString (const std::string& key, const std::string& fallback) const;
    // The whole file, or an empty object.
    nlohmann::json stored() const;

private:
    juce::TemporaryFile holder{"zolk-prefs"};
    juce::File folder = holder.getFile();
    juce::File previous;
};
