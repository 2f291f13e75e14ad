#include "editor/TRQToggle.h"

#include "state/TRQAudioParameter.h"

#include <cmath>

TRQToggle::TRQToggle (int index, TRQAudioParameter& p, TRQParameterGestures& g)
    : TRQControl (index, p, g)
{
    inputMode = 2;
    wraps = true;
}

juce::Rectangle<float> TRQToggle::optionArea (int option) const
{
    const auto& f = row.stateFrames[(size_t)option];
    return {f.x - row.frame.x, f.y - row.frame.y, f.width, f.height};
}

void TRQToggle::rebuildDrawing()
{
    optionLists.clear();
    for (int v = 0; v < optionCount(); ++v)
        optionLists.push_back (drawing.paramStringList (
            parameterIndex, v, static_cast<TRQLanguage::Language> (language), style));
    TRQControl::rebuildDrawing();
}

void TRQToggle::drawControl (juce::Graphics& g)
{
    const int selected = (int)std::lround (parameter.getRealValue() - row.min);
    for (int v = 0; v < (int)optionLists.size(); ++v)
    {
        const auto& list = optionLists[(size_t)v];
        const auto area = optionArea (v);
        if (row.toggleKind == 8 && v == selected)
        {
            g.setColour (controlColour().withAlpha (0.2f));
            g.fillRoundedRectangle (area, 3.0f);
        }
        if (list.isEmpty())
            continue;
        const auto b = list.elements.front().bounds;
        const auto at = juce::Rectangle<float> (b.getWidth(), b.getHeight()).withCentre (area.getCentre());
        juce::Graphics::ScopedSaveState save (g);
        g.addTransform (juce::AffineTransform::translation (at.getPosition()));
        if (v != selected)
            g.beginTransparencyLayer (0.3f);
        list.paint (g);
        if (v != selected)
            g.endTransparencyLayer();
    }
}

void TRQToggle::mouseDown (const juce::MouseEvent& e)
{
    if (handleMouseDown (e))
        return;
    if (resetOnAlt (e))
        return;
    if (optionCount() <= 1)
    {
        setUserValue (parameter.getValue() < 0.5f ? row.max : row.min, false);
        return;
    }
    for (int v = 0; v < optionCount(); ++v)
        if (optionArea (v).contains (e.position))
        {
            setUserValue (row.min + (float)v, false);
            return;
        }
}

void TRQToggle::paintValue (juce::Graphics& g, juce::Rectangle<float> area) const
{
    const int v = (int)std::lround (parameter.getRealValue() - row.min);
    if (v >= 0 && v < (int)optionLists.size())
        optionLists[(size_t)v].paintFitted (g, area);
}
