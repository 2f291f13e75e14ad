#include "support/PresetFolder.h"

#include "state/ParameterCatalogue.h"

PresetFolder::PresetFolder()
{
    folder.createDirectory();
    TRQPresetFiles::setLocations ({user(), factory()});
}

PresetFolder::~PresetFolder()
{
    TRQPresetFiles::setLocations (previous);
    folder.deleteRecursively();
}

void PresetFolder::write (const juce::File& file, const std::vector<nlohmann::json>& sections,
                          const std::string& favourite)
{
    nlohmann::json plugin = nlohmann::json::object();
    plugin["sections"] = sections;
    if (!favourite.empty())
        plugin["favorite"] = favourite;
    file.getParentDirectory().createDirectory();
    nlohmann::json document = nlohmann::json::object();
    document["0002"] = plugin;
    file.replaceWithText (juce::String (document.dump (4)));
}

nlohmann::json PresetFolder::read (const juce::File& file)
{
    return nlohmann::json::parse (file.loadFileAsString().toStdString());
}

nlohmann::json PresetFolder::preset (const std::string& name, const std::string& uuid,
                                     const std::map<int, float>& values)
{
    nlohmann::json object{{"name", name}, {"uuid", uuid}, {"values", nlohmann::json::object()}};
    for (const auto& [id, value] : values)
        object["values"][std::to_string (id)] = value;
    return object;
}

nlohmann::json PresetFolder::fullPreset (const std::string& name, const std::string& uuid,
                                         const std::map<int, float>& changes)
{
    std::map<int, float> values;
    for (const auto& row : ParameterCatalogue::rows())
        values[static_cast<int> (row.id)] = row.defaultValue;
    for (const auto& [id, value] : changes)
        values[id] = value;
    return preset (name, uuid, values);
}

nlohmann::json PresetFolder::section (const std::string& title, const std::vector<nlohmann::json>& presets)
{
    nlohmann::json object = nlohmann::json::object();
    object["section"] = title;
    object["presets"] = presets;
    return object;
}
