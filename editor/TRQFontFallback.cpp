#include "editor/TRQFontFallback.h"

namespace
{
const char* familyForCharacter (juce::juce_wchar c)
{
    if (c >= 0x0600 && c <= 0x06FF)
        return "Noto Sans Arabic";
    if (c >= 0x0590 && c <= 0x05FF)
        return "Noto Sans Hebrew";
    if ((c >= 0x1100 && c <= 0x11FF) || (c >= 0x3000 && c <= 0x9FFF) || (c >= 0xAC00 && c <= 0xD7AF) ||
        (c >= 0xFF00 && c <= 0xFFEF))
        return "Noto Sans CJK KR";
    if (c > 0x024F && c < 0xE000)
        return "Noto Sans";
    return nullptr;
}
} // namespace

juce::Font TRQFontFallback::fontFor (const juce::String& text, const juce::Font& preferred)
{
    for (auto c : text)
        if (const char* family = familyForCharacter (c))
            return juce::Font (family, "Regular", preferred.getHeight());
    return preferred;
}
