#include "state/TRQLanguage.h"

#include <gtest/gtest.h>

using namespace TRQLanguage;

TEST (TRQLanguage, KeysAndNamesFollowTheEnum)
{
    const char* keys[] = {"en", "ko", "ja", "pt", "fr", "es", "ar", "zh-Hans", "zh-Hant", "emoji", "zxx"};
    const char* names[] = {"English", "Korean", "Japanese",          "Portuguese",         "French",
                           "Spanish", "Arabic", "ChineseSimplified", "ChineseTraditional", "Emoji",
                           "Asemic"};
    for (int i = 0; i < numLanguages; ++i)
    {
        EXPECT_EQ (languageKey (static_cast<Language> (i)), keys[i]);
        EXPECT_EQ (languageName (static_cast<Language> (i)), names[i]);
        EXPECT_EQ (languageFromName (names[i]), static_cast<Language> (i));
    }
    EXPECT_EQ (languageKey (static_cast<Language> (11)), "");
    EXPECT_EQ (languageName (static_cast<Language> (-1)), "");
}

TEST (TRQLanguage, OrderingsAndNarrowing)
{
    const std::array<Language, 11> all{
        English, Spanish,           Portuguese,         French, Korean, Japanese,
        Arabic,  ChineseSimplified, ChineseTraditional, Emoji,  Asemic};
    const std::array<Language, 10> menu{
        English,  Spanish,           Portuguese,         French, Arabic, Korean,
        Japanese, ChineseSimplified, ChineseTraditional, Emoji};
    EXPECT_EQ (allLanguages(), all);
    EXPECT_EQ (menuLanguages(), menu);

    for (Language l : menu)
        EXPECT_EQ (drawingLanguage (l), l);
    EXPECT_EQ (drawingLanguage (Asemic), English);
    EXPECT_EQ (drawingLanguage (static_cast<Language> (42)), English);

    EXPECT_EQ (languageFromName ("Klingon"), English);
    EXPECT_EQ (languageFromName ("english"), English);
    EXPECT_EQ (languageFromName (""), English);
}
