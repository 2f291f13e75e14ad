#include "editor/EditorWindowSupport.h"

#include "core/TRQAudioProcessor.h"
#include "editor/TRQAudioProcessorEditor.h"
#include "editor/TRQControl.h"
#include "editor/TRQMenuItemId.h"
#include "state/ParameterCatalogue.h"
#include "state/ParameterRange.h"
#include "state/TRQAudioParameter.h"
#include "support/PresetFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>

// The context menu in a real window: opened with the right button, items chosen by
// clicking them in the popup, settings carried through the X server's clipboard.
using namespace EditorWindowSupport;

namespace
{
const juce::String lq = juce::CharPointer_UTF8 ("\xe2\x80\x9c");
const juce::String rq = juce::CharPointer_UTF8 ("\xe2\x80\x9d");

// The open popup windows of the editor, outermost first.
std::vector<juce::Component*> menuWindows (TRQAudioProcessorEditor& editor)
{
    std::vector<juce::Component*> windows;
    for (auto* child : editor.getRoot().getChildren())
        if (child->getName() == "menu" && child->isVisible())
            windows.push_back (child);
    return windows;
}

// The item of an open menu whose text (its accessible title) is text.
juce::Component* menuItem (TRQAudioProcessorEditor& editor, const juce::String& text)
{
    auto windows = menuWindows (editor);
    for (auto w = windows.rbegin(); w != windows.rend(); ++w)
        for (auto* item : (*w)->getChildren())
            if (auto* handler = item->getAccessibilityHandler();
                handler != nullptr && handler->getTitle() == text)
                return item;
    return nullptr;
}

juce::Point<float> centreInEditor (TRQAudioProcessorEditor& editor, juce::Component& c)
{
    return editor.getLocalPoint (&c, c.getLocalBounds().getCentre().toFloat());
}

// Hovers along the path of item texts, opening each submenu, and clicks the last
// one with the left button, the way a user would.
bool choose (TRQAudioProcessorEditor& editor, std::initializer_list<juce::String> path)
{
    for (const auto& text : path)
    {
        juce::Component* item = nullptr;
        for (int i = 0; i < 40 && item == nullptr; ++i)
        {
            item = menuItem (editor, text);
            if (item == nullptr)
                pump (25);
        }
        if (item == nullptr)
            return false;
        const auto at = centreInEditor (editor, *item);
        // An open menu follows the pointer of the X server, not the events sent to the
        // window: the pointer goes there first.
        juce::Desktop::setMousePosition (editor.localPointToGlobal (at).roundToInt());
        mouseAt (editor, at);
        // Submenus open after a short hover, a highlight waits until the pointer rests,
        // and a click counts only once the window has been up a quarter of a second.
        pump (500);
        if (&text == path.end() - 1)
        {
            mouseAt (editor, at, juce::ModifierKeys::leftButtonModifier);
            pump (150);
            mouseAt (editor, at);
            pump (150);
        }
    }
    return true;
}

juce::Point<float> controlCentre (TRQAudioProcessorEditor& editor, int index)
{
    auto* control = editor.getControl (index);
    return editor.getRoot().getLocalPoint (control, control->getLocalBounds().getCentre().toFloat());
}

float brightness (juce::Colour c)
{
    return (c.getFloatRed() + c.getFloatGreen() + c.getFloatBlue()) / 3.0f;
}

// Pixels of a canvas area that differ between two shots of the same editor size.
int differingPixels (const juce::Image& a, const juce::Image& b, TRQAudioProcessorEditor& editor,
                     juce::Rectangle<float> canvas)
{
    const auto area = editor.getLocalArea (&editor.getRoot(), canvas)
                          .getSmallestIntegerContainer()
                          .getIntersection (a.getBounds().getIntersection (b.getBounds()));
    int count = 0;
    for (int y = area.getY(); y < area.getBottom(); ++y)
        for (int x = area.getX(); x < area.getRight(); ++x)
            if (std::abs (brightness (a.getPixelAt (x, y)) - brightness (b.getPixelAt (x, y))) > 0.15f)
                ++count;
    return count;
}

// A right-button press handled right now, with no message loop in between: returns
// the component that has the keyboard focus just after it.
juce::Component* focusAfterRightPress (TRQAudioProcessorEditor& editor, juce::Point<float> canvas,
                                       juce::ModifierKeys mods)
{
    const auto buttons = mods.withFlags (juce::ModifierKeys::rightButtonModifier);
    juce::ModifierKeys::currentModifiers = buttons;
    editor.getPeer()->handleMouseEvent (
        juce::MouseInputSource::InputSourceType::mouse, canvasToEditor (editor, canvas), buttons,
        juce::MouseInputSource::defaultPressure, juce::MouseInputSource::defaultOrientation,
        juce::Time::currentTimeMillis());
    auto* focused = juce::Component::getCurrentlyFocusedComponent();
    mouseUp (editor, canvas, mods);
    return focused;
}

class EditorMenuWindow : public WindowTest
{
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        if (IsSkipped())
            return;
        prefs->setInt ("AlwaysOpenAdvPane", 0);
    }

    void TearDown() override { juce::PopupMenu::dismissAllActiveMenus(); }
};

// The headings of the main panel, where every language draws its own shapes.
const juce::Rectangle<float> labelArea{0.0f, 0.0f, 395.0f, 32.0f};
} // namespace

TEST_F (EditorMenuWindow, RightClickAControlAndChooseItems)
{
    TRQAudioProcessor processor;
    processor.getPluginState().setAdvancedPaneIsOpen (false);
    auto opened = open (processor, prefs);
    auto& editor = *opened.editor;
    juce::StringArray launched;
    editor.setUrlLauncher (
        [&] (const juce::String& url)
        {
            launched.add (url);
            return true;
        });
    pump (200);

    auto& input = processor.getAudioParameter (1);
    input.setValueNotifyingHost (0.9f);
    pump (100);

    // Shift, Ctrl or Alt with the right button open nothing, and take the focus away.
    auto* focusTarget = editor.getControl (5);
    for (auto mods : {juce::ModifierKeys::shiftModifier, juce::ModifierKeys::ctrlModifier,
                      juce::ModifierKeys::altModifier})
    {
        for (int i = 0; i < 10 && !focusTarget->hasKeyboardFocus (true); ++i)
        {
            focusTarget->grabKeyboardFocus();
            pump (20);
        }
        // A bare X server hands the window its input focus late, and JUCE then gives
        // the focus back to the last component that had it: wait for that first.
        pump (150);
        const bool hadFocus = focusTarget->hasKeyboardFocus (true);
        // The server may hand the focus back later still; what counts is that the press
        // took it away.
        auto* focusedAfter = focusAfterRightPress (editor, controlCentre (editor, 1), mods);
        pump (100);
        EXPECT_FALSE (editor.isPopupMenuOpen());
        EXPECT_TRUE (menuWindows (editor).empty());
        if (hadFocus)
        {
            EXPECT_EQ (focusedAfter, nullptr);
        }
    }

    rightClick (editor, controlCentre (editor, 1));
    pump (200);
    ASSERT_TRUE (editor.isPopupMenuOpen());
    ASSERT_EQ (menuWindows (editor).size(), 1u);
    // Nothing of the panel takes the mouse meanwhile.
    EXPECT_FALSE (editor.hitTest (10, 10));
    const auto resetText = "Reset " + lq + "Input Gain" + rq + " to Factory Default Value";
    ASSERT_NE (menuItem (editor, resetText), nullptr);
    // The menu opens where the mouse is.
    const auto menuPos = editor.getLocalPoint (menuWindows (editor)[0], juce::Point<float>());
    const auto clickPos = canvasToEditor (editor, controlCentre (editor, 1));
    EXPECT_NEAR (menuPos.x, clickPos.x, 30.0f);

    ASSERT_TRUE (choose (editor, {resetText}));
    EXPECT_FALSE (editor.isPopupMenuOpen());
    EXPECT_TRUE (menuWindows (editor).empty());
    EXPECT_FLOAT_EQ (input.getRealValue(), ParameterCatalogue::row (1).defaultValue);
    EXPECT_TRUE (editor.hitTest (10, 10));

    // Lock, then the manual, each by a click.
    rightClick (editor, controlCentre (editor, 1));
    ASSERT_TRUE (choose (editor, {"Lock " + lq + "Input Gain" + rq + " When Switching Presets"}));
    EXPECT_TRUE (processor.getPluginState().getLockStates()[1]);
    EXPECT_TRUE (editor.getControl (1)->isLocked());
    rightClick (editor, controlCentre (editor, 1));
    ASSERT_TRUE (choose (editor, {"Read About " + lq + "Input Gain" + rq}));
    ASSERT_EQ (launched.size(), 1);
    EXPECT_TRUE (launched[0].endsWith ("#InputGain"));

    // Escape puts the menu away with nothing chosen.
    rightClick (editor, {200.0f, 10.0f});
    pump (100);
    ASSERT_TRUE (editor.isPopupMenuOpen());
    EXPECT_EQ (menuItem (editor, resetText), nullptr); // no parameter section on the bare panel
    juce::PopupMenu::dismissAllActiveMenus();
    pump (100);
    EXPECT_FALSE (editor.isPopupMenuOpen());
}

TEST_F (EditorMenuWindow, LanguagesDarkModeAndSizeThroughTheMenu)
{
    TRQAudioProcessor processor;
    processor.getPluginState().setAdvancedPaneIsOpen (false);
    auto opened = open (processor, prefs);
    auto& editor = *opened.editor;
    pump (300);
    const auto english = capture (editor);
    const auto empty = juce::Point<float> (200.0f, 10.0f);

    rightClick (editor, empty);
    ASSERT_TRUE (choose (editor, {"Preferences", "Language"}));
    ASSERT_TRUE (choose (editor, {"Korean"}));
    EXPECT_EQ (prefs->getString ("Language", ""), "Korean");
    pump (300);
    const auto korean = capture (editor);
    save (korean, "menu-korean");
    EXPECT_GT (differingPixels (english, korean, editor, labelArea), 200);

    rightClick (editor, empty);
    ASSERT_TRUE (choose (editor, {"Preferences", "Language", "Arabic"}));
    EXPECT_EQ (prefs->getString ("Language", ""), "Arabic");
    pump (300);
    const auto arabic = capture (editor);
    save (arabic, "menu-arabic");
    EXPECT_GT (differingPixels (korean, arabic, editor, labelArea), 200);

    rightClick (editor, empty);
    ASSERT_TRUE (choose (editor, {"Preferences", "Language", "Emoji"}));
    pump (300);
    const auto emoji = capture (editor);
    save (emoji, "menu-emoji");
    // Pictures in place of the words.
    EXPECT_GT (differingPixels (arabic, emoji, editor, labelArea), 200);
    EXPECT_GT (differingPixels (english, emoji, editor, labelArea), 200);

    // Dark mode: the panel's top left goes from near white to near black.
    const auto panelPoint = canvasToEditor (editor, {150.0f, 300.0f}).roundToInt();
    EXPECT_GT (brightness (english.getPixelAt (panelPoint.x, panelPoint.y)), 0.8f);
    rightClick (editor, empty);
    ASSERT_TRUE (choose (editor, {"Preferences", "Enable Dark Mode"}));
    pump (300);
    const auto dark = capture (editor);
    EXPECT_EQ (prefs->getInt ("DarkMode", -1), 1);
    EXPECT_LT (brightness (dark.getPixelAt (panelPoint.x, panelPoint.y)), 0.3f);

    // Double size: the window and its artwork follow.
    rightClick (editor, empty);
    ASSERT_TRUE (choose (editor, {"Preferences", "Window Size", "XXL (200%)"}));
    pump (400);
    EXPECT_EQ (prefs->getInt ("UIScale", 0), 200);
    EXPECT_EQ (editor.getWidth(), 914);
    const auto large = capture (editor);
    EXPECT_EQ (large.getWidth(), 914);
    const auto largePoint = canvasToEditor (editor, {150.0f, 300.0f}).roundToInt();
    EXPECT_LE (largePoint.getDistanceFrom (panelPoint * 2), 2);
    EXPECT_LT (brightness (large.getPixelAt (largePoint.x, largePoint.y)), 0.3f);
    EXPECT_LT (differingPixels (dark.rescaled (914, 760), large, editor, {0.0f, 0.0f, 457.0f, 380.0f}),
               914 * 760 / 10);
}

// The pictures in docs/screenshots: the menu over a control with the shipped factory
// presets, and the language names, with the advanced pane open so that every submenu
// opens to the right. Every menu window lies whole inside the panel.
TEST_F (EditorMenuWindow, ReferenceScreenshots)
{
    PresetFolder folder;
    folder.factory().getParentDirectory().createDirectory();
    ASSERT_TRUE (juce::File (juce::String (ZOLK_SOURCE_DIR) + "/presets/factory/TQPresets.json")
                     .copyFileTo (folder.factory()));
    prefs->setInt ("AlwaysOpenAdvPane", 1);
    TRQAudioProcessor processor;
    auto opened = open (processor, prefs);
    auto& editor = *opened.editor;
    pump (300);

    const auto inside = [&]
    {
        for (auto* window : menuWindows (editor))
            if (!editor.getRoot().getLocalBounds().contains (window->getBounds()))
                return false;
        return !menuWindows (editor).empty();
    };

    rightClick (editor, controlCentre (editor, 1) - juce::Point<float> (0.0f, 60.0f));
    ASSERT_TRUE (choose (editor, {"Copy All Settings as URL to Clipboard"}) && !editor.isPopupMenuOpen());
    rightClick (editor, controlCentre (editor, 1) - juce::Point<float> (0.0f, 60.0f));
    // The pointer rests beside the menu, so that no item is highlighted in the picture.
    juce::Desktop::setMousePosition (
        editor.localPointToGlobal (canvasToEditor (editor, {5.0f, 370.0f})).roundToInt());
    pump (400);
    EXPECT_TRUE (inside());
    save (capture (editor), "context-menu");

    ASSERT_TRUE (choose (editor, {"Preferences", "Language"}));
    pump (300);
    EXPECT_EQ (menuWindows (editor).size(), 3u);
    EXPECT_TRUE (inside());
    save (capture (editor), "context-menu-languages");
}

TEST_F (EditorMenuWindow, ClosingTheEditorWithTheMenuOpen)
{
    TRQAudioProcessor processor;
    auto opened = open (processor, prefs);
    rightClick (*opened.editor, {200.0f, 10.0f});
    pump (100);
    ASSERT_TRUE (opened.editor->isPopupMenuOpen());
    opened.editor.reset();
    pump (200);
    SUCCEED();
}

// Copy in one editor, paste in another: first in this process, then in a second
// process, which asks the X server for the text. JUCE makes its hidden message
// window the owner of the selection, not the editor's window: the copying editor may
// close, but this process must keep serving its message loop while the other one
// reads.
TEST_F (EditorMenuWindow, CopyAndPasteThroughTheXClipboard)
{
    const juce::Point<float> empty{200.0f, 10.0f};
    const auto pasteText = juce::String ("Paste All Settings From Clipboard");

    TRQAudioProcessor source;
    source.getAudioParameter (2).setValueNotifyingHost (toNormalised (2, 60.0f));
    auto from = open (source, prefs);
    rightClick (*from.editor, empty);
    ASSERT_TRUE (choose (*from.editor, {"Copy All Settings as URL to Clipboard"}));
    EXPECT_TRUE (juce::SystemClipboard::getTextFromClipboard().endsWith ("/zolk-comp/3.5.0?cm=60"));

    TRQAudioProcessor target;
    auto& amount = target.getAudioParameter (2);
    auto to = open (target, prefs);
    // Side by side, so that the X server's pointer is over the window being used.
    to.editor->setTopLeftPosition (560, 20);
    pump (100);
    rightClick (*to.editor, empty);
    ASSERT_TRUE (choose (*to.editor, {pasteText}));
    EXPECT_FLOAT_EQ (amount.getRealValue(), 60.0f);

    // Other text and an empty clipboard: the item is there but can't be chosen, and
    // the settings stay.
    amount.setValueNotifyingHost (toNormalised (2, 20.0f));
    for (const char* text : {"hello ?cm=5", ""})
    {
        juce::SystemClipboard::copyTextToClipboard (text);
        rightClick (*to.editor, empty);
        ASSERT_TRUE (choose (*to.editor, {pasteText}));
        EXPECT_TRUE (to.editor->isPopupMenuOpen()) << text;
        juce::PopupMenu::dismissAllActiveMenus();
        pump (100);
        to.editor->menuItemChosen (TRQMenuItemId::encode (TRQMenuItemId::pasteSettings, 0), {});
        EXPECT_FLOAT_EQ (amount.getRealValue(), 20.0f) << text;
    }

    // Another process pastes what this one copied; the copying editor is gone by then.
    source.getAudioParameter (2).setValueNotifyingHost (toNormalised (2, 42.0f));
    rightClick (*from.editor, empty);
    ASSERT_TRUE (choose (*from.editor, {"Copy All Settings as URL to Clipboard"}));
    from.editor.reset();
    to.editor.reset();
    pump (100);

    setenv ("ZOLK_PASTE_EXPECT", "42", 1);
    juce::ChildProcess child;
    const auto self = juce::File::getSpecialLocation (juce::File::currentExecutableFile).getFullPathName();
    const bool started =
        child.start (juce::StringArray{self, "--gtest_filter=EditorMenuWindow.PasteInAnotherProcess"});
    unsetenv ("ZOLK_PASTE_EXPECT");
    ASSERT_TRUE (started);
    // Reading the child's output would block this message loop, which must answer the
    // child's request for the selection: its few lines wait in the pipe until it ends.
    for (int i = 0; i < 3000 && child.isRunning(); ++i)
        pump (20);
    const auto output = child.readAllProcessOutput();
    EXPECT_EQ (child.getExitCode(), 0u) << output;
    EXPECT_TRUE (output.contains ("[  PASSED  ] 1 test")) << output;
}

// The other half of the test above, run by it in a process of its own.
TEST_F (EditorMenuWindow, PasteInAnotherProcess)
{
    const char* expected = std::getenv ("ZOLK_PASTE_EXPECT");
    if (expected == nullptr)
        GTEST_SKIP() << "run by CopyAndPasteThroughTheXClipboard";
    TRQAudioProcessor processor;
    auto opened = open (processor, prefs);
    EXPECT_TRUE (juce::SystemClipboard::getTextFromClipboard().contains ("?cm=" + juce::String (expected)));
    rightClick (*opened.editor, {200.0f, 10.0f});
    ASSERT_TRUE (choose (*opened.editor, {"Paste All Settings From Clipboard"}));
    EXPECT_FALSE (opened.editor->isPopupMenuOpen());
    EXPECT_FLOAT_EQ (processor.getAudioParameter (2).getRealValue(), juce::String (expected).getFloatValue());
}
