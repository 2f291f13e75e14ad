#pragma once

#include "core/TRQAudioProcessor.h"
#include "editor/TRQAudioProcessorEditor.h"
#include "support/PreferencesFile.h"

#include <gtest/gtest.h>
#include <juce_gui_basics/juce_gui_basics.h>

#include <memory>

class TRQControl;

// An editor in a real top-level window, driven through its window peer the way the
// operating system drives it, and photographed with the X server's screenshot.
namespace EditorWindowSupport
{
bool hasDisplay();

// Base of the window tests: skipped without a display, with a preferences file of
// their own.
class WindowTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (!hasDisplay())
            GTEST_SKIP() << "no display; run through scripts/xvfb-test.sh";
        prefs = std::make_shared<PreferencesFile>();
    }

    std::shared_ptr<PreferencesFile> prefs;
};
// Whether the run expects a working OpenGL 3.2 (ZOLK_EXPECT_GL, default yes).
bool expectsGL();

struct OpenEditor
{
    std::unique_ptr<TRQAudioProcessorEditor> editor;
};

// Puts the editor, reading the preferences in prefs, on the desktop at (8, 20), where
// even the open panel at 200 % fits the virtual screen, and pumps the message loop
// until the first GL frame is drawn, or the editor gave up on GL.
OpenEditor open (TRQAudioProcessor& processor, const std::shared_ptr<PreferencesFile>& prefs);

void pump (int milliseconds);

// The editor's pixels as the X server shows them, GL content included.
juce::Image capture (juce::Component& component);

// Saves into ZOLK_SCREENSHOT_DIR if set.
void save (const juce::Image& image, const juce::String& name);

// Mouse events through the window's peer, at canvas positions of the editor.
juce::Point<float> canvasToEditor (TRQAudioProcessorEditor& editor, juce::Point<float> canvas);
void mouseDown (TRQAudioProcessorEditor& editor, juce::Point<float> canvas, juce::ModifierKeys mods = {});
void mouseDrag (TRQAudioProcessorEditor& editor, juce::Point<float> canvas, juce::ModifierKeys mods = {});
void mouseUp (TRQAudioProcessorEditor& editor, juce::Point<float> canvas, juce::ModifierKeys mods = {});
// A right-button press and its release at once, as a quick click: a menu it opens
// stays open.
void rightClick (TRQAudioProcessorEditor& editor, juce::Point<float> canvas, juce::ModifierKeys mods = {});
// One mouse event at a position in the editor's own coordinates, outside the canvas
// transform (popup menus live there).
void mouseAt (TRQAudioProcessorEditor& editor, juce::Point<float> position, juce::ModifierKeys mods = {});
void mouseMove (TRQAudioProcessorEditor& editor, juce::Point<float> canvas);
// Moves the X server's own pointer, which JUCE asks where the mouse is (tooltips).
void warpPointer (juce::Point<int> screen);
void wheel (TRQAudioProcessorEditor& editor, juce::Point<float> canvas, float deltaY,
            juce::ModifierKeys mods = {});
// A key to whatever has focus; with a target, that target is given the focus first
// if it lost it (a bare X server may move the input focus between windows at any
// time).
// Returns the component that has the focus right after the key was handled.
juce::Component* key (TRQAudioProcessorEditor& editor, const juce::KeyPress& key,
                      juce::Component* target = nullptr);
// Types the text into the target, key after key with nothing in between, and
// returns what the target shows as typed before anything else can happen.
juce::String typeText (TRQAudioProcessorEditor& editor, const juce::String& text, TRQControl& target);
} // namespace EditorWindowSupport
