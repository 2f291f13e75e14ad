#include "presets/TRQHostPrograms.h"

TRQHostPrograms::TRQHostPrograms (const std::vector<PresetRecord>& presets)
{
    for (const auto& preset : presets)
        if (preset.kind == PresetKind::factory)
            programs.push_back ({preset.name, preset.uuid});
}

int TRQHostPrograms::size() const
{
    return std::max (1, static_cast<int> (programs.size()));
}

juce::String TRQHostPrograms::name (int program) const
{
    if (juce::isPositiveAndBelow (program, static_cast<int> (programs.size())) &&
        programs[static_cast<size_t> (program)].name.trim().isNotEmpty())
        return programs[static_cast<size_t> (program)].name;
    return "Preset " + juce::String (program + 1);
}

juce::String TRQHostPrograms::uuid (int program) const
{
    return juce::isPositiveAndBelow (program, static_cast<int> (programs.size()))
               ? programs[static_cast<size_t> (program)].uuid
               : juce::String();
}

HVNChecked<int> TRQHostPrograms::programOfUuid (const juce::String& uuid) const
{
    if (uuid.isEmpty())
        return {};
    for (size_t i = 0; i < programs.size(); ++i)
        if (programs[i].uuid == uuid)
            return static_cast<int> (i);
    return {};
}
