#include "state/TRQLanguage.h"

#include <algorithm>

namespace TRQLanguage
{
namespace
{
struct Entry
{
    const char* name;
    const char* key;
};

constexpr Entry entries[numLanguages] = {
    {"English", "en"},
    {"Korean", "ko"},
    {"Japanese", "ja"},
    {"Portuguese", "pt"},
    {"French", "fr"},
    {"Spanish", "es"},
    {"Arabic", "ar"},
    {"ChineseSimplified", "zh-Hans"},
    {"ChineseTraditional", "zh-Hant"},
    {"Emoji", "emoji"},
    {"Asemic", "zxx"},
};

bool inRange (Language language)
{
    return static_cast<int> (language) >= 0 && static_cast<int> (language) < numLanguages;
}
} // namespace

std::string languageKey (Language language)
{
    return inRange (language) ? entries[static_cast<int> (language)].key : "";
}

std::string languageName (Language language)
{
    return inRange (language) ? entries[static_cast<int> (language)].name : "";
}

const std::array<Language, 11>& allLanguages()
{
    static const std::array<Language, 11> order{
        English, Spanish,           Portuguese,         French, Korean, Japanese,
        Arabic,  ChineseSimplified, ChineseTraditional, Emoji,  Asemic};
    return order;
}

const std::array<Language, 10>& menuLanguages()
{
    static const std::array<Language, 10> order{
        English,  Spanish,           Portuguese,         French, Arabic, Korean,
        Japanese, ChineseSimplified, ChineseTraditional, Emoji};
    return order;
}

Language languageFromName (const std::string& name)
{
    for (Language language : allLanguages())
        if (languageName (language) == name)
            return language;
    return English;
}

Language drawingLanguage (Language language)
{
    const auto& menu = menuLanguages();
    return std::find (menu.begin(), menu.end(), language) != menu.end() ? language : English;
}
} // namespace TRQLanguage
