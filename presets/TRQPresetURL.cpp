#include "presets/TRQPresetURL.h"

#include "presets/TRQPresetController.h"
#include "state/ParameterCatalogue.h"
#include "state/ParameterRange.h"
#include "state/TRQAudioParameter.h"
#include "state/TRQLinks.h"
#include "state/TRQParameterManager.h"
#include "state/TRQSettingsHost.h"

#include <array>
#include <cmath>
#include <cstring>
#include <map>

namespace TRQPresetURL
{
namespace
{
constexpr const char* productPath = "/zolk-comp";

void setReal (TRQSettingsHost& processor, ParameterId id, double value)
{
    if (std::isnan (value))
        value = 0.0;
    auto& parameter = processor.getAudioParameter (static_cast<int> (id));
    parameter.setValue (toNormalised (id, static_cast<float> (value)));
    parameter.sendValueChangedMessageToListeners (parameter.getValue());
}

// Reads "key<separator>value" pieces of query, split at delimiter.
void readPieces (TRQSettingsHost& processor, const juce::String& query, const char* delimiter,
                 const char* separator, const std::map<juce::String, ParameterId>& keys,
                 std::array<bool, kNumParameters>& seen)
{
    for (const auto& piece : juce::StringArray::fromTokens (query, delimiter, ""))
    {
        const auto parts = juce::StringArray::fromTokens (piece, separator, "");
        const auto key = keys.find (parts[0]);
        if (key == keys.end())
            continue;
        seen[key->second] = true;
        setReal (processor, key->second, parts[1].getDoubleValue());
    }
}
} // namespace

juce::String base()
{
    return juce::String (ZOLK_MAKER_URL) + productPath;
}

juce::String settingsAsUrl (const TRQSettingsHost& processor)
{
    float values[kNumParameters];
    for (ParameterId id = 0; id < kNumParameters; ++id)
        values[id] = snapAndClamp (id, processor.getAudioParameter (static_cast<int> (id)).getRealValue());
    return settingsAsUrl (values);
}

juce::String settingsAsUrl (const float (&values)[kNumParameters])
{
    juce::String query = "?";
    for (ParameterId id = 1; id < kNumParameters; ++id)
    {
        const auto& row = ParameterCatalogue::row (id);
        if (TRQLinks::isHeldByGate (id, values) || values[id] == row.defaultValue)
            continue;
        query << juce::String::fromUTF8 (row.shortKey.c_str()) << "="
              << juce::String (static_cast<double> (values[id])) << "&";
    }
    query = query.length() > 1 ? query.dropLastCharacters (1) : juce::String();

    return base() + "/" + juce::String::fromUTF8 (ParameterCatalogue::product().version.c_str()) + query;
}

void pasteSettings (TRQSettingsHost& processor, const juce::String& text)
{
    std::map<juce::String, ParameterId> keys;
    for (const auto& row : ParameterCatalogue::rows())
        keys[juce::String::fromUTF8 (row.shortKey.c_str())] = row.id;
    std::array<bool, kNumParameters> seen{};

    auto& manager = processor.getParameterManager();
    manager.beginPresetAction (processor.getPresetController()->lastUuid());

    // Another application's clipboard may hold bytes that aren't UTF-8, which the
    // tokeniser can't walk: such text reads as no settings at all.
    const auto* raw = text.toRawUTF8();
    const bool isUTF8 = juce::CharPointer_UTF8::isValidString (raw, static_cast<int> (std::strlen (raw)));
    juce::StringArray tokens;
    tokens.addTokens (isUTF8 ? text : juce::String(), "?", "\"");
    if (!tokens.isEmpty())
    {
        const auto query = tokens.size() > 1 ? tokens[1] : juce::String();
        readPieces (processor, query, "&", "=", keys, seen);
        readPieces (processor, query, "/", ":", keys, seen);
    }

    for (ParameterId id = 0; id < kNumParameters; ++id)
        if (!seen[id])
            setReal (processor, id, ParameterCatalogue::row (id).defaultValue);

    manager.endPresetAction ({});
}
} // namespace TRQPresetURL
