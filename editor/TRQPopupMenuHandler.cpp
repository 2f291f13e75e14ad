#include "editor/TRQPopupMenuHandler.h"

#include "core/TRQAudioProcessor.h"
#include "editor/TRQAudioProcessorEditor.h"
#include "editor/TRQControl.h"
#include "editor/TRQDrawableCustomComponent.h"
#include "editor/TRQHUDControl.h"
#include "editor/TRQMenuItemId.h"
#include "editor/TRQParameterGestures.h"
#include "presets/TRQPresetController.h"
#include "presets/TRQPresetURL.h"
#include "state/ParameterCatalogue.h"
#include "state/ParameterRange.h"
#include "state/TRQAudioParameter.h"
#include "state/TRQParameterManager.h"

#include <algorithm>
#include <array>

using namespace TRQMenuItemId;

namespace
{
struct WindowSize
{
    Action action;
    int percent;
    const char* label;
};

constexpr std::array<WindowSize, 5> windowSizes{{{sizeSmall, 80, "Small ("},
                                                 {sizeStandard, 100, "Standard ("},
                                                 {sizeLarge, 120, "Large ("},
                                                 {sizeExtraLarge, 140, "Extra Large ("},
                                                 {sizeXXL, 200, "XXL ("}}};

juce::String quoted (const juce::String& name)
{
    return juce::String (juce::CharPointer_UTF8 ("\xe2\x80\x9c")) + name +
           juce::String (juce::CharPointer_UTF8 ("\xe2\x80\x9d"));
}

juce::String sizeLabel (const char* prefix, int percent)
{
    return juce::String (prefix) + juce::String (percent) + "%)";
}

juce::String parameterName (int index)
{
    return juce::String::fromUTF8 (ParameterCatalogue::row (static_cast<ParameterId> (index)).name.c_str());
}

bool isLockable (int index)
{
    return index != 0 && ParameterCatalogue::row (static_cast<ParameterId> (index)).dependents.empty();
}

// Visible all the way up to the editor, so that a control of the closed advanced
// pane is never under the mouse.
bool isVisibleWithin (const juce::Component& c, const juce::Component& top)
{
    for (auto* p = &c; p != nullptr && p != &top; p = p->getParentComponent())
        if (!p->isVisible())
            return false;
    return true;
}

// Only macOS 10.14 and later follow a system-wide dark mode.
bool hasSystemDarkMode()
{
#if JUCE_MAC
    return juce::SystemStats::getOperatingSystemType() >= juce::SystemStats::MacOSX_10_14;
#else
    return false;
#endif
}
} // namespace

TRQPopupMenuHandler::TRQPopupMenuHandler()
    : urlLauncher (TRQProductLinks::defaultLauncher())
    , clipboard (systemClipboard())
{
}

TRQPopupMenuHandler::Clipboard TRQPopupMenuHandler::systemClipboard()
{
    return {[] { return juce::SystemClipboard::getTextFromClipboard(); },
            [] (const juce::String& text) { juce::SystemClipboard::copyTextToClipboard (text); }};
}

void TRQPopupMenuHandler::setClipboard (Clipboard replacement)
{
    clipboard = std::move (replacement);
}

TRQPopupMenuHandler::~TRQPopupMenuHandler() = default;

TRQAudioProcessorEditor& TRQPopupMenuHandler::editor()
{
    return static_cast<TRQAudioProcessorEditor&> (*this);
}

void TRQPopupMenuHandler::setUrlLauncher (TRQProductLinks::Launcher launcher)
{
    urlLauncher = std::move (launcher);
}

void TRQPopupMenuHandler::handleEditorMouseDown (const juce::MouseEvent& e)
{
    auto& ed = editor();
    if (!e.mods.isRightButtonDown() || e.mods.isShiftDown() || e.mods.isCtrlDown() || e.mods.isAltDown())
    {
        juce::Component::unfocusAllComponents();
        return;
    }

    const auto context = contextAt (e.getEventRelativeTo (&ed).position);
    auto menu = buildMenu (context);
    menuOpen = true;
    juce::Component::SafePointer<TRQAudioProcessorEditor> safe (&ed);
    const auto options =
        juce::PopupMenu::Options()
            .withTargetScreenArea (juce::Rectangle<int> (1, 1).withPosition (e.getScreenPosition()))
            .withParentComponent (&ed.root)
            .withStandardItemHeight (TRQDrawableCustomComponent::standardHeight);
    menu.showMenuAsync (options,
                        [safe, context] (int result)
                        {
                            // A closed editor ignores what was chosen in its menu.
                            if (auto* open = safe.getComponent())
                                static_cast<TRQPopupMenuHandler*> (open)->menuItemChosen (result, context);
                        });
}

void TRQPopupMenuHandler::dismissPopupMenu()
{
    if (menuOpen)
        juce::PopupMenu::dismissAllActiveMenus();
    menuOpen = false;
}

bool TRQPopupMenuHandler::mayTakeMouseAt (juce::Point<int> position)
{
    if (!menuOpen)
        return true;
    // The popup's windows are the always-on-top children that JUCE adds to the root;
    // the point must reach them, or the menu never sees the pointer over it.
    auto& root = editor().root;
    const auto local = root.getLocalPoint (&editor(), position);
    for (auto* child : root.getChildren())
        if (child->isAlwaysOnTop() && child->isVisible() && child->getBounds().contains (local))
            return true;
    return false;
}

TRQPopupMenuHandler::MenuContext TRQPopupMenuHandler::contextAt (juce::Point<float> position)
{
    auto& ed = editor();
    for (auto& control : ed.controls)
    {
        if (control == nullptr || !isVisibleWithin (*control, ed))
            continue;
        const auto local = control->getLocalPoint (&ed, position);
        if (control->getLocalBounds().toFloat().contains (local))
            return {true, control->getParameterIndex()};
    }
    if (ed.hud != nullptr && isVisibleWithin (*ed.hud, ed))
    {
        const auto canvas = ed.root.getLocalPoint (&ed, position);
        if (ed.hud->getBounds().toFloat().contains (canvas))
            return {true, TRQHUDControl::parameterIndex};
    }
    return {};
}

juce::PopupMenu TRQPopupMenuHandler::buildMenu (const MenuContext& context)
{
    juce::PopupMenu menu;
    if (context.hasParameter)
        addParameterSection (menu, context);
    menu.addSeparator();
    addSettingsSection (menu);
    menu.addSeparator();
    menu.addSubMenu ("Preferences", preferencesMenu());
    menu.addSeparator();
    menu.addItem (encode (versionLine, 0), TRQProductLinks::versionLine(), true, false);
    return menu;
}

void TRQPopupMenuHandler::addParameterSection (juce::PopupMenu& menu, const MenuContext& context)
{
    auto& ed = editor();
    const int index = context.parameterIndex;
    const auto name = quoted (parameterName (index));

    const juce::Component* target = ed.getControl (index);
    if (target == nullptr && index == TRQHUDControl::parameterIndex)
        target = ed.hud.get();
    const auto* component = dynamic_cast<const TRQComponent*> (target);
    const bool enabled = component == nullptr || component->isEffectivelyEnabled();

    menu.addItem (encode (readAbout, 0), "Read About " + name, true, false);
    menu.addItem (encode (resetParameter, 0), "Reset " + name + " to Factory Default Value", enabled, false);
    if (isLockable (index))
    {
        const auto locks = ed.processor.getPluginState().getLockStates();
        menu.addItem (encode (lockParameter, 0), "Lock " + name + " When Switching Presets", true,
                      locks[(size_t)index]);
    }
}

void TRQPopupMenuHandler::addSettingsSection (juce::PopupMenu& menu)
{
    auto& ed = editor();
    const bool canPaste = TRQProductLinks::looksLikeSettingsUrl (clipboard.read());
    menu.addItem (encode (copySettings, 0), "Copy All Settings as URL to Clipboard", true, false);
    menu.addItem (encode (pasteSettings, 0), "Paste All Settings From Clipboard", canPaste, false);
    menu.addItem (encode (resetAllToFactory, 0), "Reset All Settings to Factory Default", true, false);
    menu.addSeparator();

    auto controller = ed.processor.getPresetController();
    const auto uuid = controller->lastUuid();
    const auto name = quoted (controller->nameOfUuid (uuid).value);
    const bool current = controller->getHasSelection();
    bool isUserPreset = false;
    if (const auto index = controller->indexOfUuid (uuid))
        if (const auto preset = controller->getPreset (index.value))
            isUserPreset = preset.value.kind == PresetKind::user;

    menu.addItem (encode (resetAllToPreset, 0), "Reset All Settings to " + name + " Preset", current, false);
    menu.addItem (encode (saveAsNewPreset, 0), "Save Settings as New Preset", true, false);
    menu.addItem (encode (updatePreset, 0), "Update " + name + " Preset With Settings",
                  current && isUserPreset, false);
}

juce::PopupMenu TRQPopupMenuHandler::preferencesMenu()
{
    const auto& prefs = editor().prefs;
    juce::PopupMenu menu;
    menu.addSubMenu ("Language", languageMenu());
    menu.addItem (encode (alwaysOpenAdvancedPane, 0), "Always Open Advanced Pane", true,
                  prefs.alwaysOpenAdvPane.get() == TRQUserPrefs::AlwaysOpenAdvPane::On);
    addDarkModeItems (menu);
    menu.addItem (encode (enableMetering, 0), "Enable Metering", true,
                  prefs.metering.get() == TRQUserPrefs::Metering::On);
    menu.addItem (encode (enableScrollInput, 0), "Enable Scroll Input", true,
                  prefs.scrolling.get() == TRQUserPrefs::Scrolling::On);
    menu.addItem (encode (doubleClickKeyEntry, 0), "Require Double-Click for Keyboard Focus", true,
                  prefs.doubleClickKeyEntry.get() == TRQUserPrefs::DoubleClickKeyEntry::On);
    menu.addSubMenu ("Window Size", windowSizeMenu());
    return menu;
}

juce::PopupMenu TRQPopupMenuHandler::languageMenu()
{
    auto& ed = editor();
    const auto ink = ed.getLookAndFeel().findColour (juce::PopupMenu::textColourId);
    juce::PopupMenu menu;
    for (auto language : TRQLanguage::menuLanguages())
    {
        auto shapes = ed.drawing.glossonymList (language, (int)ed.prefs.darkMode.get());
        // Emoji keep their own colours; every other name is written in the menu's ink.
        if (language != TRQLanguage::Emoji)
            shapes.setColour (ink);
        juce::PopupMenu::Item item (juce::String (TRQLanguage::languageName (language)));
        item.itemID = encode (TRQMenuItemId::language, language);
        item.isTicked = language == ed.prefs.language.get();
        item.customComponent =
            new TRQDrawableCustomComponent (std::move (shapes), {0.0f, 0.0f, 100.0f, 24.0f});
        menu.addItem (std::move (item));
    }
    return menu;
}

void TRQPopupMenuHandler::addDarkModeItems (juce::PopupMenu& menu)
{
    const int mode = (int)editor().prefs.darkMode.get();
    if (hasSystemDarkMode())
    {
        juce::PopupMenu modes;
        const char* names[] = {"Off", "On", "System"};
        for (int value = 0; value < 3; ++value)
            modes.addItem (encode (darkMode, value), names[value], true, mode == value);
        menu.addSubMenu ("Dark Mode", modes);
        return;
    }
    menu.addItem (encode (darkMode, mode == 1 ? 0 : 1), "Enable Dark Mode", true, mode == 1);
}

juce::PopupMenu TRQPopupMenuHandler::windowSizeMenu()
{
    const int scale = editor().prefs.uiScale.get();
    juce::PopupMenu menu;
    bool matched = false;
    for (const auto& size : windowSizes)
    {
        matched = matched || scale == size.percent;
        menu.addItem (encode (size.action, 0), sizeLabel (size.label, size.percent), true,
                      scale == size.percent);
    }
    if (!matched)
    {
        menu.addSeparator();
        // Shown, not chosen: its id decodes to no action.
        menu.addItem (encode (noAction, std::max (scale, 1)), sizeLabel ("Custom (", scale), false, true);
    }
    return menu;
}

void TRQPopupMenuHandler::menuItemChosen (int itemId, const MenuContext& context)
{
    menuOpen = false;
    if (itemId == 0)
        return;
    if (auto* focused = juce::Component::getCurrentlyFocusedComponent();
        focused != nullptr && focused->isCurrentlyModal())
        focused->exitModalState (0);

    auto& ed = editor();
    const auto [action, value] = decode (itemId);
    const bool needsParameter = action == resetParameter || action == readAbout || action == lockParameter;
    if (!isKnownAction (action) || (needsParameter && !context.hasParameter))
        return;

    switch (action)
    {
    case copySettings:
        clipboard.write (TRQPresetURL::settingsAsUrl (ed.processor));
        break;
    case pasteSettings:
        pasteFromClipboard();
        break;
    case resetAllToFactory:
        resetEverythingToFactory();
        break;
    case resetAllToPreset:
        if (auto controller = ed.processor.getPresetController(); controller->getHasSelection())
            controller->selectUuid (controller->lastUuid());
        break;
    case saveAsNewPreset:
        ed.openPresetForm (false);
        break;
    case updatePreset:
        ed.openPresetForm (true);
        break;
    case resetParameter:
        ed.gestures->setRealInGesture (
            context.parameterIndex,
            ParameterCatalogue::row (static_cast<ParameterId> (context.parameterIndex)).defaultValue);
        break;
    case readAbout:
        urlLauncher (TRQProductLinks::manualUrl (context.parameterIndex));
        break;
    case versionLine:
        urlLauncher (TRQProductLinks::productPageUrl());
        break;
    case alwaysOpenAdvancedPane:
    case doubleClickKeyEntry:
    case enableMetering:
    case enableScrollInput:
        togglePreference (action);
        break;
    case sizeSmall:
    case sizeStandard:
    case sizeLarge:
    case sizeExtraLarge:
    case sizeXXL:
        ed.setUserScale (windowSizes[(size_t)(action - sizeSmall)].percent);
        break;
    case TRQMenuItemId::language:
    {
        const auto& list = TRQLanguage::menuLanguages();
        if (std::find (list.begin(), list.end(), value) != list.end())
            ed.setLanguage (static_cast<TRQLanguage::Language> (value));
        break;
    }
    case lockParameter:
        toggleLock (context.parameterIndex);
        break;
    case darkMode:
        if (value == 0 || value == 1 || (value == 2 && hasSystemDarkMode()))
            ed.setDarkMode (value);
        break;
    default:
        break;
    }
}

void TRQPopupMenuHandler::pasteFromClipboard()
{
    // The clipboard may have changed since the menu opened: only settings of ours are
    // taken, so that stray text never resets the panel.
    const auto text = clipboard.read();
    if (TRQProductLinks::looksLikeSettingsUrl (text))
        TRQPresetURL::pasteSettings (editor().processor, text);
}

void TRQPopupMenuHandler::resetEverythingToFactory()
{
    auto& ed = editor();
    auto& processor = ed.processor;
    // One undo step, which brings back the preset shown as well.
    auto& manager = processor.getParameterManager();
    manager.beginPresetAction (processor.getPresetController()->lastUuid());
    for (int i = 0; i < TRQAudioProcessor::numParameters; ++i)
    {
        auto& parameter = processor.getAudioParameter (i);
        const auto id = static_cast<ParameterId> (i);
        parameter.setValue (toNormalised (id, ParameterCatalogue::row (id).defaultValue));
        parameter.sendValueChangedMessageToListeners (parameter.getValue());
    }
    manager.endPresetAction ({});

    for (auto& control : ed.controls)
        if (control != nullptr && control->isLocked() && control->hasLockMark())
            control->setLocked (false);
    processor.getPluginState().setLockStates ({});
}

void TRQPopupMenuHandler::togglePreference (int action)
{
    auto& ed = editor();
    auto& prefs = ed.prefs;
    switch (action)
    {
    case alwaysOpenAdvancedPane:
        prefs.alwaysOpenAdvPane.set (prefs.alwaysOpenAdvPane.get() == TRQUserPrefs::AlwaysOpenAdvPane::On
                                         ? TRQUserPrefs::AlwaysOpenAdvPane::Off
                                         : TRQUserPrefs::AlwaysOpenAdvPane::On);
        break;
    case doubleClickKeyEntry:
    {
        const bool old = prefs.doubleClickKeyEntry.get() == TRQUserPrefs::DoubleClickKeyEntry::On;
        prefs.doubleClickKeyEntry.set (old ? TRQUserPrefs::DoubleClickKeyEntry::Off
                                           : TRQUserPrefs::DoubleClickKeyEntry::On);
        // With double-click entry on, a click on the panel doesn't take the focus.
        ed.setWantsKeyboardFocus (old);
        for (auto& control : ed.controls)
            if (control != nullptr)
                control->setDoubleClickKeyEntry (!old);
        break;
    }
    case enableMetering:
    {
        const int metering = prefs.metering.get() == TRQUserPrefs::Metering::On ? 0 : 1;
        ed.setMetering (metering);
        // The meters' area goes back to the bare artwork.
        if (metering == 0)
            ed.backgroundDirty = true;
        break;
    }
    case enableScrollInput:
    {
        const bool scrolling = prefs.scrolling.get() == TRQUserPrefs::Scrolling::Off;
        prefs.scrolling.set (scrolling ? TRQUserPrefs::Scrolling::On : TRQUserPrefs::Scrolling::Off);
        for (auto& control : ed.controls)
            if (control != nullptr)
                control->setScrollEnabled (scrolling);
        break;
    }
    default:
        break;
    }
}

void TRQPopupMenuHandler::toggleLock (int parameterIndex)
{
    if (!isLockable (parameterIndex))
        return;
    auto& state = editor().processor.getPluginState();
    const auto locks = state.getLockStates();
    state.setLock ((unsigned)parameterIndex, !locks[(size_t)parameterIndex]);
    copyLocksToControls();
}

void TRQPopupMenuHandler::copyLocksToControls()
{
    auto& ed = editor();
    const auto locks = ed.processor.getPluginState().getLockStates();
    for (size_t i = 0; i < locks.size() && i < ed.controls.size(); ++i)
        if (ed.controls[i] != nullptr)
            ed.controls[i]->setLocked (locks[i]);
}
