#include "core/ProcessorTestSupport.h"
#include "editor/GenericFormFocusTraverser.h"
#include "editor/PresetWindowSupport.h"
#include "editor/TRQAudioProcessorEditor.h"
#include "editor/TRQControl.h"
#include "editor/TRQMenuItemId.h"
#include "editor/TRQPresetModal.h"
#include "editor/TRQPresetView.h"
#include "editor/TRQToolbar.h"
#include "presets/TRQPresetController.h"
#include "state/TRQAudioParameter.h"
#include "support/PreferencesFile.h"
#include "support/PresetFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

// The preset interface's rules off screen: layout, button states, the modal back
// stack, the forms' checks and the row menu. The window tests drive the same parts
// with the mouse.
namespace
{
class PresetUI : public ::testing::Test
{
protected:
    void SetUp() override
    {
        PresetWindowSupport::writeFactory (folder);
        prefs = std::make_shared<PreferencesFile>();
    }

    std::unique_ptr<TRQAudioProcessorEditor> makeEditor (TRQAudioProcessor& processor)
    {
        return std::make_unique<TRQAudioProcessorEditor> (processor);
    }

    static TRQPresetModal* form (TRQAudioProcessorEditor& editor)
    {
        return dynamic_cast<TRQPresetModal*> (editor.getModalViewer().getContent());
    }

    static void pump() { juce::MessageManager::getInstance()->runDispatchLoopUntil (20); }

    PresetFolder folder;
    std::shared_ptr<PreferencesFile> prefs;
};
} // namespace

TEST (TRQToolbar, LayoutAndStates)
{
    TRQToolbar toolbar;
    toolbar.setBounds (0, 350, 395, 30);
    const auto at = [&] (int id) { return toolbar.getButton (id)->getBounds(); };
    EXPECT_EQ (at (TRQToolbar::PrevPreset), juce::Rectangle<int> (87, 4, 28, 22));
    EXPECT_EQ (at (TRQToolbar::Presets), juce::Rectangle<int> (117, 4, 160, 22));
    EXPECT_EQ (at (TRQToolbar::NextPreset), juce::Rectangle<int> (279, 4, 28, 22));
    EXPECT_EQ (at (TRQToolbar::Undo), juce::Rectangle<int> (2, 4, 28, 22));
    EXPECT_EQ (at (TRQToolbar::Redo), juce::Rectangle<int> (30, 4, 28, 22));
    EXPECT_EQ (at (TRQToolbar::SelectB), juce::Rectangle<int> (373, 4, 20, 22));
    EXPECT_EQ (at (TRQToolbar::CopyAB), juce::Rectangle<int> (353, 4, 20, 22));
    EXPECT_EQ (at (TRQToolbar::SelectA), juce::Rectangle<int> (333, 4, 20, 22));
    toolbar.setSize (0, 0);
    EXPECT_EQ (at (TRQToolbar::Presets).getHeight(), 0);

    // Nothing to undo dims the button and takes it out of reach.
    toolbar.setUndoState (false, true);
    EXPECT_FALSE (toolbar.getButton (TRQToolbar::Undo)->isEnabled());
    EXPECT_TRUE (toolbar.getButton (TRQToolbar::Redo)->isEnabled());
    int clicks = 0;
    toolbar.pressed.connect (&toolbar, [&] (int, int) { ++clicks; });
    toolbar.getButton (TRQToolbar::Undo)->click();
    EXPECT_EQ (clicks, 0);

    toolbar.setActiveSlot (1);
    EXPECT_EQ (toolbar.getButton (TRQToolbar::CopyAB)->getTooltip(), "Copy B to A");
    EXPECT_EQ (toolbar.getButton (TRQToolbar::SelectB)->getState(), 1);
    EXPECT_EQ (toolbar.getButton (TRQToolbar::SelectA)->getState(), 0);
    toolbar.setActiveSlot (0);
    EXPECT_EQ (toolbar.getButton (TRQToolbar::CopyAB)->getTooltip(), "Copy A to B");

    toolbar.setPresetName ("Warm", false);
    EXPECT_EQ (toolbar.getButton (TRQToolbar::Presets)->getLabelText (0), "Warm");
    toolbar.setModified (true);
    EXPECT_NE (toolbar.getButton (TRQToolbar::Presets)->getLabelText (0), "Warm");
    EXPECT_EQ (toolbar.getPresetName(), "Warm");
}

TEST (TRQModalViewer, SettingsCompareKindsAndValues)
{
    using S = TRQModalViewer::ModalSettings;
    S a, b;
    EXPECT_EQ (a, b);
    a.set (S::kind, 3).set (S::uuid, "x");
    b.set (S::kind, 3).set (S::uuid, "x");
    EXPECT_EQ (a, b);
    b.set (S::kind, "3");
    EXPECT_NE (a, b) << "a number and its text are different kinds";
    b.set (S::kind, 3).set (S::name, "n");
    EXPECT_NE (a, b);
    S c = a;
    c.hasForm = true;
    EXPECT_NE (a, c);
}

TEST (GenericFormFocusTraverser, WalksFieldsAndWraps)
{
    juce::Component parent;
    juce::TextEditor one, two, three;
    for (auto* c : {&one, &two, &three})
        parent.addAndMakeVisible (c);
    parent.setVisible (true);
    GenericFormFocusTraverser traverser ([&] { return std::vector<juce::Component*>{&one, &two, &three}; });
    // Not on screen: nothing is showing, so nothing can take the focus.
    EXPECT_EQ (traverser.getNextComponent (&one), nullptr);
    parent.addToDesktop (0);
    if (!parent.isShowing())
        GTEST_SKIP() << "no display";
    EXPECT_EQ (traverser.getNextComponent (&one), &two);
    EXPECT_EQ (traverser.getNextComponent (&three), &one);
    EXPECT_EQ (traverser.getPreviousComponent (&one), &three);
    two.setEnabled (false);
    EXPECT_EQ (traverser.getNextComponent (&one), &three);
}

// The back stack: same settings twice is no change, Escape from a form opened in the
// browser returns there, replace closes both forms, retired forms go on the next
// turn of the message loop.
TEST_F (PresetUI, ModalBackStack)
{
    auto processor = ProcessorTestSupport::make();
    auto editor = makeEditor (*processor);
    // Controls under what covers them are dimmed: the browser covers the main pane, a
    // form the whole panel.
    auto* inputGain = editor->getControl (1);
    auto* attack = editor->getControl (7);
    ASSERT_NE (inputGain, nullptr);
    ASSERT_NE (attack, nullptr);
    editor->openModal (1, true, {});
    ASSERT_EQ (editor->getModalState(), 1);
    EXPECT_TRUE (inputGain->isInModal());
    EXPECT_FALSE (attack->isInModal());
    editor->openModal (2, true, {});
    EXPECT_TRUE (attack->isInModal());
    auto* first = form (*editor);
    ASSERT_NE (first, nullptr);
    editor->openModal (2, true, {});
    EXPECT_EQ (form (*editor), first);
    EXPECT_EQ (editor->getModalHistorySize(), 2u);

    first->cancel();
    EXPECT_EQ (editor->getModalState(), 1);
    EXPECT_GT (editor->getModalViewer().retiredCount(), 0u);
    pump();
    EXPECT_EQ (editor->getModalViewer().retiredCount(), 0u);

    // Save under a name another instance took since the list was read: the replace
    // form, then both close.
    PresetWindowSupport::writeUser (folder, {{"Taken", 1.0f}});
    editor->openModal (2, true, {});
    form (*editor)->getNameEditor()->setText ("Taken");
    EXPECT_FALSE (form (*editor)->submit());
    ASSERT_EQ (editor->getModalSettings().get (TRQModalViewer::ModalSettings::kind), juce::var (1));
    EXPECT_TRUE (form (*editor)->submit());
    EXPECT_EQ (editor->getModalState(), 1);
    EXPECT_EQ (PresetWindowSupport::userNames (folder), (std::vector<std::string>{"Taken"}));

    editor->closeModal (5);
    EXPECT_EQ (editor->getModalState(), 0);
    EXPECT_EQ (editor->getModalHistorySize(), 0u);
    EXPECT_FALSE (inputGain->isInModal());
    EXPECT_FALSE (attack->isInModal());
}

TEST_F (PresetUI, FormsCheckNames)
{
    PresetWindowSupport::writeUser (folder, {{"Alpha", 1.0f}, {"Beta", 2.0f}});
    auto processor = ProcessorTestSupport::make();
    auto editor = makeEditor (*processor);
    auto controller = processor->getPresetController();

    for (const juce::String blank : {"", "   ", "\t \t"})
    {
        editor->openModal (2, false, {});
        form (*editor)->getNameEditor()->setText (blank);
        EXPECT_FALSE (form (*editor)->submit());
        EXPECT_EQ (form (*editor)->getError(), "Preset Name is Required");
        editor->closeModal (1);
    }

    // Renaming onto another user preset replaces that one with this one's settings
    // and leaves no second copy.
    TRQModalViewer::ModalSettings edit;
    edit.hasForm = true;
    edit.set (0, (int)TRQPresetModal::editForm).set (3, "u-1");
    editor->openModal (2, true, edit);
    auto* editForm = form (*editor);
    ASSERT_NE (editForm, nullptr);
    EXPECT_EQ (editForm->getTitle(), juce::String (juce::CharPointer_UTF8 ("Edit \xe2\x80\x9c"
                                                                           "Alpha\xe2\x80\x9d")));
    editForm->getNameEditor()->setText ("  Beta ");
    EXPECT_FALSE (editForm->submit());
    auto* replace = form (*editor);
    ASSERT_NE (replace, editForm);
    EXPECT_TRUE (replace->submit());
    EXPECT_EQ (PresetWindowSupport::userNames (folder), (std::vector<std::string>{"Beta"}));
    const auto document = PresetFolder::read (folder.user());
    EXPECT_NEAR (document["0002"]["sections"][0]["presets"][0]["values"]["1"].get<float>(), 1.0f, 0.01f);
    EXPECT_EQ (editor->getModalState(), 0);

    // Delete of a uuid that has gone meanwhile does nothing and closes.
    TRQModalViewer::ModalSettings gone;
    gone.hasForm = true;
    gone.set (0, (int)TRQPresetModal::deleteForm).set (3, "no-such-uuid");
    editor->openModal (2, true, gone);
    EXPECT_TRUE (form (*editor)->submit());
    EXPECT_EQ (PresetWindowSupport::userNames (folder), (std::vector<std::string>{"Beta"}));
    ASSERT_FALSE (controller->getPresets().empty());
}

TEST_F (PresetUI, RowMenuAndKeys)
{
    PresetWindowSupport::writeUser (folder, {{"Mine", 1.0f}});
    auto processor = ProcessorTestSupport::make();
    auto editor = makeEditor (*processor);
    auto& view = *editor->getPresetView();
    auto controller = processor->getPresetController();

    const auto factoryIndex = controller->indexOfUuid (TRQPresetController::factoryDefaultUuid).value;
    const auto factoryMenu = view.buildRowMenu (factoryIndex);
    ASSERT_EQ (factoryMenu.getNumItems(), 1);
    juce::PopupMenu::MenuItemIterator items (factoryMenu);
    ASSERT_TRUE (items.next());
    EXPECT_EQ (items.getItem().text, juce::String (juce::CharPointer_UTF8 ("Make \xe2\x80\x9c"
                                                                           "Default\xe2\x80\x9d default")));

    const auto userMenu = view.buildRowMenu (controller->indexOfUuid ("u-1").value);
    std::vector<juce::String> texts;
    for (juce::PopupMenu::MenuItemIterator it (userMenu); it.next();)
    {
        EXPECT_TRUE (it.getItem().isEnabled);
        texts.push_back (it.getItem().text);
    }
    const juce::String q = juce::String (juce::CharPointer_UTF8 ("\xe2\x80\x9c"
                                                                 "Mine\xe2\x80\x9d"));
    EXPECT_EQ (texts, (std::vector<juce::String>{"Make " + q + " default", "Edit " + q + " properties",
                                                 "Update " + q + " to current settings", "Delete " + q}));

    // Keys: no wrap, and the key passes on at the ends.
    controller->selectPreset (0, true, true);
    EXPECT_FALSE (view.keyPressed (juce::KeyPress (juce::KeyPress::upKey)));
    EXPECT_FALSE (view.keyPressed (juce::KeyPress (juce::KeyPress::leftKey)));
    EXPECT_TRUE (view.keyPressed (juce::KeyPress (juce::KeyPress::downKey)));
    EXPECT_EQ (controller->getCurrentPresetIndex(), 1u);
    const auto last = (std::uint32_t)controller->getPresets().size() - 1;
    controller->selectPreset (last, true, true);
    EXPECT_FALSE (view.keyPressed (juce::KeyPress (juce::KeyPress::rightKey)));
    EXPECT_EQ (controller->getCurrentPresetIndex(), last);

    editor->openModal (1, true, {});
    EXPECT_TRUE (view.keyPressed (juce::KeyPress (juce::KeyPress::escapeKey)));
    EXPECT_EQ (editor->getModalState(), 0);
}

// A user file that can't be written: each form, from the browser or the context menu,
// stays open with the problem, and the toolbar still shows the changed preset. The
// browser says so above the list for what it changes itself, and for a file it
// can't read.
TEST_F (PresetUI, AFailedWriteIsSaidAndKeepsTheForm)
{
    PresetWindowSupport::writeUser (folder, {{"Mine", 1.0f}, {"Other", 2.0f}});
    auto processor = ProcessorTestSupport::make();
    auto editor = makeEditor (*processor);
    auto controller = processor->getPresetController();
    controller->selectUuid ("u-1");
    processor->getAudioParameter (1).setValueNotifyingHost (0.9f);
    editor->tick();
    ASSERT_TRUE (controller->getIsModified());
    const auto label = editor->getToolbar()->getButton (TRQToolbar::Presets)->getLabelText (0);
    const auto text = folder.user().loadFileAsString();
    ::chmod (folder.user().getFullPathName().toRawUTF8(), 0444);
    const juce::String problem = "HvnUserPresets.json is Read-Only";

    const auto editing = [] (int kind)
    {
        TRQModalViewer::ModalSettings settings;
        settings.hasForm = true;
        settings.set (0, kind).set (3, "u-1");
        return settings;
    };
    using TRQMenuItemId::encode;
    const std::vector<std::pair<const char*, std::function<void()>>> openings{
        {"menu save", [&] { editor->menuItemChosen (encode (TRQMenuItemId::saveAsNewPreset, 0), {}); }},
        {"menu update", [&] { editor->menuItemChosen (encode (TRQMenuItemId::updatePreset, 0), {}); }},
        {"edit", [&] { editor->openModal (2, true, editing (TRQPresetModal::editForm)); }},
        {"delete", [&] { editor->openModal (2, true, editing (TRQPresetModal::deleteForm)); }}};
    for (const auto& [what, openForm] : openings)
    {
        openForm();
        auto* opened = form (*editor);
        ASSERT_NE (opened, nullptr) << what;
        if (auto* name = opened->getNameEditor())
            name->setText (name->getText() + " 2");
        EXPECT_FALSE (opened->submit()) << what;
        EXPECT_EQ (form (*editor), opened) << what;
        EXPECT_EQ (opened->getError(), problem) << what;
        EXPECT_TRUE (controller->getIsModified()) << what;
        EXPECT_EQ (editor->getToolbar()->getButton (TRQToolbar::Presets)->getLabelText (0), label) << what;
        editor->closeModal (5);
    }
    EXPECT_EQ (folder.user().loadFileAsString(), text);

    editor->openModal (1, true, {});
    auto& view = *editor->getPresetView();
    view.rowMenuChosen (controller->indexOfUuid ("u-2").value, TRQPresetView::makeDefaultItem);
    pump();
    EXPECT_EQ (view.getBody().getNotice(), problem);
    ::chmod (folder.user().getFullPathName().toRawUTF8(), 0644);

    folder.user().replaceWithText ("{ \"0002\": ");
    editor->closeModal (1);
    editor->openModal (1, true, {});
    EXPECT_EQ (view.getBody().getNotice(), "Can't Read User Presets: Error at Line 1 of HvnUserPresets.json");
    EXPECT_FALSE (controller->indexOfUuid ("u-1").present);
}

// The current row is in view after opening, however long the list.
TEST_F (PresetUI, CurrentRowInViewAtAnyLength)
{
    for (int count : {1, 12, 80})
    {
        std::vector<std::pair<std::string, float>> presets;
        for (int i = 0; i < count; ++i)
            presets.push_back ({"P" + std::to_string (i), 0.0f});
        PresetWindowSupport::writeUser (folder, presets);
        auto processor = ProcessorTestSupport::make();
        auto controller = processor->getPresetController();
        controller->selectUuid ("u-" + std::to_string (count));
        auto editor = makeEditor (*processor);
        editor->openModal (1, true, {});
        auto& view = *editor->getPresetView();
        auto* row = view.findRow (controller->getCurrentPresetIndex());
        ASSERT_NE (row, nullptr);
        ASSERT_TRUE (row->isVisible());
        const auto area = view.getBody().getLocalArea (row, row->getLocalBounds());
        const auto shown =
            juce::Rectangle<int> (0, view.getViewport().getViewPositionY(), view.getViewport().getViewWidth(),
                                  view.getViewport().getViewHeight());
        EXPECT_TRUE (shown.contains (area)) << count << " " << area.toString() << " in " << shown.toString();
    }
}
