#pragma once

#include "editor/TRQComponent.h"
#include "editor/TRQDrawing.h"
#include "state/TRQSignals.h"

#include <array>
#include <memory>

class TRQParameterGestures;
class TRQTextButton;

// The small floating switch over the centre strip: one button per option of the
// noise level, the option the level holds lit, on a light panel with a shadow.
class TRQHUDControl : public TRQComponent, public TRQSignals::Trackable
{
public:
    struct Option
    {
        float value;
        const char* name;
    };

    static constexpr int parameterIndex = 13;
    static constexpr int optionCount = 2;
    static const std::array<Option, optionCount> options;
    // The panel on the canvas; the component is a little larger for its shadow.
    static const juce::Rectangle<int> panelArea;

    explicit TRQHUDControl (TRQParameterGestures& gestures);
    ~TRQHUDControl() override;

    // The option whose value the parameter holds, or -1.
    static int optionFor (float real);
    // Selects the option for a new value; true when the selection changed.
    bool parameterChanged (float real);
    int getSelectedOption() const { return selected; }
    TRQTextButton& getButton (int option) const { return *buttons[(size_t)option]; }

    void setLanguageAndStyle (int language, int style);
    void refresh (bool force);
    void paint (juce::Graphics& g) override;
    void resized() override;
    bool hitTest (int x, int y) override;

private:
    void showSelection();
    juce::Rectangle<float> localPanel() const;

    TRQParameterGestures& gestures;
    TRQDrawing drawing;
    std::array<std::unique_ptr<TRQTextButton>, optionCount> buttons;
    int selected = 0;
    int language = 0;
    int style = 0;
    bool dirty = true;
};
