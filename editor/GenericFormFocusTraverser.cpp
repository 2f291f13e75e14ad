#include "editor/GenericFormFocusTraverser.h"

GenericFormFocusTraverser::GenericFormFocusTraverser (Fields list)
    : fields (std::move (list))
{
}

bool GenericFormFocusTraverser::accepts (juce::Component* c)
{
    return c != nullptr && c->isShowing() && c->isEnabled() && c->getWantsKeyboardFocus();
}

juce::Component* GenericFormFocusTraverser::getDefaultComponent (juce::Component*)
{
    for (auto* c : fields())
        if (accepts (c))
            return c;
    return nullptr;
}

juce::Component* GenericFormFocusTraverser::step (juce::Component* current, int direction)
{
    const auto list = fields();
    const int n = (int)list.size();
    if (n == 0)
        return nullptr;
    int at = -1;
    for (int i = 0; i < n; ++i)
        if (list[(size_t)i] == current || (current != nullptr && list[(size_t)i]->isParentOf (current)))
            at = i;
    if (at < 0)
        return getDefaultComponent (nullptr);
    for (int k = 1; k <= n; ++k)
    {
        auto* candidate = list[(size_t)(((at + direction * k) % n + n) % n)];
        if (accepts (candidate))
            return candidate;
    }
    return nullptr;
}

juce::Component* GenericFormFocusTraverser::getNextComponent (juce::Component* current)
{
    return step (current, 1);
}

juce::Component* GenericFormFocusTraverser::getPreviousComponent (juce::Component* current)
{
    return step (current, -1);
}

std::vector<juce::Component*> GenericFormFocusTraverser::getAllComponents (juce::Component*)
{
    std::vector<juce::Component*> result;
    for (auto* c : fields())
        if (accepts (c))
            result.push_back (c);
    return result;
}
