#include "editor/TRQGenericForm.h"

#include "editor/GenericFormFocusTraverser.h"

TRQGenericForm::TRQGenericForm()
{
    setWantsKeyboardFocus (true);
    setFocusContainerType (FocusContainerType::keyboardFocusContainer);
}

bool TRQGenericForm::keyPressed (const juce::KeyPress& key)
{
    if (key == juce::KeyPress::returnKey)
    {
        submit();
        return true;
    }
    if (key == juce::KeyPress::escapeKey)
    {
        cancel();
        return true;
    }
    return false;
}

std::unique_ptr<juce::ComponentTraverser> TRQGenericForm::createKeyboardFocusTraverser()
{
    return std::make_unique<GenericFormFocusTraverser> ([this] { return fields; });
}
