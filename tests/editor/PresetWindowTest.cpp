#include "editor/PresetWindowSupport.h"

#include "core/TRQAudioProcessor.h"
#include "editor/TRQBrowser.h"
#include "editor/TRQControl.h"
#include "editor/TRQParameterGestures.h"
#include "editor/TRQPresetModal.h"
#include "editor/TRQPresetView.h"
#include "editor/TRQTaskButtons.h"
#include "editor/TRQToolbar.h"
#include "presets/TRQPresetController.h"
#include "state/TRQAudioParameter.h"
#include "state/TRQParameterManager.h"

#include <gtest/gtest.h>

using namespace EditorWindowSupport;
using namespace PresetWindowSupport;

namespace
{
float brightness (juce::Colour c)
{
    return (c.getFloatRed() + c.getFloatGreen() + c.getFloatBlue()) / 3.0f;
}

juce::Colour pixelAt (const juce::Image& shot, TRQAudioProcessorEditor& editor, juce::Point<float> canvas)
{
    const auto p = canvasToEditor (editor, canvas).roundToInt();
    return shot.getPixelAt (p.x, p.y);
}

float inputGain (TRQAudioProcessor& processor)
{
    return processor.getAudioParameter (1).getRealValue();
}

class PresetWindow : public WindowTest
{
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        if (IsSkipped())
            return;
        prefs->setInt ("AlwaysOpenAdvPane", 0);
        writeFactory (folder);
        TRQBrowser::setOpener (
            [this] (const juce::URL& url)
            {
                launched.add (url.toString (true));
                return true;
            });
    }
    void TearDown() override { TRQBrowser::setOpener ({}); }

    TRQPresetModal* form (TRQAudioProcessorEditor& editor)
    {
        return dynamic_cast<TRQPresetModal*> (editor.getModalViewer().getContent());
    }

    PresetFolder folder;
    juce::StringArray launched;
};
} // namespace

// The browser opens from the preset name, shows the current preset's row, loads a
// click, steps with the keys without wrapping, and Escape brings the panel back.
TEST_F (PresetWindow, BrowseAndLoad)
{
    for (int style : {0, 1})
    {
        prefs->setInt ("DarkMode", style);
        TRQAudioProcessor processor;
        auto opened = open (processor, prefs);
        auto& editor = *opened.editor;
        auto& toolbar = *editor.getToolbar();
        auto& view = *editor.getPresetView();
        EXPECT_EQ (toolbar.getPresetName(), "Default");

        click (editor, *toolbar.getButton (TRQToolbar::Presets));
        ASSERT_EQ (editor.getModalState(), 1);
        ASSERT_TRUE (view.isShowing());
        auto* current = view.findRow (0);
        ASSERT_NE (current, nullptr);
        EXPECT_TRUE (current->isShowing());
        EXPECT_TRUE (current->getIsCurrent());

        auto* bright = view.findRow (1);
        ASSERT_NE (bright, nullptr);
        click (editor, *bright);
        EXPECT_NEAR (inputGain (processor), 6.0f, 0.01f);
        EXPECT_EQ (toolbar.getPresetName(), "Bright");
        EXPECT_TRUE (view.isShowing()) << "the browser stays open after a load";
        pump (100);
        const auto shot = capture (editor);
        ASSERT_TRUE (shot.isValid());
        save (shot, style == 1 ? "presets-browser-dark" : "presets-browser-light");
        // The browser covers the faders; the loaded row wears the accent.
        const auto body = pixelAt (shot, editor, {300.0f, 300.0f});
        EXPECT_EQ (brightness (body) > 0.5f, style == 0);
        const auto row =
            pixelAt (shot, editor, centreOf (editor, *view.findRow (1)) + juce::Point<float> (120.0f, 0.0f));
        EXPECT_GT (row.getFloatRed(), row.getFloatGreen() + 0.2f);

        // Down goes to Dark; at the last preset the key isn't taken and nothing wraps.
        press (editor, juce::KeyPress::downKey, &view);
        EXPECT_NEAR (inputGain (processor), -6.0f, 0.01f);
        const auto last = (std::uint32_t)processor.getPresetController()->getPresets().size() - 1;
        processor.getPresetController()->selectPreset (last, true, true);
        pump (50);
        press (editor, juce::KeyPress::downKey, &view);
        EXPECT_EQ (processor.getPresetController()->getCurrentPresetIndex(), last);
        processor.getPresetController()->selectPreset (0, true, true);
        pump (50);
        press (editor, juce::KeyPress::upKey, &view);
        EXPECT_EQ (processor.getPresetController()->getCurrentPresetIndex(), 0u);

        // A heading hides its rows.
        auto& factoryHeader = *view.getBody().getHeaders()[0];
        click (editor,
               centreOf (editor, factoryHeader)
                   .withY (editor.getRoot().getLocalPoint (&factoryHeader, juce::Point<float> (0, 10)).y));
        EXPECT_FALSE (factoryHeader.isOpen());
        EXPECT_FALSE (view.findRow (1)->isVisible());

        press (editor, juce::KeyPress::escapeKey, &view);
        EXPECT_EQ (editor.getModalState(), 0);
        EXPECT_FALSE (view.isVisible());
    }
}

// Stepping wraps at both ends; the preset name shows the modified variant after a
// change.
TEST_F (PresetWindow, PrevAndNextWrap)
{
    TRQAudioProcessor processor;
    auto opened = open (processor, prefs);
    auto& editor = *opened.editor;
    auto& toolbar = *editor.getToolbar();
    const auto count = (std::uint32_t)processor.getPresetController()->getPresets().size();
    click (editor, *toolbar.getButton (TRQToolbar::PrevPreset));
    EXPECT_EQ (processor.getPresetController()->getCurrentPresetIndex(), count - 1);
    EXPECT_EQ (toolbar.getPresetName(), "Sparse");
    click (editor, *toolbar.getButton (TRQToolbar::NextPreset));
    EXPECT_EQ (processor.getPresetController()->getCurrentPresetIndex(), 0u);

    editor.getGestures().setRealInGesture (1, 3.0f);
    pump (60);
    EXPECT_TRUE (toolbar.isModified());
    EXPECT_TRUE (toolbar.getButton (TRQToolbar::Presets)->getLabelText (0).endsWith ("*"));
}

// Save with a blank name shows the error and keeps the form; a good name saves,
// closes and names the toolbar. Escape from a form opened in the browser goes back
// to the browser.
TEST_F (PresetWindow, SaveNewPreset)
{
    TRQAudioProcessor processor;
    auto opened = open (processor, prefs);
    auto& editor = *opened.editor;
    click (editor, *editor.getToolbar()->getButton (TRQToolbar::Presets));
    click (editor, editor.getPresetView()->getSaveButton());
    ASSERT_EQ (editor.getModalState(), 2);
    auto* save1 = form (editor);
    ASSERT_NE (save1, nullptr);
    EXPECT_EQ (save1->getTitle(), "Save New Preset");
    auto& name = save1->getNameEditor()->getField();
    EXPECT_EQ (name.getText(), "New Preset");

    press (editor, juce::KeyPress::escapeKey, &name);
    EXPECT_EQ (editor.getModalState(), 1) << "back to the browser";
    click (editor, editor.getPresetView()->getSaveButton());
    auto* saveForm = form (editor);
    ASSERT_NE (saveForm, nullptr);
    auto& field = saveForm->getNameEditor()->getField();
    // Tab walks the form's fields and wraps.
    EXPECT_EQ (key (editor, juce::KeyPress (juce::KeyPress::tabKey), &field),
               &saveForm->getNotesEditor()->getField());
    EXPECT_EQ (key (editor, juce::KeyPress (juce::KeyPress::tabKey), &saveForm->getNotesEditor()->getField()),
               saveForm->getMakeDefaultToggle());
    type (editor, field, "   ");
    press (editor, juce::KeyPress::returnKey, &field);
    EXPECT_EQ (editor.getModalState(), 2);
    EXPECT_EQ (saveForm->getError(), "Preset Name is Required");
    pump (100);
    const auto shot = capture (editor);
    save (shot, "presets-save-form-error");
    // The form covers the panel in the deep accent, meters off.
    EXPECT_GT (pixelAt (shot, editor, {20.0f, 200.0f}).getFloatRed(), 0.45f);
    EXPECT_TRUE (userNames (folder).empty());

    type (editor, field, "My Crunch");
    click (editor, saveForm->getSubmitButton());
    EXPECT_EQ (editor.getModalState(), 1);
    EXPECT_EQ (userNames (folder), (std::vector<std::string>{"My Crunch"}));
    EXPECT_EQ (editor.getToolbar()->getPresetName(), "My Crunch");
    pump (50);
    EXPECT_NE (editor.getPresetView()->findRow (0), nullptr);
    EXPECT_EQ (processor.getPresetController()->getPresets()[0].name, "My Crunch");
}

// A second save under the same name asks to replace; replacing closes both forms.
TEST_F (PresetWindow, SavingATakenNameReplaces)
{
    writeUser (folder, {{"Mine", 1.0f}});
    TRQAudioProcessor processor;
    auto opened = open (processor, prefs);
    auto& editor = *opened.editor;
    editor.getGestures().setRealInGesture (1, 4.0f);
    editor.openModal (2, true, {});
    auto* saveForm = form (editor);
    ASSERT_NE (saveForm, nullptr);
    auto& field = saveForm->getNameEditor()->getField();
    type (editor, field, "Mine");
    press (editor, juce::KeyPress::returnKey, &field);
    auto* replace = form (editor);
    ASSERT_NE (replace, nullptr);
    EXPECT_TRUE (replace->getTitle().startsWith ("Replace "));
    pump (50);
    save (capture (editor), "presets-replace-form");
    click (editor, replace->getSubmitButton());
    EXPECT_EQ (editor.getModalState(), 0);
    EXPECT_EQ (editor.getModalHistorySize(), 0u);
    EXPECT_EQ (userNames (folder), (std::vector<std::string>{"Mine"}));
    const auto document = PresetFolder::read (folder.user());
    EXPECT_NEAR (document["0002"]["sections"][0]["presets"][0]["values"]["1"].get<float>(), 4.0f, 0.01f);
}

// The row menu edits, updates and deletes user presets; a drag reorders them.
TEST_F (PresetWindow, EditUpdateReorderDelete)
{
    writeUser (folder, {{"One", 1.0f}, {"Two", 2.0f}, {"Three", 3.0f}});
    TRQAudioProcessor processor;
    auto opened = open (processor, prefs);
    auto& editor = *opened.editor;
    auto& view = *editor.getPresetView();
    auto controller = processor.getPresetController();
    click (editor, *editor.getToolbar()->getButton (TRQToolbar::Presets));
    ASSERT_TRUE (view.isShowing());
    // Open the user section, which holds no current preset yet.
    auto& userHeader = *view.getBody().getHeaders()[0];
    if (!userHeader.isOpen())
        click (editor, editor.getRoot().getLocalPoint (&userHeader, juce::Point<float> (100, 10)));
    ASSERT_TRUE (userHeader.isOpen());

    // A right-click brings up the real menu.
    auto* one = view.findRow (0);
    click (editor, centreOf (editor, *one), juce::ModifierKeys::rightButtonModifier);
    EXPECT_TRUE (juce::PopupMenu::dismissAllActiveMenus());
    pump (50);

    // Edit: rename "One" to "Uno".
    view.rowMenuChosen (0, TRQPresetView::editItem);
    auto* edit = form (editor);
    ASSERT_NE (edit, nullptr);
    auto& name = edit->getNameEditor()->getField();
    EXPECT_EQ (name.getText(), "One");
    type (editor, name, "Uno");
    press (editor, juce::KeyPress::returnKey, &name);
    EXPECT_EQ (editor.getModalState(), 1);
    EXPECT_EQ (userNames (folder), (std::vector<std::string>{"Uno", "Two", "Three"}));

    // Update: "Two" takes the panel's settings.
    editor.getGestures().setRealInGesture (1, -9.0f);
    pump (50);
    view.rowMenuChosen (1, TRQPresetView::updateItem);
    auto* update = form (editor);
    ASSERT_NE (update, nullptr);
    EXPECT_TRUE (update->getUrlField()->getText().contains ("="));
    click (editor, update->getSubmitButton());
    auto document = PresetFolder::read (folder.user());
    EXPECT_NEAR (document["0002"]["sections"][0]["presets"][1]["values"]["1"].get<float>(), -9.0f, 0.01f);

    // Drag "Uno" below "Three".
    pump (50);
    auto* first = view.findRow (0);
    auto* third = view.findRow (2);
    ASSERT_TRUE (first != nullptr && third != nullptr);
    const auto from = centreOf (editor, *first);
    const auto to = centreOf (editor, *third) + juce::Point<float> (0.0f, 9.0f);
    mouseDown (editor, from);
    for (int i = 1; i <= 6; ++i)
        mouseDrag (editor, from + (to - from) * ((float)i / 6.0f));
    mouseUp (editor, to);
    pump (60);
    EXPECT_EQ (userNames (folder), (std::vector<std::string>{"Two", "Three", "Uno"}));

    // Delete "Three".
    const auto three = controller->indexOfUuid ("u-3");
    ASSERT_TRUE (three.present);
    view.rowMenuChosen (three.value, TRQPresetView::deleteItem);
    auto* remove = form (editor);
    ASSERT_NE (remove, nullptr);
    EXPECT_EQ (remove->getSubmitButton().getLabelText (0), "Delete");
    click (editor, remove->getSubmitButton());
    EXPECT_EQ (userNames (folder), (std::vector<std::string>{"Two", "Uno"}));
    EXPECT_EQ (editor.getModalState(), 1);
}

// "Make default" in the row menu: the next instance starts on that preset.
TEST_F (PresetWindow, MadeDefaultStartsTheNextInstance)
{
    {
        TRQAudioProcessor processor;
        auto opened = open (processor, prefs);
        auto& editor = *opened.editor;
        click (editor, *editor.getToolbar()->getButton (TRQToolbar::Presets));
        editor.getPresetView()->rowMenuChosen (2, TRQPresetView::makeDefaultItem);
        pump (50);
        EXPECT_EQ (processor.getPresetController()->getDefaultPresetIndex(), 2u);
        EXPECT_TRUE (editor.getPresetView()->findRow (2)->getIsDefault());
    }
    TRQAudioProcessor next;
    EXPECT_NEAR (inputGain (next), -6.0f, 0.01f);
    EXPECT_EQ (
        next.getPresetController()->getPresets()[next.getPresetController()->getCurrentPresetIndex()].name,
        "Dark");
}

// A/B by the toolbar, the copy's tooltip following the live slot; undo and redo of a
// drag on a fader; the task buttons.
TEST_F (PresetWindow, ABUndoRedoAndTasks)
{
    TRQAudioProcessor processor;
    auto opened = open (processor, prefs);
    auto& editor = *opened.editor;
    auto& toolbar = *editor.getToolbar();
    auto* undo = toolbar.getButton (TRQToolbar::Undo);
    EXPECT_FALSE (undo->isEnabled()) << "nothing to undo yet";

    // Drag the input fader up.
    auto& input = *editor.getControl (1);
    const auto& row = input.getRow();
    const juce::Point<float> thumb (row.frame.x + row.innerFrame.x + row.innerFrame.width * 0.5f,
                                    row.frame.y + row.innerFrame.y +
                                        (1.0f - input.getNormalisedValue()) * row.innerFrame.height);
    const float before = inputGain (processor);
    mouseDown (editor, thumb);
    mouseDrag (editor, thumb + juce::Point<float> (0.0f, -20.0f));
    mouseDrag (editor, thumb + juce::Point<float> (0.0f, -40.0f));
    mouseUp (editor, thumb + juce::Point<float> (0.0f, -40.0f));
    pump (50);
    const float dragged = inputGain (processor);
    EXPECT_GT (dragged, before + 1.0f);
    EXPECT_TRUE (undo->isEnabled());
    click (editor, *undo);
    EXPECT_NEAR (inputGain (processor), before, 0.01f);
    EXPECT_TRUE (toolbar.getButton (TRQToolbar::Redo)->isEnabled());
    click (editor, *toolbar.getButton (TRQToolbar::Redo));
    EXPECT_NEAR (inputGain (processor), dragged, 0.01f);

    // A holds the dragged value; B gets its own, and the toolbar follows.
    EXPECT_EQ (toolbar.getButton (TRQToolbar::CopyAB)->getTooltip(), "Copy A to B");
    click (editor, *toolbar.getButton (TRQToolbar::SelectB));
    EXPECT_EQ (toolbar.getActiveSlot(), 1);
    EXPECT_EQ (toolbar.getButton (TRQToolbar::CopyAB)->getTooltip(), "Copy B to A");
    editor.getGestures().setRealInGesture (1, -12.0f);
    click (editor, *toolbar.getButton (TRQToolbar::SelectA));
    EXPECT_NEAR (inputGain (processor), dragged, 0.01f);
    click (editor, *toolbar.getButton (TRQToolbar::SelectA));
    EXPECT_EQ (toolbar.getActiveSlot(), 0) << "the live slot stays";
    click (editor, *toolbar.getButton (TRQToolbar::SelectB));
    EXPECT_NEAR (inputGain (processor), -12.0f, 0.01f);
    // Copy B to A: both hold -12, the shown slot flips, nothing sounds different.
    click (editor, *toolbar.getButton (TRQToolbar::CopyAB));
    EXPECT_EQ (toolbar.getActiveSlot(), 0);
    click (editor, *toolbar.getButton (TRQToolbar::SelectB));
    EXPECT_NEAR (inputGain (processor), -12.0f, 0.01f);

    // Task buttons: the advanced pane, and the settings URL to the browser.
    auto& tasks = *editor.getTaskButtons();
    click (editor, *tasks.getButton (TRQTaskButtons::AdvancedControls));
    EXPECT_TRUE (editor.isAdvancedPaneOpen());
    EXPECT_EQ (editor.getWidth(), 793);
    click (editor, *tasks.getButton (TRQTaskButtons::AdvancedControls));
    EXPECT_FALSE (editor.isAdvancedPaneOpen());
    click (editor, *tasks.getButton (TRQTaskButtons::GetCurrentSettings));
    ASSERT_EQ (launched.size(), 1);
    EXPECT_TRUE (launched[0].contains ("/zolk-comp/")) << launched[0];
}

// Names of 500 characters, in Korean and in Arabic, and a user file that another
// instance rewrote meanwhile: nothing crashes and no preset is lost.
TEST_F (PresetWindow, BadInputKeepsEveryPreset)
{
    writeUser (folder, {{"Kept", 1.0f}});
    TRQAudioProcessor processor;
    auto opened = open (processor, prefs);
    auto& editor = *opened.editor;
    const juce::String longName = juce::String::repeatedString ("Long", 125);
    const juce::String korean = juce::String (
        juce::CharPointer_UTF8 ("\xeb\x94\xb0\xeb\x9c\xbb\xed\x95\x9c \xec\x86\x8c\xeb\xa6\xac"));
    const juce::String arabic =
        juce::String (juce::CharPointer_UTF8 ("\xd8\xb5\xd9\x88\xd8\xaa \xd8\xaf\xd8\xa7\xd9\x81\xd8\xa6"));
    for (const auto& name : {longName, korean, arabic})
    {
        editor.openModal (2, true, {});
        auto* saveForm = form (editor);
        ASSERT_NE (saveForm, nullptr);
        auto& field = saveForm->getNameEditor()->getField();
        if (name.length() > 50)
        {
            // Pasted, as nobody types 500 characters.
            juce::SystemClipboard::copyTextToClipboard (name);
            key (editor, juce::KeyPress (juce::KeyPress::endKey), &field);
            field.selectAll();
            key (editor, juce::KeyPress ('v', juce::ModifierKeys::commandModifier, 0), &field);
        }
        else
            type (editor, field, name);
        EXPECT_EQ (field.getText(), name);
        if (name == korean)
        {
            pump (50);
            save (capture (editor), "presets-save-form-korean");
        }
        press (editor, juce::KeyPress::returnKey, &field);
        EXPECT_EQ (editor.getModalState(), 0);
    }
    const auto names = userNames (folder);
    ASSERT_EQ (names.size(), 4u);
    EXPECT_EQ (juce::String (juce::CharPointer_UTF8 (names[1].c_str())), longName);
    EXPECT_EQ (juce::String (juce::CharPointer_UTF8 (names[2].c_str())), korean);
    EXPECT_EQ (juce::String (juce::CharPointer_UTF8 (names[3].c_str())), arabic);
    EXPECT_EQ (editor.getToolbar()->getPresetName(), arabic);

    // Another instance adds a preset; our browser shows it on opening, and our next
    // save keeps it.
    auto document = PresetFolder::read (folder.user());
    document["0002"]["sections"][0]["presets"].push_back (PresetFolder::fullPreset ("Theirs", "t-1"));
    folder.user().replaceWithText (juce::String (document.dump (4)));
    click (editor, *editor.getToolbar()->getButton (TRQToolbar::Presets));
    pump (50);
    ASSERT_TRUE (processor.getPresetController()->indexOfUuid ("t-1").present);
    EXPECT_NE (editor.getPresetView()->findRow (processor.getPresetController()->indexOfUuid ("t-1").value),
               nullptr);
    save (capture (editor), "presets-browser-long-names");
    editor.openModal (2, true, {});
    auto& field = form (editor)->getNameEditor()->getField();
    type (editor, field, "Ours");
    press (editor, juce::KeyPress::returnKey, &field);
    EXPECT_EQ (userNames (folder).size(), 6u);

    // A user file that is no longer JSON: saving keeps it untouched rather than
    // writing over it, and the form stays open saying why. The browser says why the
    // user presets are gone.
    folder.user().replaceWithText ("{ not json");
    editor.openModal (2, true, {});
    auto& broken = form (editor)->getNameEditor()->getField();
    type (editor, broken, "Lost?");
    press (editor, juce::KeyPress::returnKey, &broken);
    EXPECT_EQ (folder.user().loadFileAsString(), "{ not json");
    ASSERT_NE (form (editor), nullptr);
    EXPECT_EQ (form (editor)->getError(), "Error at Line 1 of HvnUserPresets.json");
    pump (50);
    save (capture (editor), "presets-save-form-unreadable-file");
    editor.closeModal (1);
    pump (50);
    ASSERT_EQ (editor.getModalState(), 1);
    EXPECT_EQ (editor.getPresetView()->getBody().getNotice(),
               "Can't Read User Presets: Error at Line 1 of HvnUserPresets.json");
    save (capture (editor), "presets-browser-unreadable-file");
}
