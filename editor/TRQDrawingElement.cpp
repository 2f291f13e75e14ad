#include "editor/TRQDrawingElement.h"

void TRQDrawingElement::paint (juce::Graphics& g) const
{
    if (!hasShadow)
    {
        g.setFillType (fill);
        g.fillPath (path);
    }
    else
    {
        // The shadow-casting shapes lie outside their clip on purpose: only the
        // blurred edge is meant to land on the panel.
        const bool clipped = shadowClip.getWidth() > 0 && shadowClip.getHeight() > 0;
        if (clipped)
        {
            g.saveState();
            g.reduceClipRegion (shadowClip);
        }
        g.setFillType (fill);
        g.fillPath (path);
        shadow.drawForPath (g, path);
        if (clipped)
            g.restoreState();
    }

    if (hasStroke)
    {
        g.setColour (strokeColour);
        g.strokePath (path, juce::PathStrokeType (strokeThickness));
    }
}
