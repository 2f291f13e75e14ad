#include "editor/TRQDrawableCustomComponent.h"

namespace
{
// The tick column of a text item: 1.2 font heights, the font being 0.7 of the item.
int tickColumnWidth (int itemHeight)
{
    return juce::roundToInt ((float)itemHeight * 0.7f * 1.2f);
}
} // namespace

TRQDrawableCustomComponent::TRQDrawableCustomComponent (TRQDrawingList list, juce::Rectangle<float> frame)
    : juce::PopupMenu::CustomComponent (true)
    , shapes (std::move (list))
    , box (frame)
{
}

void TRQDrawableCustomComponent::getIdealSize (int& idealWidth, int& idealHeight)
{
    idealHeight = standardHeight;
    const float scale = (float)standardHeight / juce::jmax (1.0f, box.getHeight());
    idealWidth = tickColumnWidth (standardHeight) + juce::roundToInt (box.getWidth() * scale) + 12;
}

void TRQDrawableCustomComponent::paint (juce::Graphics& g)
{
    auto& lf = getLookAndFeel();
    auto r = getLocalBounds().reduced (1);
    const auto* item = getItem();
    const bool active = item == nullptr || item->isEnabled;
    if (isItemHighlighted() && active)
    {
        g.setColour (lf.findColour (juce::PopupMenu::highlightedBackgroundColourId));
        g.fillRect (r);
    }

    auto tickArea = r.removeFromLeft (tickColumnWidth (getHeight())).reduced (3).toFloat();
    if (item != nullptr && item->isTicked)
    {
        const auto tick = lf.getTickShape (1.0f);
        g.setColour (lf.findColour (juce::PopupMenu::textColourId));
        g.fillPath (tick, tick.getTransformToScaleToFit (tickArea.reduced (tickArea.getWidth() / 5), true));
    }

    const float scale = (float)r.getHeight() / juce::jmax (1.0f, box.getHeight());
    juce::Graphics::ScopedSaveState state (g);
    g.reduceClipRegion (r);
    g.addTransform (juce::AffineTransform::translation (-box.getX(), -box.getY())
                        .scaled (scale)
                        .translated ((float)r.getX(), (float)r.getY()));
    shapes.paint (g);
}
