#pragma once

#include "state/TRQLanguage.h"

#include <juce_core/juce_core.h>

#include <cstdint>
#include <string>

// Settings that belong to the user rather than to a project. They live in one store
// that all of the maker's plug-ins share: the registry under Windows, elsewhere a
// per-user JSON file with the same value names and the same two kinds of value (whole
// numbers and text). Message thread only.
namespace TRQUserPrefs
{
// Where a preference is kept: shared by all of the maker's plug-ins, or this one only.
enum Scope : std::uint32_t
{
    allPlugins = 0,
    thisPlugin = 1
};

namespace Store
{
// <user configuration folder>/Halvane/Preferences.json; not used under Windows.
juce::File standardFile();
// The file this process uses: the standard one unless replaced (for tests).
juce::File file();
void setFile (const juce::File& replacement);
void useStandardFile();

// A stored number comes back whole. Absent or of the other kind: not found.
bool read (Scope scope, const std::string& key, int& out);
bool read (Scope scope, const std::string& key, std::string& out);
// Changes this one value in the file as it is on disk at that moment, so that values
// other programs wrote meanwhile stay (see TRQSharedFile). Makes the file and its
// folder at need; false when it can't be written, a read-only file included.
bool write (Scope scope, const std::string& key, int value);
bool write (Scope scope, const std::string& key, const std::string& value);
} // namespace Store

// One preference: T is its type in the program, S its stored form.
template<typename T, typename S>
class Pref
{
public:
    explicit Pref (std::uint32_t prefScope = allPlugins)
        : scope (prefScope)
    {
    }
    virtual ~Pref() = default;

    virtual T defaultValue() const = 0;
    virtual std::string key() const = 0;
    virtual T fromStored (S stored) const = 0;
    virtual S toStored (T v) const = 0;

    // Reads the stored value. An unknown value is replaced by what it reads as, and a
    // missing one by the default, both written back.
    void load()
    {
        S stored{};
        if (Store::read (static_cast<Scope> (scope), key(), stored))
        {
            value = fromStored (stored);
            if (toStored (value) != stored)
                Store::write (static_cast<Scope> (scope), key(), toStored (value));
        }
        else
        {
            value = defaultValue();
            Store::write (static_cast<Scope> (scope), key(), toStored (value));
        }
    }

    void set (T newValue)
    {
        value = newValue;
        Store::write (static_cast<Scope> (scope), key(), toStored (value));
    }

    T get() const { return value; }

protected:
    std::uint32_t scope;
    T value{};
};

// A preference whose stored number is one of an enum's values.
template<typename Enum, int defaultNumber, int highestNumber = 1>
class EnumPref : public Pref<Enum, int>
{
public:
    using Pref<Enum, int>::Pref;
    Enum defaultValue() const override { return static_cast<Enum> (defaultNumber); }
    // 0 to 1 (or the highest given) pass; anything else gives the default.
    Enum fromStored (int stored) const override
    {
        return stored >= 0 && stored <= highestNumber ? static_cast<Enum> (stored) : defaultValue();
    }
    int toStored (Enum v) const override { return static_cast<int> (v); }
};

// 2 follows the system where there is a system dark mode; it is never stored here.
enum class DarkMode
{
    Off = 0,
    On = 1,
    System = 2
};
enum class Scrolling
{
    Off = 0,
    On = 1
};
enum class DoubleClickKeyEntry
{
    Off = 0,
    On = 1
};
enum class Metering
{
    Off = 0,
    On = 1
};
enum class FontSource
{
    Embedded = 0,
    System = 1
};
enum class AlwaysOpenAdvPane
{
    Off = 0,
    On = 1
};

struct DarkModePref : EnumPref<DarkMode, 0>
{
    std::string key() const override { return "DarkMode"; }
};
struct ScrollingPref : EnumPref<Scrolling, 1>
{
    std::string key() const override { return "Scrolling"; }
};
struct DoubleClickKeyEntryPref : EnumPref<DoubleClickKeyEntry, 0>
{
    std::string key() const override { return "DoubleClickKeyEntry"; }
};
struct MeteringPref : EnumPref<Metering, 1>
{
    std::string key() const override { return "Metering"; }
};
struct FontSourcePref : EnumPref<FontSource, 0>
{
    std::string key() const override { return "FontSource"; }
};
struct AlwaysOpenAdvPanePref : EnumPref<AlwaysOpenAdvPane, 0>
{
    std::string key() const override { return "AlwaysOpenAdvPane"; }
};

// The window scale in percent, stored as it is. A number no window could have (below
// the smallest size, or a window ten times the standard one) gives the default.
struct UIScalePref : Pref<int, int>
{
    static constexpr int smallest = 80;
    static constexpr int largest = 1000;

    int defaultValue() const override { return 100; }
    std::string key() const override { return "UIScale"; }
    int fromStored (int stored) const override
    {
        return stored >= smallest && stored <= largest ? stored : defaultValue();
    }
    int toStored (int v) const override { return v; }
};

// The interface language, stored as its enumerator's name ("English", "Korean", ...);
// a name that is no language reads as English.
struct LanguagePref : Pref<TRQLanguage::Language, std::string>
{
    TRQLanguage::Language defaultValue() const override { return TRQLanguage::English; }
    std::string key() const override { return "Language"; }
    TRQLanguage::Language fromStored (std::string stored) const override
    {
        return TRQLanguage::languageFromName (stored);
    }
    std::string toStored (TRQLanguage::Language v) const override { return TRQLanguage::languageName (v); }
};

// The preferences an editor holds, each its own copy.
struct EditorPrefs
{
    AlwaysOpenAdvPanePref alwaysOpenAdvPane;
    DarkModePref darkMode;
    FontSourcePref fontSource;
    DoubleClickKeyEntryPref doubleClickKeyEntry;
    LanguagePref language;
    MeteringPref metering;
    ScrollingPref scrolling;
    UIScalePref uiScale;

    // All of them loaded, in the order an editor reads them when it opens. Values
    // that are stored and valid are not written.
    static EditorPrefs loaded()
    {
        EditorPrefs prefs;
        prefs.alwaysOpenAdvPane.load();
        prefs.darkMode.load();
        prefs.fontSource.load();
        prefs.doubleClickKeyEntry.load();
        prefs.language.load();
        prefs.metering.load();
        prefs.scrolling.load();
        prefs.uiScale.load();
        return prefs;
    }
};
} // namespace TRQUserPrefs
