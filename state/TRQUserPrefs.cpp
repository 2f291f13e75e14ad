#include "state/TRQUserPrefs.h"

#include "state/ParameterCatalogue.h"

#include <nlohmann/json.hpp>

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

#if JUCE_WINDOWS
// The registry: HKEY_CURRENT_USER\SOFTWARE\Halvane, or its plug-in number's sub-key.
namespace
{
juce::String registryPath (Scope scope, const std::string& key)
{
    juce::String path = "HKEY_CURRENT_USER\\SOFTWARE\\Halvane\\";
    if (scope == thisPlugin)
        path << juce::String (ParameterCatalogue::product().pluginNumber) << "\\";
    return path + juce::String (key);
}

constexpr juce::uint32 registryString = 1; // REG_SZ
constexpr juce::uint32 registryNumber = 4; // REG_DWORD
} // namespace

bool read (Scope scope, const std::string& key, int& out)
{
    juce::MemoryBlock data;
    if (juce::WindowsRegistry::getBinaryValue (registryPath (scope, key), data) != registryNumber ||
        data.isEmpty())
        return false;
    out = static_cast<int> (static_cast<juce::uint8> (data[0]));
    return true;
}

bool read (Scope scope, const std::string& key, std::string& out)
{
    const auto path = registryPath (scope, key);
    juce::MemoryBlock data;
    if (juce::WindowsRegistry::getBinaryValue (path, data) != registryString)
        return false;
    out = juce::WindowsRegistry::getValue (path).toStdString();
    return true;
}

bool write (Scope scope, const std::string& key, int value)
{
    return juce::WindowsRegistry::setValue (registryPath (scope, key), static_cast<juce::uint32> (value));
}

bool write (Scope scope, const std::string& key, const std::string& value)
{
    return juce::WindowsRegistry::setValue (registryPath (scope, key), juce::String (value));
}
#else
namespace
{
// The stored value of key, or null when there is none.
nlohmann::json storedValue (Scope scope, const std::string& key)
{
    const auto document = readDocument();
    const auto* values = valuesOf (document, scope);
    if (values == nullptr)
        return nullptr;
    const auto found = values->find (key);
    return found != values->end() ? *found : nlohmann::json();
}
} // namespace

bool read (Scope scope, const std::string& key, int& out)
{
    const auto value = storedValue (scope, key);
    if (!value.is_number_integer())
        return false;
    out = static_cast<int> (value.get<std::int64_t>() & 0xff);
    return true;
}

bool read (Scope scope, const std::string& key, std::string& out)
{
    const auto value = storedValue (scope, key);
    if (!value.is_string())
        return false;
    out = value.get<std::string>();
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
#endif
} // namespace Store

} // namespace TRQUserPrefs
