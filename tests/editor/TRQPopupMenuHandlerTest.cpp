#include "editor/TRQPopupMenuHandler.h"
#include "core/ProcessorTestSupport.h"
#include "editor/TRQAudioProcessorEditor.h"
#include "editor/TRQControl.h"
#include "editor/TRQDrawableCustomComponent.h"
#include "editor/TRQHUDControl.h"
#include "editor/TRQMenuItemId.h"
#include "editor/TRQPresetModal.h"
#include "presets/TRQPresetController.h"
#include "state/ParameterCatalogue.h"
#include "state/ParameterRange.h"
#include "state/TRQAudioParameter.h"
#include "state/TRQUndoManager.h"
#include "support/PreferencesFile.h"
#include "support/PresetFolder.h"

#include <gtest/gtest.h>

// The context menu off screen: the tree as it would be shown, and what each item does,
// with a clipboard and a browser of the test's own.
using namespace TRQMenuItemId;

namespace
{

const juce::String open = juce::CharPointer_UTF8 ("\xe2\x80\x9c");
const juce::String close = juce::CharPointer_UTF8 ("\xe2\x80\x9d");

juce::String q (const char* name)
{
    return open + name + close;
}

struct Row
{
    juce::String text;
    int id = 0;
    bool enabled = false;
    bool ticked = false;
    bool separator = false;
    const juce::PopupMenu* subMenu = nullptr;
    juce::PopupMenu::CustomComponent* custom = nullptr;
};

std::vector<Row> rowsOf (const juce::PopupMenu& menu)
{
    std::vector<Row> rows;
    for (juce::PopupMenu::MenuItemIterator it (menu); it.next();)
    {
        const auto& item = it.getItem();
        rows.push_back ({item.text, item.itemID, item.isEnabled, item.isTicked, item.isSeparator,
                         item.subMenu.get(), item.customComponent.get()});
    }
    return rows;
}

const Row& find (const std::vector<Row>& rows, const juce::String& text)
{
    for (const auto& row : rows)
        if (row.text == text)
            return row;
    static const Row none{"<missing>"};
    ADD_FAILURE() << "no item " << text;
    return none;
}

// The rows of a submenu, by the texts leading to it. Rows keep no pointer into the
// menu that the caller may use once the menu is gone, apart from custom components,
// for which the caller holds the menu.
std::vector<Row> submenuRows (const juce::PopupMenu& menu, std::initializer_list<const char*> path)
{
    auto rows = rowsOf (menu);
    for (const char* name : path)
    {
        const auto* sub = find (rows, name).subMenu;
        if (sub == nullptr)
            return {};
        rows = rowsOf (*sub);
    }
    return rows;
}

class PopupMenuHandler : public ::testing::Test
{
protected:
    void SetUp() override
    {
        PresetFolder::write (
            folder.factory(),
            {PresetFolder::section ("Factory", {PresetFolder::fullPreset ("Default", defaultUuid),
                                                PresetFolder::fullPreset ("Bright", "f-1", {{2, 80.0f}})})});
        PresetFolder::write (
            folder.user(),
            {PresetFolder::section ("User", {PresetFolder::fullPreset ("Mine", "u-1", {{2, 30.0f}})})});
        processor = ProcessorTestSupport::make();
        processor->getPluginState().setAdvancedPaneIsOpen (false);
        prefs = std::make_shared<PreferencesFile>();
    }

    TRQAudioProcessorEditor& makeEditor()
    {
        editor = std::make_unique<TRQAudioProcessorEditor> (*processor);
        editor->setClipboard (
            {[this] { return clipboardText; }, [this] (const juce::String& text) { clipboardText = text; }});
        editor->setUrlLauncher (
            [this] (const juce::String& url)
            {
                launched.add (url);
                return true;
            });
        return *editor;
    }

    juce::Point<float> editorPointOfCanvas (juce::Point<float> canvas)
    {
        return editor->getLocalPoint (&editor->getRoot(), canvas);
    }

    TRQPopupMenuHandler::MenuContext contextOver (int parameter)
    {
        auto* control = editor->getControl (parameter);
        return editor->contextAt (
            editor->getLocalPoint (control, control->getLocalBounds().getCentre().toFloat()));
    }

    static constexpr const char* defaultUuid = TRQPresetController::factoryDefaultUuid;
    PresetFolder folder;
    std::unique_ptr<TRQAudioProcessor> processor;
    std::shared_ptr<PreferencesFile> prefs;
    std::unique_ptr<TRQAudioProcessorEditor> editor;
    juce::String clipboardText;
    juce::StringArray launched;
};
} // namespace

TEST (TRQMenuItemId, CantorPairsBothWays)
{
    EXPECT_EQ (decode (231).action, 21);
    EXPECT_EQ (decode (231).value, 0);
    EXPECT_EQ (decode (254).action, 21);
    EXPECT_EQ (decode (254).value, 1);
    EXPECT_EQ (decode (190).action, 19);
    EXPECT_EQ (decode (190).value, 0);
    EXPECT_EQ (decode (211).action, 19);
    EXPECT_EQ (decode (211).value, 1);

    // With value 0 an id is the triangular number of its action.
    const int table[] = {1,  3,  6,   10,  15,  21,  28,  36,  45,  55, 66,
                         78, 91, 105, 120, 136, 153, 171, 190, 210, 231};
    for (int action = 1; action <= 21; ++action)
        EXPECT_EQ (encode (action, 0), table[action - 1]);

    for (int action = 0; action < 40; ++action)
        for (int value = 0; value < 300; value += 7)
        {
            const auto d = decode (encode (action, value));
            ASSERT_EQ (d.action, action);
            ASSERT_EQ (d.value, value);
        }
    EXPECT_EQ (decode (0).action, 0);
    EXPECT_EQ (decode (-5).action, 0);
    EXPECT_FALSE (isKnownAction (0));
    EXPECT_FALSE (isKnownAction (22));
}

TEST_F (PopupMenuHandler, EmptyPanelGivesSettingsPreferencesAndVersion)
{
    auto& ed = makeEditor();
    const auto context = ed.contextAt (editorPointOfCanvas ({200.0f, 10.0f}));
    EXPECT_FALSE (context.hasParameter);

    const auto top = rowsOf (ed.buildMenu (context));
    std::vector<juce::String> texts;
    for (const auto& row : top)
        texts.push_back (row.separator ? "-" : row.text);
    const std::vector<juce::String> expected{"Copy All Settings as URL to Clipboard",
                                             "Paste All Settings From Clipboard",
                                             "Reset All Settings to Factory Default",
                                             "-",
                                             "Reset All Settings to " + q ("Default") + " Preset",
                                             "Save Settings as New Preset",
                                             "Update " + q ("Default") + " Preset With Settings",
                                             "-",
                                             "Preferences",
                                             "-",
                                             "Zolk Compressor 3.5.0 (" + TRQProductLinks::buildStamp() + ")"};
    EXPECT_EQ (texts, expected);
    EXPECT_EQ (top.back().id, 45);
    EXPECT_TRUE (top.back().enabled);
    EXPECT_FALSE (find (top, "Paste All Settings From Clipboard").enabled);
    EXPECT_TRUE (find (top, expected[4]).enabled);
    // The factory default is a factory preset: nothing to update.
    EXPECT_FALSE (find (top, expected[6]).enabled);

    std::vector<juce::String> prefTexts;
    for (const auto& row : submenuRows (ed.buildMenu (context), {"Preferences"}))
        prefTexts.push_back (row.text);
    const std::vector<juce::String> expectedPrefs{
        "Language",        "Always Open Advanced Pane", "Enable Dark Mode",
        "Enable Metering", "Enable Scroll Input",       "Require Double-Click for Keyboard Focus",
        "Window Size"};
    EXPECT_EQ (prefTexts, expectedPrefs);
}

TEST_F (PopupMenuHandler, ParameterSectionForControlsAndTheHUD)
{
    auto& ed = makeEditor();
    auto context = contextOver (1);
    ASSERT_TRUE (context.hasParameter);
    EXPECT_EQ (context.parameterIndex, 1);
    auto top = rowsOf (ed.buildMenu (context));
    EXPECT_EQ (top[0].text, "Read About " + q ("Input Gain"));
    EXPECT_EQ (top[0].id, 36);
    EXPECT_EQ (top[1].text, "Reset " + q ("Input Gain") + " to Factory Default Value");
    EXPECT_TRUE (top[1].enabled);
    EXPECT_EQ (top[2].text, "Lock " + q ("Input Gain") + " When Switching Presets");
    EXPECT_FALSE (top[2].ticked);
    EXPECT_TRUE (top[3].separator);

    // Power has no lock.
    top = rowsOf (ed.buildMenu (contextOver (0)));
    EXPECT_EQ (top[1].text, "Reset " + q ("Master On/Off") + " to Factory Default Value");
    EXPECT_TRUE (top[2].separator);

    // The noise switch over the centre pane stands for its parameter.
    context = ed.contextAt (editorPointOfCanvas ({420.0f, 140.0f}));
    EXPECT_TRUE (context.hasParameter);
    EXPECT_EQ (context.parameterIndex, TRQHUDControl::parameterIndex);

    // With power off the others are disabled: no reset for them.
    processor->getAudioParameter (0).setValueNotifyingHost (0.0f);
    ed.tick();
    top = rowsOf (ed.buildMenu (contextOver (1)));
    EXPECT_FALSE (top[1].enabled);
    EXPECT_TRUE (top[0].enabled);
}

TEST_F (PopupMenuHandler, LanguagesInMenuOrderWithTheirOwnNames)
{
    prefs->setString ("Language", "Korean");
    auto& ed = makeEditor();
    const auto menu = ed.buildMenu ({});
    const auto languages = submenuRows (menu, {"Preferences", "Language"});
    const int order[] = {0, 5, 3, 4, 6, 1, 2, 7, 8, 9};
    ASSERT_EQ (languages.size(), 10u);
    const auto ink = ed.getLookAndFeel().findColour (juce::PopupMenu::textColourId);
    for (size_t i = 0; i < languages.size(); ++i)
    {
        EXPECT_EQ (languages[i].id, encode (19, order[i]));
        EXPECT_EQ (languages[i].ticked, order[i] == 1);
        auto* custom = dynamic_cast<TRQDrawableCustomComponent*> (languages[i].custom);
        ASSERT_NE (custom, nullptr);
        ASSERT_FALSE (custom->getShapes().isEmpty());
        bool allInk = true;
        for (const auto& element : custom->getShapes().elements)
            allInk = allInk && element.fill.isColour() && element.fill.colour == ink;
        // Emoji keep their colours, every other name is in the menu's ink.
        EXPECT_EQ (allInk, order[i] != 9) << order[i];
    }

    // A language the menu doesn't offer ticks nothing.
    prefs->setString ("Language", "Asemic");
    auto& other = makeEditor();
    for (const auto& row : submenuRows (other.buildMenu ({}), {"Preferences", "Language"}))
        EXPECT_FALSE (row.ticked);
}

TEST_F (PopupMenuHandler, WindowSizesAndACustomScale)
{
    prefs->setInt ("UIScale", 110);
    auto& ed = makeEditor();
    auto sizes = submenuRows (ed.buildMenu ({}), {"Preferences", "Window Size"});
    ASSERT_EQ (sizes.size(), 7u);
    const char* labels[] = {"Small (80%)", "Standard (100%)", "Large (120%)", "Extra Large (140%)",
                            "XXL (200%)"};
    for (int i = 0; i < 5; ++i)
    {
        EXPECT_EQ (sizes[(size_t)i].text, labels[i]);
        EXPECT_EQ (sizes[(size_t)i].id, encode (14 + i, 0));
        EXPECT_FALSE (sizes[(size_t)i].ticked);
    }
    EXPECT_TRUE (sizes[5].separator);
    EXPECT_EQ (sizes[6].text, "Custom (110%)");
    EXPECT_TRUE (sizes[6].ticked);
    EXPECT_FALSE (sizes[6].enabled);
    // Choosing it, were it possible, does nothing.
    ed.menuItemChosen (sizes[6].id, {});
    EXPECT_EQ (prefs->getInt ("UIScale", 0), 110);

    ed.menuItemChosen (encode (sizeLarge, 0), {});
    EXPECT_EQ (prefs->getInt ("UIScale", 0), 120);
    EXPECT_EQ (ed.getWidth(), (int)std::floor (1.2f * 457.0f));
    sizes = submenuRows (ed.buildMenu ({}), {"Preferences", "Window Size"});
    ASSERT_EQ (sizes.size(), 5u);
    EXPECT_TRUE (sizes[2].ticked);
}

TEST_F (PopupMenuHandler, PreferenceTogglesArePersistedAndApplied)
{
    auto& ed = makeEditor();
    auto prefRows = submenuRows (ed.buildMenu ({}), {"Preferences"});
    EXPECT_EQ (find (prefRows, "Enable Dark Mode").id, 254);
    EXPECT_FALSE (find (prefRows, "Enable Dark Mode").ticked);
    EXPECT_TRUE (find (prefRows, "Enable Metering").ticked);
    EXPECT_TRUE (find (prefRows, "Enable Scroll Input").ticked);

    for (const char* item : {"Enable Dark Mode", "Always Open Advanced Pane", "Enable Metering",
                             "Enable Scroll Input", "Require Double-Click for Keyboard Focus"})
        ed.menuItemChosen (find (prefRows, item).id, {});
    EXPECT_EQ (prefs->getInt ("DarkMode", -1), 1);
    EXPECT_EQ (prefs->getInt ("AlwaysOpenAdvPane", -1), 1);
    EXPECT_EQ (prefs->getInt ("Metering", -1), 0);
    EXPECT_EQ (prefs->getInt ("Scrolling", -1), 0);
    EXPECT_EQ (prefs->getInt ("DoubleClickKeyEntry", -1), 1);
    EXPECT_FALSE (ed.getWantsKeyboardFocus());
    EXPECT_FALSE (ed.getControl (1)->getWantsKeyboardFocus());

    prefRows = submenuRows (ed.buildMenu ({}), {"Preferences"});
    EXPECT_EQ (find (prefRows, "Enable Dark Mode").id, 231);
    for (const char* item :
         {"Enable Dark Mode", "Always Open Advanced Pane", "Require Double-Click for Keyboard Focus"})
        EXPECT_TRUE (find (prefRows, item).ticked) << item;
    EXPECT_FALSE (find (prefRows, "Enable Metering").ticked);

    ed.menuItemChosen (231, {});
    EXPECT_EQ (prefs->getInt ("DarkMode", -1), 0);
    ed.menuItemChosen (encode (darkMode, 2), {}); // no system mode here
    EXPECT_EQ (prefs->getInt ("DarkMode", -1), 0);
    ed.menuItemChosen (encode (19, 6), {});
    EXPECT_EQ (prefs->getString ("Language", ""), "Arabic");
    ed.menuItemChosen (encode (19, 10), {}); // not on the menu
    EXPECT_EQ (prefs->getString ("Language", ""), "Arabic");
    ed.menuItemChosen (encode (22, 0), {});
    ed.menuItemChosen (encode (7, 0), {}); // a parameter item without a parameter
}

TEST_F (PopupMenuHandler, LocksFlipAndFactoryResetClearsThem)
{
    auto& ed = makeEditor();
    const auto overGain = contextOver (5);
    ed.menuItemChosen (encode (lockParameter, 0), overGain);
    EXPECT_TRUE (processor->getPluginState().getLockStates()[5]);
    EXPECT_TRUE (ed.getControl (5)->isLocked());
    EXPECT_TRUE (rowsOf (ed.buildMenu (overGain))[2].ticked);

    auto& gain = processor->getAudioParameter (5);
    auto& input = processor->getAudioParameter (1);
    gain.setValueNotifyingHost (0.9f);
    input.setValueNotifyingHost (0.9f);
    ed.menuItemChosen (encode (resetAllToFactory, 0), {});
    EXPECT_FLOAT_EQ (gain.getRealValue(), ParameterCatalogue::row (5).defaultValue);
    EXPECT_FLOAT_EQ (input.getRealValue(), ParameterCatalogue::row (1).defaultValue);
    EXPECT_FALSE (ed.getControl (5)->isLocked());
    for (bool locked : processor->getPluginState().getLockStates())
        EXPECT_FALSE (locked);

    // One step back brings every value back.
    processor->getUndoManager().undo();
    EXPECT_NEAR (gain.getValue(), 0.9f, 1e-4f);
    EXPECT_NEAR (input.getValue(), 0.9f, 1e-4f);
}

TEST_F (PopupMenuHandler, ResetOneParameterAndReadAbout)
{
    auto& ed = makeEditor();
    auto& input = processor->getAudioParameter (1);
    input.setValueNotifyingHost (0.9f);
    const auto overInput = contextOver (1);
    ed.menuItemChosen (encode (resetParameter, 0), overInput);
    EXPECT_FLOAT_EQ (input.getRealValue(), ParameterCatalogue::row (1).defaultValue);

    ed.menuItemChosen (encode (readAbout, 0), overInput);
    ed.menuItemChosen (encode (versionLine, 0), {});
    ASSERT_EQ (launched.size(), 2);
    EXPECT_TRUE (launched[0].endsWith ("#InputGain"));
    EXPECT_EQ (launched[1], TRQProductLinks::productPageUrl());
}

TEST_F (PopupMenuHandler, CopyAndPasteThroughTheClipboard)
{
    auto& ed = makeEditor();
    auto& amount = processor->getAudioParameter (2);
    amount.setValueNotifyingHost (toNormalised (2, 60.0f));
    ed.menuItemChosen (encode (copySettings, 0), {});
    EXPECT_TRUE (clipboardText.endsWith ("/zolk-comp/3.5.0?cm=60")) << clipboardText;
    EXPECT_TRUE (find (rowsOf (ed.buildMenu ({})), "Paste All Settings From Clipboard").enabled);

    amount.setValueNotifyingHost (toNormalised (2, 10.0f));
    ed.menuItemChosen (encode (pasteSettings, 0), {});
    EXPECT_FLOAT_EQ (amount.getRealValue(), 60.0f);

    // Foreign text and an empty clipboard leave every value where it is.
    for (const char* text : {"", "hello ?cm=10", "https://example.com/zolk-comp/3.5.0?cm=10", "\xff\xfe"})
    {
        clipboardText = juce::String::fromUTF8 (text);
        EXPECT_FALSE (find (rowsOf (ed.buildMenu ({})), "Paste All Settings From Clipboard").enabled) << text;
        ed.menuItemChosen (encode (pasteSettings, 0), {});
        EXPECT_FLOAT_EQ (amount.getRealValue(), 60.0f) << text;
    }
}

TEST_F (PopupMenuHandler, PresetEntriesFollowTheSelection)
{
    auto& ed = makeEditor();
    auto controller = processor->getPresetController();
    ASSERT_TRUE (controller->selectUuid ("u-1"));
    auto top = rowsOf (ed.buildMenu ({}));
    EXPECT_TRUE (find (top, "Update " + q ("Mine") + " Preset With Settings").enabled);

    controller->selectUuid ("f-1");
    top = rowsOf (ed.buildMenu ({}));
    EXPECT_FALSE (find (top, "Update " + q ("Bright") + " Preset With Settings").enabled);

    // Reloading the preset through the menu undoes a change.
    auto& amount = processor->getAudioParameter (2);
    amount.setValueNotifyingHost (toNormalised (2, 10.0f));
    ed.tick();
    ed.menuItemChosen (encode (resetAllToPreset, 0), {});
    EXPECT_FLOAT_EQ (amount.getRealValue(), 80.0f);

    // Save opens the empty save form; update, on a user preset, the update form for it.
    ed.menuItemChosen (encode (saveAsNewPreset, 0), {});
    EXPECT_EQ (ed.getModalState(), 2);
    EXPECT_FALSE (ed.getModalSettings().hasForm);
    ed.closeModal (1);
    EXPECT_EQ (ed.getModalState(), 0);

    controller->selectUuid ("u-1");
    const float mine = amount.getRealValue();
    ed.menuItemChosen (encode (updatePreset, 0), {});
    EXPECT_EQ (ed.getModalState(), 2);
    EXPECT_EQ ((int)ed.getModalSettings().get (TRQModalViewer::ModalSettings::kind),
               TRQPresetModal::updateForm);
    EXPECT_EQ (ed.getModalSettings().get (TRQModalViewer::ModalSettings::uuid).toString(), "u-1");
    ed.closeModal (1);
    EXPECT_FLOAT_EQ (amount.getRealValue(), mine);
}

// Without a manuals page "Read About" opens the installed manual, at a section the
// manual really has for every parameter; the package's version is the catalogue's.
TEST (ProductLinks, ReadAboutFindsEachParametersSectionInTheManual)
{
    const auto manual = juce::File (ZOLK_SOURCE_DIR).getChildFile ("docs/manual.md").loadFileAsString();
    for (const auto& row : ParameterCatalogue::rows())
    {
        const auto identifier = juce::String (row.identifier);
        EXPECT_TRUE (manual.contains ("<a id=\"" + identifier + "\"></a>")) << identifier;
        const auto local = TRQProductLinks::manualUrl (static_cast<int> (row.id), {});
        EXPECT_TRUE (local.startsWith ("file:///") && local.endsWith ("/manual.html#" + identifier)) << local;
        EXPECT_EQ (TRQProductLinks::manualUrl (static_cast<int> (row.id), "https://example.org/m"),
                   "https://example.org/m#" + identifier);
    }
    EXPECT_EQ (ParameterCatalogue::product().version, ZOLK_VERSION);
}
