#pragma once

#include "editor/TRQProductLinks.h"

#include <juce_gui_basics/juce_gui_basics.h>

class TRQAudioProcessorEditor;

// The editor's right-click menu: entries for the parameter under the mouse, the
// settings of the whole plug-in, the user's preferences and the version line. A base
// of the editor, which asks it whether a menu is open before taking any mouse event.
class TRQPopupMenuHandler
{
public:
    // What the menu was opened over, carried to the chosen item.
    struct MenuContext
    {
        bool hasParameter = false;
        int parameterIndex = -1;
    };

    TRQPopupMenuHandler();
    virtual ~TRQPopupMenuHandler();

    bool isPopupMenuOpen() const { return menuOpen; }
    // Whether a point of the editor may take the mouse: while the menu is open only
    // the menu's own windows do, so that the panel under it stays still.
    bool mayTakeMouseAt (juce::Point<int> editorPosition);

    // The parameter under a point in the editor's coordinates: a visible control's
    // bounds first, then the HUD's items.
    MenuContext contextAt (juce::Point<float> editorPosition);

    // The whole tree for a context, as it would be shown now.
    juce::PopupMenu buildMenu (const MenuContext& context);

    // What choosing an item does; 0 (dismissed) only closes the menu.
    void menuItemChosen (int itemId, const MenuContext& context);

    // Where "Read About" and the version line send the user; tests put their own.
    void setUrlLauncher (TRQProductLinks::Launcher launcher);

    // The text clipboard the settings are copied to and pasted from.
    struct Clipboard
    {
        std::function<juce::String()> read;
        std::function<void (const juce::String&)> write;
    };
    // The system's, which needs a display.
    static Clipboard systemClipboard();
    void setClipboard (Clipboard replacement);

protected:
    // A press that reached the editor: a plain right-click opens the menu there; any
    // other press, a right-click with Shift, Ctrl or Alt included, takes the keyboard
    // focus away.
    void handleEditorMouseDown (const juce::MouseEvent& e);
    // Puts an open menu away before the editor goes.
    void dismissPopupMenu();

private:
    TRQAudioProcessorEditor& editor();
    void addParameterSection (juce::PopupMenu& menu, const MenuContext& context);
    void addSettingsSection (juce::PopupMenu& menu);
    juce::PopupMenu preferencesMenu();
    juce::PopupMenu languageMenu();
    juce::PopupMenu windowSizeMenu();
    void addDarkModeItems (juce::PopupMenu& menu);

    void resetEverythingToFactory();
    void pasteFromClipboard();
    void togglePreference (int action);
    void toggleLock (int parameterIndex);
    void copyLocksToControls();

    bool menuOpen = false;
    TRQProductLinks::Launcher urlLauncher;
    Clipboard clipboard;
};
