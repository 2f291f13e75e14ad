#include "core/TRQAudioProcessor.h"
#include "editor/TRQHUDControl.h"
#include "editor/TRQIndexedControl.h"
#include "editor/TRQKeyboardFocusTraverser.h"
#include "editor/TRQParameterGestures.h"
#include "editor/TRQSlider.h"
#include "editor/TRQTextButton.h"
#include "state/ParameterCatalogue.h"
#include "state/ParameterRange.h"
#include "state/TRQAudioParameter.h"

#include <gtest/gtest.h>

namespace
{
// Records what reaches the gesture door instead of the host.
class RecordingGestures : public TRQParameterGestures
{
public:
    using TRQParameterGestures::TRQParameterGestures;
    void begin (int index) override
    {
        log += "b" + std::to_string (index);
        TRQParameterGestures::begin (index);
    }
    void end (int index) override
    {
        log += "e" + std::to_string (index);
        TRQParameterGestures::end (index);
    }
    std::string log;
};

juce::MouseEvent pressAt (juce::Component& c, juce::Point<float> p, juce::ModifierKeys mods, int clicks = 1)
{
    auto source = juce::Desktop::getInstance().getMainMouseSource();
    const auto now = juce::Time::getCurrentTime();
    return juce::MouseEvent (source, p, mods.withFlags (juce::ModifierKeys::leftButtonModifier), 1.0f, 0.0f,
                             0.0f, 0.0f, 0.0f, &c, &c, now, p, now, clicks, false);
}
} // namespace

TEST (TRQControl, AltClickResetsInsideOneGesture)
{
    TRQAudioProcessor processor;
    RecordingGestures gestures (processor);
    TRQSlider slider (1, processor.getAudioParameter (1), gestures);
    slider.setBounds (0, 36, 79, 254);
    processor.getAudioParameter (1).setValueNotifyingHost (toNormalised (1, 6.0f));
    slider.mouseDown (pressAt (slider, {39.0f, 200.0f}, juce::ModifierKeys::altModifier));
    slider.mouseUp (pressAt (slider, {39.0f, 200.0f}, {}));
    EXPECT_FLOAT_EQ (processor.getAudioParameter (1).getRealValue(), 0.0f);
    EXPECT_EQ (gestures.log, "b1e1");
}

TEST (TRQControl, WrappingSwitchStepsRoundAndDigitsPickStates)
{
    TRQAudioProcessor processor;
    RecordingGestures gestures (processor);
    TRQIndexedControl speed (11, processor.getAudioParameter (11), gestures);
    processor.getAudioParameter (11).setValueNotifyingHost (toNormalised (11, 2.0f));
    speed.stepUp ({}, true);
    EXPECT_FLOAT_EQ (processor.getAudioParameter (11).getRealValue(), 0.0f);
    speed.stepDown ({}, true);
    EXPECT_FLOAT_EQ (processor.getAudioParameter (11).getRealValue(), 2.0f);
    speed.keyPressed (juce::KeyPress ('1', {}, '1'));
    EXPECT_FLOAT_EQ (processor.getAudioParameter (11).getRealValue(), 0.0f);
    speed.keyPressed (juce::KeyPress ('2', {}, '2'));
    EXPECT_FLOAT_EQ (processor.getAudioParameter (11).getRealValue(), 1.0f);
    // Every step is a whole gesture of its own.
    EXPECT_EQ (gestures.log, "b11e11b11e11b11e11b11e11");
}

TEST (TRQControl, TypedTextCommitsSnappedAndClamped)
{
    TRQAudioProcessor processor;
    RecordingGestures gestures (processor);
    TRQSlider slider (1, processor.getAudioParameter (1), gestures);
    for (auto ch : juce::String ("1/4"))
        slider.keyPressed (juce::KeyPress (ch, {}, ch));
    slider.keyPressed (juce::KeyPress (juce::KeyPress::returnKey));
    // A quarter, rounded half up to the fine grid of 0.1 dB.
    EXPECT_NEAR (processor.getAudioParameter (1).getRealValue(), 0.3f, 1e-4f);
    for (auto ch : juce::String ("2k"))
        slider.keyPressed (juce::KeyPress (ch, {}, ch));
    slider.keyPressed (juce::KeyPress (juce::KeyPress::returnKey));
    EXPECT_FLOAT_EQ (processor.getAudioParameter (1).getRealValue(), 12.0f);
    // Letters outside the number set are not taken; backspace drops the last one.
    for (auto ch : juce::String ("-q3"))
        slider.keyPressed (juce::KeyPress (ch, {}, ch));
    EXPECT_EQ (slider.getTypedText(), "-3");
    slider.keyPressed (juce::KeyPress (juce::KeyPress::backspaceKey));
    EXPECT_EQ (slider.getTypedText(), "-");
}

TEST (TRQControl, TheLockMarkNeedsALockableRow)
{
    TRQAudioProcessor processor;
    TRQParameterGestures gestures (processor);
    TRQIndexedControl power (0, processor.getAudioParameter (0), gestures);
    TRQSlider input (1, processor.getAudioParameter (1), gestures);
    power.setLocked (true);
    input.setLocked (true);
    EXPECT_FALSE (power.isLocked());
    EXPECT_TRUE (input.isLocked());
}

TEST (TRQHUDControl, OptionsFollowTheNoiseLevel)
{
    EXPECT_EQ (TRQHUDControl::optionFor (0.0f), 0);
    EXPECT_EQ (TRQHUDControl::optionFor (-96.0f), 1);
    EXPECT_EQ (TRQHUDControl::optionFor (-12.0f), -1);
    TRQAudioProcessor processor;
    RecordingGestures gestures (processor);
    TRQHUDControl hud (gestures);
    EXPECT_TRUE (hud.parameterChanged (-96.0f));
    EXPECT_EQ (hud.getSelectedOption(), 1);
    EXPECT_FALSE (hud.parameterChanged (-96.0f));
    EXPECT_EQ (hud.getButton (1).getState(), 1);
    EXPECT_EQ (hud.getButton (0).getState(), 0);

    // One button per option, each setting its own value in a gesture; a press on the
    // lit one changes nothing and leaves it lit.
    hud.getButton (0).click();
    EXPECT_FLOAT_EQ (processor.getAudioParameter (13).getRealValue(), 0.0f);
    EXPECT_EQ (gestures.log, "b13e13");
    hud.getButton (1).click();
    hud.getButton (1).click();
    EXPECT_FLOAT_EQ (processor.getAudioParameter (13).getRealValue(), -96.0f);
    hud.parameterChanged (-96.0f);
    EXPECT_EQ (hud.getButton (1).getState(), 1);
    EXPECT_EQ (hud.getButton (0).getState(), 0);
}

TEST (TRQKeyboardFocusTraverser, TabOrderComesFromTheCatalogue)
{
    const auto& order = TRQKeyboardFocusTraverser::tabOrder();
    for (int tab = 0; tab < 21; ++tab)
        EXPECT_EQ ((int)ParameterCatalogue::row ((ParameterId)order[(size_t)tab]).order, tab);
    EXPECT_EQ (order[0], 1);   // Input Gain first
    EXPECT_EQ (order[20], 16); // HQ Mode last
}

TEST (TRQControl, DoubleClickEntryTakesFocusOnlyOnADoubleClick)
{
    TRQAudioProcessor processor;
    RecordingGestures gestures (processor);
    TRQSlider slider (2, processor.getAudioParameter (2), gestures);
    slider.setBounds (79, 36, 79, 254);
    slider.setDoubleClickKeyEntry (true);
    EXPECT_FALSE (slider.getWantsKeyboardFocus());
    slider.mouseDown (pressAt (slider, {39.0f, 30.0f}, {}, 2));
    EXPECT_TRUE (slider.getWantsKeyboardFocus());
    // The double-click neither moved the value nor opened a gesture.
    EXPECT_EQ (gestures.log, "");
}

TEST (TRQSlider, CtrlDragMovesOneFineStepPerThreeStepLengths)
{
    TRQAudioProcessor processor;
    RecordingGestures gestures (processor);
    TRQSlider slider (1, processor.getAudioParameter (1), gestures);
    slider.setBounds (0, 36, 79, 254);
    const auto thumb = slider.thumbCentreFor (slider.getNormalisedValue());
    const juce::ModifierKeys ctrl (juce::ModifierKeys::ctrlModifier);
    slider.mouseDown (pressAt (slider, thumb, ctrl));
    // A step of 0.1 dB covers less than a unit of the track, so each step takes
    // three units: thirty units up are ten steps.
    slider.mouseDrag (pressAt (slider, thumb + juce::Point<float> (0.0f, -30.0f), ctrl));
    EXPECT_NEAR (processor.getAudioParameter (1).getRealValue(), 1.0f, 1e-4f);
    slider.mouseUp (pressAt (slider, thumb, {}));

    // The plain law: the whole track is the whole range.
    const auto from = slider.thumbCentreFor (toNormalised (1, 1.0f));
    slider.mouseDown (pressAt (slider, from, {}));
    slider.mouseDrag (pressAt (slider, from + juce::Point<float> (0.0f, 218.0f / 36.0f * 5.0f), {}));
    EXPECT_NEAR (processor.getAudioParameter (1).getRealValue(), -4.0f, 1e-4f);
    slider.mouseUp (pressAt (slider, from, {}));
    EXPECT_EQ (gestures.log, "b1e1b1e1");
}

TEST (TRQSlider, TheSmallestWheelMotionMovesOneStep)
{
    TRQAudioProcessor processor;
    RecordingGestures gestures (processor);
    TRQSlider slider (4, processor.getAudioParameter (4), gestures);
    const float before = processor.getAudioParameter (4).getRealValue();
    juce::MouseWheelDetails wheel{0.0f, 0.001f, false, false, false};
    slider.mouseWheelMove (pressAt (slider, {10.0f, 10.0f}, {}), wheel);
    EXPECT_FLOAT_EQ (processor.getAudioParameter (4).getRealValue(), before + 1.0f);
    EXPECT_EQ (gestures.log, "b4e4");
}
