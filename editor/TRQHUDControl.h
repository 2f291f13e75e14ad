#pragma once

#include "editor/TRQComponent.h"
#include "editor/TRQDrawing.h"
#include "state/TRQSignals.h"

class TRQParameterGestures;

// The small floating switch over the centre pane: the noise on or off at a click.
class TRQHUDControl : public TRQComponent, public TRQSignals::Trackable
{
public:
    struct Option
    {
        float value;
    };

    static constexpr int parameterIndex = 13;

    explicit TRQHUDControl (TRQParameterGestures& gestures);

    // The option whose value the parameter holds, or -1.
    static int optionFor (float real);
    // Selects the option for a new value; true when the selection changed.
    bool parameterChanged (float real);
    int getSelectedOption() const { return selected; }

    void setLanguageAndStyle (int language, int style);
    void refresh (bool force);
    void paint (juce::Graphics& g) override;
    void mouseDown (const juce::MouseEvent& e) override;

private:
    TRQParameterGestures& gestures;
    TRQDrawing drawing;
    std::vector<TRQDrawingList> optionLists;
    int selected = 0;
    int style = 0;
    bool dirty = true;
};
