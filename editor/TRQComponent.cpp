#include "editor/TRQComponent.h"

void TRQComponent::mouseDown (const juce::MouseEvent& e)
{
    if (auto* parent = getParentComponent())
        parent->mouseDown (e.getEventRelativeTo (parent));
}

bool TRQComponent::isEffectivelyEnabled() const
{
    for (auto* c = static_cast<const juce::Component*> (this); c != nullptr; c = c->getParentComponent())
        if (!c->isEnabled())
            return false;
    return true;
}

void TRQComponent::enablementChanged()
{
    if (onEnablementChanged)
        onEnablementChanged();
}
