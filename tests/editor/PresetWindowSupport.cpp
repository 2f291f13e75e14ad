#include "editor/PresetWindowSupport.h"

#include "presets/TRQPresetController.h"

namespace PresetWindowSupport
{
using namespace EditorWindowSupport;

void writeFactory (const PresetFolder& folder)
{
    const std::string defaultUuid = TRQPresetController::factoryDefaultUuid;
    PresetFolder::write (
        folder.factory(),
        {PresetFolder::section ("Factory", {PresetFolder::fullPreset ("Default", defaultUuid),
                                            PresetFolder::fullPreset ("Bright", "f-2", {{1, 6.0f}}),
                                            PresetFolder::fullPreset ("Dark", "f-3", {{1, -6.0f}})}),
         PresetFolder::section ("More", {PresetFolder::fullPreset ("Sparse", "f-4", {{2, 30.0f}})})},
        defaultUuid);
}

void writeUser (const PresetFolder& folder, const std::vector<std::pair<std::string, float>>& presets)
{
    std::vector<nlohmann::json> list;
    int n = 0;
    for (const auto& [name, gain] : presets)
        list.push_back (PresetFolder::fullPreset (name, "u-" + std::to_string (++n), {{1, gain}}));
    PresetFolder::write (folder.user(), {PresetFolder::section ("User", list)});
}

std::vector<std::string> userNames (const PresetFolder& folder)
{
    std::vector<std::string> names;
    if (!folder.user().existsAsFile())
        return names;
    const auto document = PresetFolder::read (folder.user());
    for (const auto& preset : document["0002"]["sections"][0]["presets"])
        names.push_back (preset["name"].get<std::string>());
    return names;
}

juce::Point<float> centreOf (TRQAudioProcessorEditor& editor, juce::Component& component)
{
    return editor.getRoot().getLocalArea (&component, component.getLocalBounds()).toFloat().getCentre();
}

void click (TRQAudioProcessorEditor& editor, juce::Point<float> canvas, juce::ModifierKeys mods)
{
    mouseDown (editor, canvas, mods);
    mouseUp (editor, canvas, mods);
    pump (30);
}

void click (TRQAudioProcessorEditor& editor, juce::Component& component)
{
    click (editor, centreOf (editor, component));
}

void type (TRQAudioProcessorEditor& editor, juce::TextEditor& field, const juce::String& text, bool replace)
{
    key (editor, juce::KeyPress (juce::KeyPress::endKey), &field);
    if (replace)
        field.selectAll();
    for (auto ch : text)
        key (editor, juce::KeyPress (ch, {}, ch), &field);
}

void press (TRQAudioProcessorEditor& editor, int keyCode, juce::Component* target)
{
    key (editor, juce::KeyPress (keyCode), target);
}
} // namespace PresetWindowSupport
