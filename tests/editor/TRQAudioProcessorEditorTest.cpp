#include "editor/TRQAudioProcessorEditor.h"
#include "core/ProcessorTestSupport.h"
#include "editor/TRQControl.h"
#include "editor/TRQParameterGestures.h"
#include "state/TRQAudioParameter.h"
#include "state/TRQParameterManager.h"
#include "state/TRQUndoManager.h"
#include "support/PreferencesFile.h"

#include <gtest/gtest.h>

// The editor off screen: sizes, panes, preferences and the single value path. No
// display is needed; the window tests cover what only a window shows.
namespace
{
std::unique_ptr<TRQAudioProcessorEditor> makeEditor (TRQAudioProcessor& processor)
{
    return std::make_unique<TRQAudioProcessorEditor> (processor);
}
} // namespace

TEST (TRQAudioProcessorEditor, SizesFollowPaneAndScale)
{
    auto processor = ProcessorTestSupport::make();
    PreferencesFile prefs;
    processor->getPluginState().setAdvancedPaneIsOpen (false);
    auto editor = makeEditor (*processor);
    EXPECT_EQ (editor->getWidth(), 457);
    EXPECT_EQ (editor->getHeight(), 380);
    editor->setAdvancedPaneOpen (true, false);
    EXPECT_EQ (editor->getWidth(), 793);
    EXPECT_EQ (processor->getPluginState().getAttribute (TRQPluginState::advancedPaneAttribute), "1");

    // The host's corner dragged to almost nothing stops at 80 %, and the choice is kept.
    editor->applyBoundsToComponent (*editor, {0, 0, 20, 10});
    EXPECT_EQ (editor->getWidth(), 634);
    EXPECT_EQ (prefs.getInt ("UIScale", 0), 80);
    editor->setUserScale (200);
    EXPECT_EQ (editor->getWidth(), 1586);
    EXPECT_EQ (editor->getHeight(), 760);
    EXPECT_FLOAT_EQ (editor->getUIScaleFactor(), 2.0f);

    // The host's scale multiplies in; the canvas transform carries both.
    editor->setUserScale (100);
    editor->setScaleFactor (1.5f);
    EXPECT_EQ (editor->getWidth(), (int)(1.5f * 793.0f));
    EXPECT_NEAR (editor->getRoot().getTransform().mat00, 1.5f, 1e-3f);
}

TEST (TRQAudioProcessorEditor, AAXKeepsItsMinimumWidth)
{
    auto processor = ProcessorTestSupport::make (2, 2, 2, true);
    PreferencesFile prefs;
    prefs.setInt ("UIScale", 80);
    processor->getPluginState().setAdvancedPaneIsOpen (false);
    auto editor = makeEditor (*processor);
    EXPECT_EQ (editor->getWidth(), 453);
    EXPECT_EQ (editor->getHeight(), (int)std::floor (453.0f / 457.0f * 380.0f));
}

TEST (TRQAudioProcessorEditor, AlwaysOpenPreferenceBeatsTheStoredState)
{
    auto processor = ProcessorTestSupport::make();
    PreferencesFile prefs;
    prefs.setInt ("AlwaysOpenAdvPane", 1);
    processor->getPluginState().setAdvancedPaneIsOpen (false);
    auto editor = makeEditor (*processor);
    EXPECT_TRUE (editor->isAdvancedPaneOpen());
    EXPECT_EQ (editor->getWidth(), 793);
}

TEST (TRQAudioProcessorEditor, HostValuesReachControlsThroughTheTimer)
{
    auto processor = ProcessorTestSupport::make();
    auto editor = makeEditor (*processor);
    auto& power = processor->getAudioParameter (0);
    power.setValueNotifyingHost (0.0f);
    editor->tick();
    EXPECT_FLOAT_EQ (editor->getControl (0)->getNormalisedValue(), 0.0f);
    EXPECT_TRUE (editor->getControl (5)->isDisabledByDependency());
    // Power has no lock; the rest dim with it.
    power.setValueNotifyingHost (1.0f);
    editor->tick();
    EXPECT_FALSE (editor->getControl (5)->isDisabledByDependency());
    EXPECT_THROW (editor->parameterChanged (21, 0.0f, true), std::out_of_range);
}

TEST (TRQAudioProcessorEditor, HostShortcutsSeeControlsOnly)
{
    auto processor = ProcessorTestSupport::make();
    auto editor = makeEditor (*processor);
    EXPECT_EQ (editor->getControlParameterIndex (*editor->getControl (17)), 17);
    EXPECT_EQ (editor->getControlParameterIndex (editor->getLayout()), -1);
}

TEST (TRQAudioProcessorEditor, DarkModeAndLanguageAreStored)
{
    auto processor = ProcessorTestSupport::make();
    PreferencesFile prefs;
    {
        auto editor = makeEditor (*processor);
        int signalled = -1;
        TRQSignals::Trackable listener;
        editor->languageChanged.connect (&listener, [&signalled] (int l) { signalled = l; });
        editor->setDarkMode (1);
        editor->setLanguage (TRQLanguage::Asemic);
        EXPECT_EQ (signalled, (int)TRQLanguage::Asemic);
        // Asemic shows the English panel.
        EXPECT_EQ (editor->getLayout().getLanguage(), TRQLanguage::English);
    }
    // Kept compact, which no write of ours is.
    const juce::String stored (prefs.stored().dump());
    prefs.file().replaceWithText (stored);
    auto next = makeEditor (*processor);
    EXPECT_EQ (next->getLayout().getStyle(), 1);
    EXPECT_EQ (next->getPreferences().language.get(), TRQLanguage::Asemic);
    EXPECT_EQ (prefs.file().loadFileAsString(), stored) << "opening wrote nothing";
}

TEST (TRQAudioProcessorEditor, GesturesBecomeUndoSteps)
{
    auto processor = ProcessorTestSupport::make();
    auto editor = makeEditor (*processor);
    auto& undo = processor->getUndoManager();
    // Gestures close together join one step; these two are a minute apart.
    std::int64_t now = 1000000;
    undo.setClock ([&now] { return now; });
    auto& input = *editor->getControl (1);
    const float before = processor->getAudioParameter (1).getRealValue();
    input.stepUp ({}, true);
    now += 60000;
    input.stepUp ({}, true);
    EXPECT_NEAR (processor->getAudioParameter (1).getRealValue(), before + 1.0f, 1e-4f);
    ASSERT_TRUE (undo.canUndo());
    undo.undo();
    EXPECT_NEAR (processor->getAudioParameter (1).getRealValue(), before + 0.5f, 1e-4f);
    undo.undo();
    EXPECT_NEAR (processor->getAudioParameter (1).getRealValue(), before, 1e-4f);

    // The A/B keys reach the parameter manager's slots.
    editor->getGestures().abAction (0);
    EXPECT_TRUE (processor->getParameterManager().getIsOnB());
    editor->getGestures().abAction (0);
    EXPECT_FALSE (processor->getParameterManager().getIsOnB());
}
