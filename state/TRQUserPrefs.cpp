#include "state/TRQUserPrefs.h"

#include "state/ParameterCatalogue.h"
#include "state/TRQSharedFile.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <limits>
#include <mutex>
#include <optional>

namespace TRQUserPrefs
{
namespace
{
std::mutex fileLock;
std::optional<juce::File> replacedFile;

using Json = nlohmann::ordered_json;

// The stored document; a file that can't be read, or isn't a JSON object, holds none.
Json parseDocument (const std::string& text)
{
    auto document = Json::parse (text, nullptr, false);
    return document.is_object() ? document : Json::object();
}

Json readDocument()
{
    std::string text;
    if (TRQSharedFile::read (Store::file(), text).failed())
        return Json::object();
    return parseDocument (text);
}

// The object that holds the values of a scope, or nullptr.
const Json* valuesOf (const Json& document, Scope scope)
{
    if (scope == allPlugins)
        return &document;
    const auto own = document.find (ParameterCatalogue::product().pluginNumber);
    return own != document.end() && own->is_object() ? &*own : nullptr;
}

// Changes one value in the file as it is on disk now, under the file's lock, so that
// what another program wrote meanwhile stays.
template<typename Value>
bool writeValue (Scope scope, const std::string& key, const Value& value)
{
    const auto result =
        TRQSharedFile::update (Store::file(),
                               [&] (std::string& text)
                               {
                                   auto document = parseDocument (text);
                                   auto* values = &document;
                                   if (scope == thisPlugin)
                                   {
                                       auto& own = document[ParameterCatalogue::product().pluginNumber];
                                       if (!own.is_object())
                                           own = Json::object();
                                       values = &own;
                                   }
                                   (*values)[key] = value;
                                   text = document.dump (4, ' ', false, Json::error_handler_t::replace);
                                   return juce::Result::ok();
                               });
    return result.wasOk();
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
        data.getSize() < sizeof (juce::uint32))
        return false;
    out = static_cast<int> (juce::ByteOrder::littleEndianInt (data.getData()));
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
Json storedValue (Scope scope, const std::string& key)
{
    const auto document = readDocument();
    const auto* values = valuesOf (document, scope);
    if (values == nullptr)
        return nullptr;
    const auto found = values->find (key);
    return found != values->end() ? *found : Json();
}
} // namespace

bool read (Scope scope, const std::string& key, int& out)
{
    const auto value = storedValue (scope, key);
    if (!value.is_number_integer())
        return false;
    out = static_cast<int> (std::clamp<std::int64_t> (
        value.get<std::int64_t>(), std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
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
