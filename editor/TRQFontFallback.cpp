#include "editor/TRQFontFallback.h"

#include <mutex>

namespace
{
enum class Script
{
    latin,
    arabic,
    hebrew,
    cjk,
    other
};

Script scriptOf (juce::juce_wchar c)
{
    if (c >= 0x0600 && c <= 0x06FF)
        return Script::arabic;
    if (c >= 0x0590 && c <= 0x05FF)
        return Script::hebrew;
    if ((c >= 0x1100 && c <= 0x11FF) || (c >= 0x3000 && c <= 0x9FFF) || (c >= 0xAC00 && c <= 0xD7AF) ||
        (c >= 0xFF00 && c <= 0xFFEF))
        return Script::cjk;
    if (c > 0x024F && c < 0xE000)
        return Script::other;
    return Script::latin;
}

// JUCE's font list on Linux skips font collections, which is how the CJK faces
// ship; ask fontconfig for the file and load its first face, which covers Hangul,
// kana and ideographs alike. Made once, on the first name that needs it.
juce::Typeface::Ptr cjkTypeface()
{
    static std::once_flag once;
    static juce::Typeface::Ptr typeface;
    std::call_once (
        once,
        []
        {
            juce::ChildProcess fcMatch;
            if (!fcMatch.start (juce::StringArray{"fc-match", "-f", "%{file}", "sans:lang=ko"}))
                return;
            const auto path = fcMatch.readAllProcessOutput().trim();
            juce::MemoryBlock data;
            if (path.isNotEmpty() && juce::File (path).loadFileAsData (data) && data.getSize() > 0)
                typeface = juce::Typeface::createSystemTypefaceFor (data.getData(), data.getSize());
        });
    return typeface;
}
} // namespace

juce::Font TRQFontFallback::fontFor (const juce::String& text, const juce::Font& preferred)
{
    for (auto c : text)
    {
        switch (scriptOf (c))
        {
        case Script::arabic:
            return juce::Font ("Noto Sans Arabic", "Regular", preferred.getHeight());
        case Script::hebrew:
            return juce::Font ("Noto Sans Hebrew", "Regular", preferred.getHeight());
        case Script::cjk:
            if (auto typeface = cjkTypeface())
                return juce::Font (typeface).withHeight (preferred.getHeight());
            return preferred;
        case Script::other:
            return juce::Font ("Noto Sans", "Regular", preferred.getHeight());
        case Script::latin:
            break;
        }
    }
    return preferred;
}
