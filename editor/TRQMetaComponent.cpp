#include "editor/TRQMetaComponent.h"

#include "editor/TRQControl.h"

void TRQMetaComponent::addChild (std::shared_ptr<juce::Component> child, bool makeVisible)
{
    if (makeVisible)
        addAndMakeVisible (*child);
    else
        addChildComponent (*child);
    children.push_back (std::move (child));
}

void TRQMetaComponent::resized()
{
    for (auto& child : children)
        child->resized();
}

void TRQMetaComponent::refresh (bool force)
{
    for (auto& child : children)
        if (auto* control = dynamic_cast<TRQControl*> (child.get()))
            control->refresh (force);
}
