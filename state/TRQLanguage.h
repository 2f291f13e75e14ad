#pragma once

#include <array>
#include <string>

// Interface languages. Labels are shapes in the drawing, picked by the key of a
// language; the enumerator's name is what the preferences store.
namespace TRQLanguage
{
enum Language
{
    English = 0,
    Korean = 1,
    Japanese = 2,
    Portuguese = 3,
    French = 4,
    Spanish = 5,
    Arabic = 6,
    ChineseSimplified = 7,
    ChineseTraditional = 8,
    Emoji = 9,
    Asemic = 10
};

constexpr int numLanguages = 11;

// Drawing key ("en", "ko", ... "zxx"); empty for a value outside the enum.
std::string languageKey (Language language);

// The enumerator's name ("English", ... "Asemic"); empty outside the enum.
std::string languageName (Language language);

// Every language, in the order a stored name is searched.
const std::array<Language, 11>& allLanguages();

// The languages of the drawing and of the Language menu, in menu order.
const std::array<Language, 10>& menuLanguages();

// The language whose name is the text; English for an unknown text.
Language languageFromName (const std::string& name);

// The language whose shapes the drawing shows: itself when it is on the menu,
// English otherwise (so Asemic and out-of-range values show the English panel).
Language drawingLanguage (Language language);
} // namespace TRQLanguage
