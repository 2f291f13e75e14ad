#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <array>
#include <functional>
#include <memory>
#include <vector>

class TRQControl;

// Walks the controls in the catalogue's tab order, skipping the advanced pane while
// it is closed and controls that are disabled or hidden.
class TRQKeyboardFocusTraverser : public juce::ComponentTraverser
{
public:
    TRQKeyboardFocusTraverser (const std::vector<std::shared_ptr<TRQControl>>& controls,
                               std::function<bool()> advancedPaneOpen);

    juce::Component* getDefaultComponent (juce::Component* parent) override;
    juce::Component* getNextComponent (juce::Component* current) override;
    juce::Component* getPreviousComponent (juce::Component* current) override;
    std::vector<juce::Component*> getAllComponents (juce::Component* parent) override;

    // Parameter numbers in tab order.
    static const std::array<int, 21>& tabOrder();

private:
    juce::Component* walk (juce::Component* current, int direction);
    bool isCandidate (int parameter) const;

    const std::vector<std::shared_ptr<TRQControl>>& controls;
    std::function<bool()> advancedPaneOpen;
};
