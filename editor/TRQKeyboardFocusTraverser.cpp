#include "editor/TRQKeyboardFocusTraverser.h"

#include "editor/TRQControl.h"
#include "state/ParameterCatalogue.h"

const std::array<int, 21>& TRQKeyboardFocusTraverser::tabOrder()
{
    static const auto order = []
    {
        std::array<int, 21> table{};
        for (const auto& row : ParameterCatalogue::rows())
            table[row.order % 21] = (int)row.id;
        return table;
    }();
    return order;
}

TRQKeyboardFocusTraverser::TRQKeyboardFocusTraverser (const std::vector<std::shared_ptr<TRQControl>>& c,
                                                      std::function<bool()> open)
    : controls (c)
    , advancedPaneOpen (std::move (open))
{
}

bool TRQKeyboardFocusTraverser::isCandidate (int parameter) const
{
    const auto& control = controls[(size_t)parameter];
    if (control == nullptr)
        return false;
    if (control->getRow().pane == 2 && !advancedPaneOpen())
        return false;
    return control->isEnabled() && control->isVisible();
}

juce::Component* TRQKeyboardFocusTraverser::walk (juce::Component* current, int direction)
{
    auto* control = dynamic_cast<TRQControl*> (current);
    if (control == nullptr)
        return controls.empty() ? nullptr : controls.front().get();
    int tab = (int)control->getRow().order;
    for (int tries = 0; tries < 21; ++tries)
    {
        tab = (tab + direction + 21) % 21;
        const int candidate = tabOrder()[(size_t)tab];
        if (!isCandidate (candidate))
            continue;
        auto* next = controls[(size_t)candidate].get();
        return next->getWantsKeyboardFocus() ? next : nullptr;
    }
    return nullptr;
}

juce::Component* TRQKeyboardFocusTraverser::getDefaultComponent (juce::Component*)
{
    const int first = tabOrder()[0];
    return (size_t)first < controls.size() ? controls[(size_t)first].get() : nullptr;
}

juce::Component* TRQKeyboardFocusTraverser::getNextComponent (juce::Component* current)
{
    return walk (current, 1);
}

juce::Component* TRQKeyboardFocusTraverser::getPreviousComponent (juce::Component* current)
{
    return walk (current, -1);
}

std::vector<juce::Component*> TRQKeyboardFocusTraverser::getAllComponents (juce::Component*)
{
    std::vector<juce::Component*> all;
    for (int parameter : tabOrder())
        if (isCandidate (parameter))
            all.push_back (controls[(size_t)parameter].get());
    return all;
}
