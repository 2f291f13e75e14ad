#include "editor/TRQHeaderElement.h"

#include "editor/TRQFontFallback.h"
#include "editor/TRQLookAndFeel.h"

TRQHeaderElement::TRQHeaderElement (unsigned section, const juce::String& sectionTitle, bool isOpen,
                                    bool canMove)
    : sectionIndex (section)
    , title (sectionTitle)
    , open (isOpen)
    , movable (canMove)
    , draggable (std::make_shared<DraggableElement>())
{
    addChild (draggable, true);
}

void TRQHeaderElement::addRow (std::shared_ptr<TRQPresetElement> row)
{
    row->setStyle (style);
    rows.push_back (row);
    addChild (row, open);
    draggable->toFront (false);
}

void TRQHeaderElement::setOpen (bool shouldBeOpen)
{
    open = shouldBeOpen;
    for (auto& row : rows)
        row->setVisible (open);
    setSize (getWidth(), preferredHeight());
}

int TRQHeaderElement::preferredHeight() const
{
    return headingHeight + (open ? (int)rows.size() * TRQPresetElement::rowHeight : 0);
}

void TRQHeaderElement::setStyle (int newStyle)
{
    style = newStyle;
    for (auto& row : rows)
        row->setStyle (style);
    repaint();
}

void TRQHeaderElement::resized()
{
    int y = headingHeight;
    for (auto& row : rows)
    {
        row->setBounds (0, y, getWidth(), TRQPresetElement::rowHeight);
        y += TRQPresetElement::rowHeight;
    }
    draggable->setBounds (0, headingHeight, getWidth(), std::max (0, getHeight() - headingHeight));
}

void TRQHeaderElement::paint (juce::Graphics& g)
{
    const auto ink = style == 1 ? juce::Colours::white.withAlpha (0.88f) : juce::Colour (0xff2a2a2a);
    g.setColour (ink.withAlpha (0.07f));
    g.fillRect (0, 0, getWidth(), headingHeight);
    g.setColour (ink.withAlpha (0.7f));
    juce::Path arrow;
    if (open)
        arrow.addTriangle (8.0f, 8.0f, 16.0f, 8.0f, 12.0f, 13.0f);
    else
        arrow.addTriangle (10.0f, 6.0f, 15.0f, 10.0f, 10.0f, 14.0f);
    g.fillPath (arrow);
    g.setColour (ink);
    g.setFont (TRQFontFallback::fontFor (title, juce::Font (TRQLookAndFeel::textFamily, "Regular", 14.0f)));
    g.drawText (title, 24, 0, getWidth() - 32, headingHeight, juce::Justification::centredLeft, true);
}

void TRQHeaderElement::mouseDown (const juce::MouseEvent& e)
{
    if (e.y >= headingHeight || e.mods.isPopupMenu())
    {
        TRQComponent::mouseDown (e);
        return;
    }
    setOpen (!open);
    toggled.emit (sectionIndex, open);
}

bool TRQHeaderElement::beginRowDrag (TRQPresetElement& row)
{
    if (!movable || rows.size() < 2)
        return false;
    const auto found = std::find_if (rows.begin(), rows.end(), [&] (auto& r) { return r.get() == &row; });
    if (found == rows.end())
        return false;
    const float scale = juce::Component::getApproximateScaleFactorForComponent (&row);
    const auto snapshot = row.createComponentSnapshot (row.getLocalBounds(), true, scale);
    draggable->begin ((int)std::distance (rows.begin(), found), snapshot, TRQPresetElement::rowHeight,
                      (int)rows.size());
    return true;
}

void TRQHeaderElement::dragRowTo (float yInHeader)
{
    draggable->dragTo (yInHeader - (float)headingHeight);
}

void TRQHeaderElement::dropRow()
{
    const int from = draggable->getDragIndex();
    const int slot = draggable->end();
    if (from < 0 || slot < 0)
        return;
    const int position = slot > from ? slot - 1 : slot;
    if (position != from)
        moved.emit (rows[(size_t)from]->getPresetIndex(), (std::uint32_t)position);
}
