#pragma once

#include "editor/TRQComponent.h"

#include <memory>
#include <vector>

class TRQControl;

// A pane: owns its children and hands a refresh down to the controls in it.
class TRQMetaComponent : public TRQComponent
{
public:
    void addChild (std::shared_ptr<juce::Component> child, bool makeVisible);
    void resized() override;
    // Asks every control inside to repaint if it is dirty, or always when forced.
    void refresh (bool force);

    const std::vector<std::shared_ptr<juce::Component>>& getChildList() const { return children; }

private:
    std::vector<std::shared_ptr<juce::Component>> children;
};
