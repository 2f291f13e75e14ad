#include "editor/TRQTransientValueView.h"

#include "editor/TRQControl.h"

TRQTransientValueView::TRQTransientValueView()
{
    setInterceptsMouseClicks (false, false);
    setBounds (panelArea().expanded ((float)shadowMargin).toNearestInt());
}

void TRQTransientValueView::show (const std::shared_ptr<TRQControl>& control)
{
    if (control == nullptr)
        return;
    // Several hidden controls changing at once is a preset, an undo or an A/B
    // switch: no one value tells what happened, so none is shown.
    const double now = juce::Time::getMillisecondCounterHiRes();
    const auto previous = source.lock();
    const bool together = previous != nullptr && previous != control && now - lastShowMs < togetherMs;
    lastShowMs = now;
    if (together || (previous == nullptr && now - lastTogetherMs < togetherMs))
    {
        lastTogetherMs = now;
        stop();
        return;
    }
    control->showTransientValue();
    source = control;
    setVisible (true);
    toFront (false);
    repaint();
    if (!isTimerRunning())
        startTimerHz (60);
}

TRQControl* TRQTransientValueView::getSource() const
{
    return source.lock().get();
}

void TRQTransientValueView::stop()
{
    if (const auto control = source.lock())
        control->endTransientValue();
    stopTimer();
    source.reset();
    setVisible (false);
}

bool TRQTransientValueView::isSeen (const juce::Component& component)
{
    // Visibility up the tree only: isShowing() would also ask the window system.
    for (auto* c = &component; c != nullptr; c = c->getParentComponent())
        if (!c->isVisible())
            return false;
    return true;
}

void TRQTransientValueView::timerCallback()
{
    const auto control = source.lock();
    // Done, or the control can be seen again (its pane opened).
    if (control == nullptr || !control->isShowingTransientValue() || isSeen (*control))
    {
        stop();
        return;
    }
    repaint();
}

void TRQTransientValueView::paint (juce::Graphics& g)
{
    const auto control = source.lock();
    if (control == nullptr)
        return;
    const float alpha = control->transientValueAlpha();
    if (alpha <= 0.0f)
        return;
    const bool dark = control->getStyle() == 1;
    const auto panel = getLocalBounds().toFloat().reduced ((float)shadowMargin);
    juce::Path outline;
    outline.addRoundedRectangle (panel, 4.0f);

    g.beginTransparencyLayer (alpha);
    juce::DropShadow (juce::Colours::black.withAlpha (dark ? 0.5f : 0.25f), 8, {0, 2})
        .drawForPath (g, outline);
    g.setColour (dark ? juce::Colour (0xff2b2b2b) : juce::Colours::white);
    g.fillPath (outline);
    g.setColour (dark ? juce::Colours::white.withAlpha (0.2f) : juce::Colours::black.withAlpha (0.12f));
    g.strokePath (outline, juce::PathStrokeType (1.0f));
    control->getLabelList().paintFitted (g,
                                         panel.withTrimmedTop (5.0f).withHeight (20.0f).reduced (8.0f, 0.0f));
    control->paintValue (g, panel.withTrimmedTop (27.0f).withHeight (22.0f).reduced (8.0f, 0.0f));
    g.endTransparencyLayer();
}
