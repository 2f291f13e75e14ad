#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

// Base of the editor's components: a press nobody handles travels up to the
// parent, so that the editor sees right-clicks anywhere on the panel.
class TRQComponent : public juce::Component
{
public:
    void mouseDown (const juce::MouseEvent& e) override;

    // Whether this component and all its parents are enabled.
    bool isEffectivelyEnabled() const;

    std::function<void()> onEnablementChanged;

protected:
    void enablementChanged() override;
};
