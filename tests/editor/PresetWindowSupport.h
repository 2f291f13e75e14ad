#pragma once

#include "editor/EditorWindowSupport.h"

#include "support/PresetFolder.h"

// The preset interface in a real window: a factory file of two sections, mouse and
// keys through the window's peer, and no web browser.
namespace PresetWindowSupport
{
// Factory: "Factory" with Default (the favourite), Bright (input +6 dB) and Dark
// (input -6 dB); "More" with Sparse.
void writeFactory (const PresetFolder& folder);

// A user section "User" holding these presets, each of full values with input gain
// set to the given dB.
void writeUser (const PresetFolder& folder, const std::vector<std::pair<std::string, float>>& presets);

// Names of the user file's first section, in file order.
std::vector<std::string> userNames (const PresetFolder& folder);

juce::Point<float> centreOf (TRQAudioProcessorEditor& editor, juce::Component& component);
void click (TRQAudioProcessorEditor& editor, juce::Point<float> canvas, juce::ModifierKeys mods = {});
void click (TRQAudioProcessorEditor& editor, juce::Component& component);
// Types into a text field key by key, through the window, over what it held unless
// told to add.
void type (TRQAudioProcessorEditor& editor, juce::TextEditor& field, const juce::String& text,
           bool replace = true);
void press (TRQAudioProcessorEditor& editor, int keyCode, juce::Component* target);
} // namespace PresetWindowSupport
