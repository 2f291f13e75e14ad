#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <functional>
#include <vector>

// Tab order of a form: its fields as listed, wrapping at both ends, skipping those
// that are hidden, disabled or don't want the keyboard.
class GenericFormFocusTraverser : public juce::ComponentTraverser
{
public:
    using Fields = std::function<std::vector<juce::Component*>()>;

    explicit GenericFormFocusTraverser (Fields fields);

    juce::Component* getDefaultComponent (juce::Component* parent) override;
    juce::Component* getNextComponent (juce::Component* current) override;
    juce::Component* getPreviousComponent (juce::Component* current) override;
    std::vector<juce::Component*> getAllComponents (juce::Component* parent) override;

private:
    juce::Component* step (juce::Component* current, int direction);
    static bool accepts (juce::Component* c);

    Fields fields;
};
