#include "editor/DraggableElement.h"

DraggableElement::DraggableElement()
{
    setInterceptsMouseClicks (false, false);
}

void DraggableElement::begin (int rowIndex, const juce::Image& snapshot, int height, int count)
{
    dragIndex = rowIndex;
    image = snapshot;
    rowHeight = std::max (1, height);
    rowCount = count;
    mouseY = (float)(rowIndex * rowHeight) + (float)rowHeight * 0.5f;
    toFront (false);
    repaint();
}

int DraggableElement::slotFor (float y) const
{
    return juce::jlimit (0, rowCount, juce::roundToInt (y / (float)rowHeight));
}

void DraggableElement::dragTo (float y)
{
    mouseY = y;
    repaint();
}

int DraggableElement::end()
{
    const int slot = dragIndex >= 0 ? slotFor (mouseY) : -1;
    dragIndex = -1;
    image = {};
    repaint();
    return slot;
}

void DraggableElement::paint (juce::Graphics& g)
{
    if (dragIndex < 0)
        return;
    const auto slotY = (float)(slotFor (mouseY) * rowHeight);
    g.setColour (juce::Colour::fromFloatRGBA (0.7607843f, 0.30588236f, 0.32941177f, 1.0f));
    g.fillRect (4.0f, slotY - 1.0f, (float)getWidth() - 8.0f, 2.0f);
    if (image.isValid())
    {
        g.setOpacity (0.8f);
        g.drawImage (image, juce::Rectangle<float> (0.0f, mouseY - (float)rowHeight * 0.5f, (float)getWidth(),
                                                    (float)rowHeight));
    }
}
