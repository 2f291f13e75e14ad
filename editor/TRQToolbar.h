#pragma once

#include "editor/TRQMetaComponent.h"
#include "editor/TRQTextButton.h"
#include "state/TRQSignals.h"

#include <map>

// The strip under the main pane: undo and redo on the left, preset stepping around
// the preset name in the middle, A/B on the right. Presses go out as (id, state);
// the editor carries them out and tells the strip what to show.
class TRQToolbar : public TRQMetaComponent, public TRQSignals::Trackable
{
public:
    enum ButtonId
    {
        Presets = 0,
        PrevPreset = 1,
        NextPreset = 2,
        Undo = 3,
        Redo = 4,
        SelectA = 5,
        SelectB = 6,
        CopyAB = 7
    };

    TRQToolbar();

    TRQSignals::Signal<void (int, int)> pressed;

    TRQTextButton* getButton (int buttonId) const;

    void setPresetName (const juce::String& name, bool modified);
    void setModified (bool modified);
    const juce::String& getPresetName() const { return presetName; }
    bool isModified() const { return modified; }
    // 0 for A, 1 for B.
    void setActiveSlot (int slot);
    int getActiveSlot() const { return activeSlot; }
    void setUndoState (bool canUndo, bool canRedo);
    void setPresetsOpen (bool open);
    void setStyle (int style);

    void resized() override;
    void paint (juce::Graphics& g) override;

private:
    void relabelPresetButton();
    std::shared_ptr<TRQTextButton> make (int buttonId, int states, const juce::String& tooltip);

    std::map<int, std::shared_ptr<TRQTextButton>> buttons;
    juce::String presetName;
    bool modified = false;
    int activeSlot = 0;
    int style = 0;
};
