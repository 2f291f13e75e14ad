#pragma once

#include "editor/TRQMetaComponent.h"
#include "editor/TRQTextButton.h"
#include "state/TRQSignals.h"

#include <map>

// The round task buttons in the centre strip. Presses go out as (id, state).
class TRQTaskButtons : public TRQMetaComponent, public TRQSignals::Trackable
{
public:
    enum TQTaskButtonId
    {
        AdvancedControls = 0,
        GetCurrentSettings = 2
    };

    TRQTaskButtons();

    TRQSignals::Signal<void (int, int)> pressed;

    TRQTextButton* getButton (int buttonId) const;
    void setButtonState (int buttonId, int state);
    // Canvas rectangle of a button.
    static juce::Rectangle<int> frameOf (int buttonId);

    void resized() override;

private:
    std::map<int, std::shared_ptr<TRQTextButton>> buttons;
};
