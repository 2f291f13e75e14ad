#include "editor/TRQTextButtonRow.h"

TRQTextButtonRow::TRQTextButtonRow (int spacing)
    : gap (spacing)
{
}

void TRQTextButtonRow::addButton (std::shared_ptr<TRQTextButton> button)
{
    buttons.push_back (button);
    addChild (std::move (button), true);
    resized();
}

TRQTextButton* TRQTextButtonRow::getButton (size_t index) const
{
    return index < buttons.size() ? buttons[index].get() : nullptr;
}

void TRQTextButtonRow::resized()
{
    if (buttons.empty())
        return;
    const int n = (int)buttons.size();
    const int w = std::max (0, (getWidth() - gap * (n - 1)) / n);
    for (int i = 0; i < n; ++i)
        buttons[(size_t)i]->setBounds (i * (w + gap), 6, w, std::max (0, getHeight() - 12));
}
