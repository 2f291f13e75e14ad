#pragma once

#include "editor/TRQMetaComponent.h"
#include "editor/TRQModalViewer.h"
#include "editor/TRQPresetComponent.h"
#include "editor/TRQTextButton.h"
#include "state/TRQSignals.h"

#include <map>

class TRQPresetController;

// The preset browser in place of the main pane: sections of factory and user
// presets, a click loads, the row menu edits. The list is read again from the files
// each time the browser opens, and rebuilt later, never inside a row's own callback,
// whenever the controller reloads.
class TRQPresetView : public TRQMetaComponent, public TRQSignals::Trackable, private juce::AsyncUpdater
{
public:
    enum RowMenuItem
    {
        makeDefaultItem = 1,
        editItem = 2,
        updateItem = 3,
        deleteItem = 4
    };

    explicit TRQPresetView (std::shared_ptr<TRQPresetController> controller);
    ~TRQPresetView() override;

    TRQSignals::Signal<void()> closeSignal;
    TRQSignals::Signal<void (int, const TRQModalViewer::ModalSettings&)> modalSignal;
    TRQSignals::Signal<void (const juce::String&)> openUrlSignal;

    void setVisible (bool shouldBeVisible) override;
    void rebuild();
    void scrollToPreset (std::uint32_t index);
    void setStyle (int newStyle);

    juce::PopupMenu buildRowMenu (std::uint32_t presetIndex) const;
    void rowMenuChosen (std::uint32_t presetIndex, int itemId);
    // Replaces the popup with a call, for tests that look at the menu.
    std::function<void (const juce::PopupMenu&, std::uint32_t)> onShowMenu;

    juce::Viewport& getViewport() { return viewport; }
    TRQPresetComponent& getBody() { return *body; }
    TRQPresetElement* findRow (std::uint32_t index) const { return body->findRow (index); }
    TRQTextButton& getSaveButton() { return *saveButton; }
    int getRebuildCount() const { return rebuilds; }

    bool keyPressed (const juce::KeyPress& key) override;
    void paint (juce::Graphics& g) override;
    void resized() override;

private:
    void handleAsyncUpdate() override;
    void rowPressed (std::uint32_t index, const juce::MouseEvent& e, bool menu);
    // A change made in the browser itself that couldn't be written: its problem shows
    // above the list until the browser opens again.
    void showWriteResult (const juce::Result& result);
    juce::String notice() const;
    void markCurrent();
    bool step (int direction);
    // Room for the scroll bar is kept, so rows don't change width as the list grows.
    int bodyWidth() const { return std::max (0, viewport.getWidth() - viewport.getScrollBarThickness()); }

    std::shared_ptr<TRQPresetController> controller;
    juce::Viewport viewport;
    std::shared_ptr<TRQPresetComponent> body;
    std::shared_ptr<TRQTextButton> saveButton, closeButton;
    std::map<juce::String, bool> openSections;
    juce::String writeProblem;
    int style = 0;
    int rebuilds = 0;
};
