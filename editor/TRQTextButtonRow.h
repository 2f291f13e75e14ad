#pragma once

#include "editor/TRQMetaComponent.h"
#include "editor/TRQTextButton.h"

// A horizontal row of buttons sharing its width equally, with a gap between them.
class TRQTextButtonRow : public TRQMetaComponent
{
public:
    explicit TRQTextButtonRow (int gap = 8);

    void addButton (std::shared_ptr<TRQTextButton> button);
    TRQTextButton* getButton (size_t index) const;
    size_t size() const { return buttons.size(); }
    void resized() override;

private:
    std::vector<std::shared_ptr<TRQTextButton>> buttons;
    int gap;
};
