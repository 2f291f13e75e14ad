#include "state/TRQUserPrefs.h"

#include "state/ParameterCatalogue.h"

#include <nlohmann/json.hpp>

#include <array>
#include <mutex>
#include <optional>

namespace TRQUserPrefs
{
namespace
{
std::mutex fileLock;
std::optional<juce::File> replacedFile;

nlohmann::json readDocument()
{
    const auto text = Store::file().loadFileAsString();
    if (text.trim().isEmpty())
        return nlohmann::json::object();
    auto document = nlohmann::json::parse (text.toStdString(), nullptr, false);
    return document.is_object() ? document : nlohmann::json::object();
}

// The object that holds the values of a scope, or nullptr.
const nlohmann::json* valuesOf (const nlohmann::json& document, Scope scope)
{
    if (scope == allPlugins)
        return &document;
    const auto own = document.find (ParameterCatalogue::product().pluginNumber);
    return own != document.end() && own->is_object() ? &*own : nullptr;
}

template<typename Value>
bool writeValue (Scope scope, const std::string& key, const Value& value)
{
    auto document = readDocument();
    auto* values = &document;
    if (scope == thisPlugin)
    {
        auto& own = document[ParameterCatalogue::product().pluginNumber];
        if (!own.is_object())
            own = nlohmann::json::object();
        values = &own;
    }
    (*values)[key] = value;

    const auto target = Store::file();
    if (!target.getParentDirectory().createDirectory().wasOk())
        return false;
    return target.replaceWithText (juce::String::fromUTF8 (document.dump (4).c_str()));
}
} // namespace

namespace Store
{
juce::File standardFile()
{
    return juce::File::getSpecialLocation (juce::File::userApplicationDataDirectory)
        .getChildFile ("Halvane/Preferences.json");
}

juce::File file()
{
    const std::lock_guard<std::mutex> lock (fileLock);
    return replacedFile ? *replacedFile : standardFile();
}

void setFile (const juce::File& replacement)
{
    const std::lock_guard<std::mutex> lock (fileLock);
    replacedFile = replacement;
}

void useStandardFile()
{
    const std::lock_guard<std::mutex> lock (fileLock);
    replacedFile.reset();
}

bool read (Scope scope, const std::string& key, int& out)
{
    const auto document = readDocument();
    const auto* values = valuesOf (document, scope);
    if (values == nullptr)
        return false;
    const auto found = values->find (key);
    if (found == values->end() || !found->is_number_integer())
        return false;
    out = static_cast<int> (found->get<std::int64_t>() & 0xff);
    return true;
}

bool read (Scope scope, const std::string& key, std::string& out)
{
    const auto document = readDocument();
    const auto* values = valuesOf (document, scope);
    if (values == nullptr)
        return false;
    const auto found = values->find (key);
    if (found == values->end() || !found->is_string())
        return false;
    out = found->get<std::string>();
    return true;
}

bool write (Scope scope, const std::string& key, int value)
{
    return writeValue (scope, key, value);
}

bool write (Scope scope, const std::string& key, const std::string& value)
{
    return writeValue (scope, key, value);
}
} // namespace Store

std::string knownLanguageName (const std::string& name)
{
    static const std::array<const char*, 11> names{
        "English", "Spanish",           "Portuguese",         "French", "Korean", "Japanese",
        "Arabic",  "ChineseSimplified", "ChineseTraditional", "Emoji",  "Asemic"};
    for (const auto* known : names)
        if (name == known)
            return name;
    return names[0];
}
} // namespace TRQUserPrefs
