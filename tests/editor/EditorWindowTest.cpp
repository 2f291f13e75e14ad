#include "editor/EditorWindowSupport.h"

#include "core/TRQAudioProcessor.h"
#include "editor/TRQAudioProcessorEditor.h"
#include "editor/TRQControl.h"
#include "editor/TRQEditorGLState.h"
#include "editor/TRQHUDControl.h"
#include "editor/TRQLookAndFeel.h"
#include "editor/TRQParameterGestures.h"
#include "editor/TRQSlider.h"
#include "editor/TRQTaskButtons.h"
#include "editor/TRQTextButton.h"
#include "editor/TRQToolbar.h"
#include "editor/TRQTooltipWindow.h"
#include "meters/MeterMessaging.h"
#include "state/ParameterRange.h"
#include "state/TRQAudioParameter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <optional>
#include <thread>

using namespace EditorWindowSupport;

namespace
{
class GestureCounter : public juce::AudioProcessorListener
{
public:
    void audioProcessorParameterChanged (juce::AudioProcessor*, int, float) override {}
    void audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails&) override {}
    void audioProcessorParameterChangeGestureBegin (juce::AudioProcessor*, int) override { ++begins; }
    void audioProcessorParameterChangeGestureEnd (juce::AudioProcessor*, int) override { ++ends; }
    int begins = 0, ends = 0;
};

juce::Colour pixelAt (const juce::Image& shot, TRQAudioProcessorEditor& editor, juce::Point<float> canvas)
{
    const auto p = canvasToEditor (editor, canvas).roundToInt();
    return shot.getPixelAt (p.x, p.y);
}

float brightness (juce::Colour c)
{
    return (c.getFloatRed() + c.getFloatGreen() + c.getFloatBlue()) / 3.0f;
}

bool isReddish (juce::Colour c)
{
    return c.getFloatRed() > c.getFloatGreen() + 0.2f && c.getFloatRed() > c.getFloatBlue() + 0.2f;
}

class EditorWindow : public WindowTest
{
};
} // namespace

// Every size, both styles, the advanced pane both ways: the artwork is where it
// belongs and the right colour, GL or not.
TEST_F (EditorWindow, ArtworkAtEverySizeAndStyle)
{
    TRQAudioProcessor processor;
    for (int percent : {80, 100, 140, 200})
        for (int style : {0, 1})
            for (bool advanced : {false, true})
            {
                prefs->setInt ("UIScale", percent);
                prefs->setInt ("DarkMode", style);
                prefs->setInt ("AlwaysOpenAdvPane", 0);
                processor.getPluginState().setAdvancedPaneIsOpen (advanced);
                auto opened = open (processor, prefs);
                auto& editor = *opened.editor;
                pump (150);
                const int base = advanced ? 793 : 457;
                EXPECT_EQ (editor.getWidth(), (int)std::floor ((float)percent * 0.01f * (float)base));
                if (expectsGL())
                    EXPECT_EQ (editor.getGLStatus(), TRQAudioProcessorEditor::glGood);
                else
                {
                    EXPECT_EQ (editor.getGLStatus(), TRQAudioProcessorEditor::glFailed);
                    EXPECT_TRUE (editor.getLayout().isVisible());
                }
                const auto shot = capture (editor);
                ASSERT_TRUE (shot.isValid());
                save (shot, juce::String ("editor-") + juce::String (percent) +
                                (style == 1 ? "-dark" : "-light") + (advanced ? "-open" : "-closed"));
                // Blank panel under the Mix caption, and the red
                // centre strip.
                const auto panel = pixelAt (shot, editor, {20.0f, 338.0f});
                if (style == 1)
                    EXPECT_LT (brightness (panel), 0.3f) << percent;
                else
                    EXPECT_GT (brightness (panel), 0.9f) << percent;
                EXPECT_TRUE (isReddish (pixelAt (shot, editor, {400.0f, 100.0f}))) << percent;
                if (advanced)
                {
                    const auto advancedPanel = pixelAt (shot, editor, {700.0f, 270.0f});
                    EXPECT_EQ (brightness (advancedPanel) > 0.5f, style == 0) << percent;
                }
            }
}

namespace
{
// The centre of a vertical fader's thumb at a normalised value, in canvas units.
juce::Point<float> thumbAt (const TRQControl& control, float normalised)
{
    const auto& row = control.getRow();
    return {row.frame.x + row.innerFrame.x + row.innerFrame.width * 0.5f,
            row.frame.y + row.innerFrame.y + (1.0f - normalised) * row.innerFrame.height};
}

float realOf (TRQAudioProcessor& processor, int index)
{
    return processor.getAudioParameter (index).getRealValue();
}
} // namespace

// Mouse, wheel and keyboard through the window, each change inside a host gesture.
TEST_F (EditorWindow, ControlsTakeEveryInput)
{
    TRQAudioProcessor processor;
    GestureCounter counter;
    processor.addListener (&counter);
    processor.getPluginState().setAdvancedPaneIsOpen (true);
    auto opened = open (processor, prefs);
    auto& editor = *opened.editor;
    pump (100);
    auto& input = *editor.getControl (1);
    const float startNorm = input.getNormalisedValue();

    // Plain drag: half the track is half the range.
    const auto from = thumbAt (input, startNorm);
    mouseDown (editor, from);
    mouseDrag (editor, from + juce::Point<float> (0.0f, 50.0f));
    mouseDrag (editor, from + juce::Point<float> (0.0f, 109.0f));
    mouseUp (editor, from + juce::Point<float> (0.0f, 109.0f));
    EXPECT_NEAR (realOf (processor, 1), -18.0f, 0.01f);
    EXPECT_EQ (counter.begins, counter.ends);
    EXPECT_GE (counter.begins, 1);
    EXPECT_EQ (editor.getGestures().openGestures(), 0);

    // Ctrl-drag of one pixel does nothing.
    const auto here = thumbAt (input, toNormalised (1, -18.0f));
    mouseDown (editor, here, juce::ModifierKeys::ctrlModifier);
    mouseDrag (editor, here + juce::Point<float> (0.0f, -1.0f), juce::ModifierKeys::ctrlModifier);
    mouseUp (editor, here + juce::Point<float> (0.0f, -1.0f), juce::ModifierKeys::ctrlModifier);
    EXPECT_NEAR (realOf (processor, 1), -18.0f, 0.01f);

    // Alt-click resets, and the host's shortcut stays out of it.
    juce::ModifierKeys::currentModifiers = juce::ModifierKeys::altModifier;
    EXPECT_EQ (editor.getControlParameterIndex (input), -1);
    juce::ModifierKeys::currentModifiers = {};
    EXPECT_EQ (editor.getControlParameterIndex (input), 1);
    mouseDown (editor, here, juce::ModifierKeys::altModifier);
    mouseUp (editor, here, juce::ModifierKeys::altModifier);
    EXPECT_NEAR (realOf (processor, 1), 0.0f, 0.01f);

    // A press on the track jumps the thumb there: the top is the maximum.
    mouseDown (editor, thumbAt (input, 1.0f));
    mouseUp (editor, thumbAt (input, 1.0f));
    EXPECT_NEAR (realOf (processor, 1), 12.0f, 0.01f);

    // The smallest wheel motion still moves one step.
    editor.getControl (2)->grabKeyboardFocus();
    const float compression = realOf (processor, 2);
    wheel (editor, thumbAt (*editor.getControl (2), editor.getControl (2)->getNormalisedValue()), 0.01f);
    EXPECT_NEAR (realOf (processor, 2), compression + 1.0f, 0.01f);

    // Typed values, arrows and big steps.
    input.grabKeyboardFocus();
    pump (30);
    EXPECT_EQ (typeText (editor, "-6", input), "-6");
    key (editor, juce::KeyPress (juce::KeyPress::returnKey), &input);
    EXPECT_NEAR (realOf (processor, 1), -6.0f, 0.01f);
    key (editor, juce::KeyPress (juce::KeyPress::upKey), &input);
    EXPECT_NEAR (realOf (processor, 1), -5.5f, 0.01f);
    key (editor, juce::KeyPress (juce::KeyPress::upKey, juce::ModifierKeys::shiftModifier, 0), &input);
    EXPECT_NEAR (realOf (processor, 1), -3.0f, 0.01f);
    EXPECT_EQ (typeText (editor, "2k", input), "2k");
    key (editor, juce::KeyPress (juce::KeyPress::escapeKey), &input);
    EXPECT_NEAR (realOf (processor, 1), -3.0f, 0.01f);
    EXPECT_EQ (counter.begins, counter.ends);

    // "a" and "A" ask for the A/B actions.
    std::vector<int> actions;
    editor.getGestures().onABAction = [&actions] (int a) { actions.push_back (a); };
    input.grabKeyboardFocus();
    key (editor, juce::KeyPress ('a', {}, 'a'), &input);
    key (editor, juce::KeyPress ('A', juce::ModifierKeys::shiftModifier, 'A'), &input);
    EXPECT_EQ (actions, (std::vector<int>{0, 1}));

    // Tab walks the catalogue's order; the backtick walks back.
    EXPECT_EQ (key (editor, juce::KeyPress (juce::KeyPress::tabKey), &input), editor.getControl (2));
    EXPECT_EQ (key (editor, juce::KeyPress ('`', {}, '`'), editor.getControl (2)), editor.getControl (1));
    pump (100);
    save (capture (editor), "editor-focus-ring");

    // A digit picks a state of a switch; "1" and "0" both the first.
    key (editor, juce::KeyPress ('3', {}, '3'), editor.getControl (11));
    EXPECT_NEAR (realOf (processor, 11), 2.0f, 0.01f);
    key (editor, juce::KeyPress ('0', {}, '0'), editor.getControl (11));
    EXPECT_NEAR (realOf (processor, 11), 0.0f, 0.01f);

    // A click on an option of the stereo link selects it.
    const auto& link = editor.getControl (9)->getRow();
    const auto off = link.stateFrames[0];
    mouseDown (editor, {off.x + off.width * 0.5f, off.y + off.height * 0.5f});
    mouseUp (editor, {off.x + off.width * 0.5f, off.y + off.height * 0.5f});
    EXPECT_NEAR (realOf (processor, 9), 0.0f, 0.01f);

    // The power switch dims everything else; dimmed controls leave the tab walk.
    const auto& power = editor.getControl (0)->getRow();
    const juce::Point<float> powerCentre (power.frame.x + power.frame.width * 0.5f,
                                          power.frame.y + power.frame.height * 0.5f);
    mouseDown (editor, powerCentre);
    mouseUp (editor, powerCentre);
    pump (400);
    EXPECT_NEAR (realOf (processor, 0), 0.0f, 0.01f);
    EXPECT_TRUE (editor.getControl (1)->isDisabledByDependency());
    EXPECT_FALSE (editor.getControl (1)->isEnabled());
    save (capture (editor), "editor-power-off");
    mouseDown (editor, powerCentre);
    mouseUp (editor, powerCentre);
    pump (50);
    EXPECT_FALSE (editor.getControl (1)->isDisabledByDependency());
    EXPECT_EQ (counter.begins, counter.ends);
    processor.removeListener (&counter);
}

// With the advanced pane closed the walk skips its controls and wraps round.
TEST_F (EditorWindow, TabSkipsTheClosedPane)
{
    TRQAudioProcessor processor;
    processor.getPluginState().setAdvancedPaneIsOpen (false);
    auto opened = open (processor, prefs);
    auto& editor = *opened.editor;
    EXPECT_EQ (editor.getWidth(), 457);
    // From Master Mix, the last of the main pane, round to the power switch.
    EXPECT_EQ (key (editor, juce::KeyPress (juce::KeyPress::tabKey), editor.getControl (6)),
               editor.getControl (0));
    EXPECT_EQ (key (editor, juce::KeyPress (juce::KeyPress::tabKey), editor.getControl (0)),
               editor.getControl (1));

    // Opening the pane widens the window and stores the state with the project.
    editor.setAdvancedPaneOpen (true, false);
    EXPECT_EQ (editor.getWidth(), 793);
    EXPECT_EQ (processor.getPluginState().getAttribute (TRQPluginState::advancedPaneAttribute), "1");
    EXPECT_EQ (key (editor, juce::KeyPress (juce::KeyPress::tabKey), editor.getControl (0)),
               editor.getControl (7));
}

namespace
{
// Stands in for the DSP's meter taps: sines of known peaks on the level taps and a
// steady gain reduction (or none), block after block, from a thread of its own as
// the audio thread would. A period of 48 samples puts a sample on each crest.
class MeterFeeder
{
public:
    MeterFeeder (std::shared_ptr<MeterMessaging> m, uint32_t channels, uint32_t frames, float inputPeak,
                 float outputPeak, std::optional<float> reduction)
        : messaging (std::move (m))
        , input (channels, frames)
        , output (channels, frames)
    {
        for (uint32_t c = 0; c < channels; ++c)
            for (uint32_t i = 0; i < frames; ++i)
            {
                const double wave = std::sin (juce::MathConstants<double>::twoPi * (double)i / 48.0);
                input.channel (c)[i] = inputPeak * wave;
                output.channel (c)[i] = outputPeak * wave;
            }
        thread = std::thread (
            [this, frames, reduction]
            {
                while (!stop.load())
                {
                    messaging->writeBuffer (MeterMessaging::inputLevelId, input, frames);
                    messaging->writeBuffer (MeterMessaging::outputLevelId, output, frames);
                    messaging->writeBuffer (MeterMessaging::detectorId, input, frames);
                    if (reduction)
                        messaging->writePoint (*reduction);
                    std::this_thread::sleep_for (std::chrono::milliseconds (10));
                }
            });
    }
    MeterFeeder (std::shared_ptr<MeterMessaging> m, uint32_t channels, uint32_t frames, float peak,
                 float reduction)
        : MeterFeeder (std::move (m), channels, frames, peak, peak, reduction)
    {
    }
    ~MeterFeeder()
    {
        stop.store (true);
        thread.join();
    }

private:
    std::shared_ptr<MeterMessaging> messaging;
    HVNAudioBuffer<double> input, output;
    std::atomic<bool> stop{false};
    std::thread thread;
};

float decibelsToGain (float db)
{
    return std::pow (10.0f, db / 20.0f);
}

// The scale beside a level bar: the rows of its ticks, top first, each the centre
// of the ink that darkens the column against the panel.
std::vector<float> tickRows (const juce::Image& shot, int column, int top, int bottom)
{
    std::vector<float> values;
    for (int y = top; y < bottom; ++y)
        values.push_back (brightness (shot.getPixelAt (column, y)));
    auto sorted = values;
    std::sort (sorted.begin(), sorted.end());
    const float panel = sorted[sorted.size() / 2];
    std::vector<float> rows;
    float weight = 0.0f, sum = 0.0f;
    for (int y = top; y <= bottom; ++y)
    {
        const float ink = y < bottom ? panel - values[(size_t)(y - top)] : 0.0f;
        if (ink > 0.05f)
        {
            weight += ink;
            sum += ink * ((float)y + 0.5f);
        }
        else if (weight > 0.0f)
        {
            rows.push_back (sum / weight);
            weight = sum = 0.0f;
        }
    }
    return rows;
}

// The top of a bar's lit part, to a fraction of a pixel: the first row of the
// bar's column that is wholly the bar's red, less how much of the row above it
// covers.
float barTop (const juce::Image& shot, int column, int top, int bottom)
{
    auto redness = [&] (int y)
    {
        const auto c = shot.getPixelAt (column, y);
        return (float)c.getRed() - (float)c.getGreen();
    };
    float full = 0.0f;
    for (int y = top; y < bottom; ++y)
        full = std::max (full, redness (y));
    if (full < 60.0f)
        return -1.0f;
    for (int y = top + 1; y < bottom; ++y)
        if (redness (y) >= 0.9f * full)
            return (float)y - juce::jlimit (0.0f, 1.0f, redness (y - 1) / full);
    return -1.0f;
}
} // namespace

// Each level bar reads true against its own scale: a sine of a known peak lights
// the bar up to that level's mark, whatever the window's size.
TEST_F (EditorWindow, LevelBarsReadTrueAgainstTheirOwnScale)
{
    if (!expectsGL())
        GTEST_SKIP() << "no meters without OpenGL 3.2";
    TRQAudioProcessor processor;
    processor.prepareToPlay (48000.0, 256);
    processor.getPluginState().setAdvancedPaneIsOpen (false);
    const auto& info = processor.getDSPInfo();
    // Bars and their scales in canvas units: the bar's column, a column through the
    // ticks, and the track they share with the fader.
    struct Bar
    {
        const char* name;
        float barX, tickX;
    };
    const Bar bars[] = {{"input", 19.0f, 15.25f}, {"output", 335.0f, 331.25f}};
    for (int percent : {100, 200})
    {
        prefs->setInt ("UIScale", percent);
        auto opened = open (processor, prefs);
        auto& editor = *opened.editor;
        pump (200);
        ASSERT_NE (info.meterMessaging, nullptr);
        auto pixel = [&editor] (float x, float y) { return canvasToEditor (editor, {x, y}).roundToInt(); };
        // Rising levels, so that each settles on the fast attack.
        for (float level : {-24.0f, -12.0f, -6.0f})
        {
            MeterFeeder feeder (info.meterMessaging, info.numInputs, info.blockSize, decibelsToGain (level),
                                decibelsToGain (level), std::nullopt);
            // The first level also lets a record left from before the window opened
            // fall away at the bars' 250 ms release.
            pump (level == -24.0f ? 1800 : 700);
            const auto shot = capture (editor);
            ASSERT_TRUE (shot.isValid());
            if (level == -6.0f)
                save (shot, "editor-meter-scale-" + juce::String (percent));
            for (const auto& bar : bars)
            {
                SCOPED_TRACE (juce::String (bar.name) + " at " + juce::String (percent) + " %, " +
                              juce::String (level) + " dBFS");
                const int top = pixel (0.0f, 50.0f).y, bottom = pixel (0.0f, 276.0f).y;
                const auto ticks = tickRows (shot, pixel (bar.tickX, 0.0f).x, top, bottom);
                // 0 to -60 dB, a tick every 6 dB.
                ASSERT_EQ (ticks.size(), 11u);
                const float mark = ticks[(size_t)juce::roundToInt (-level / 6.0f)];
                EXPECT_NEAR (barTop (shot, pixel (bar.barX, 0.0f).x, top, bottom), mark, 1.0f);
            }
        }
    }
    processor.releaseResources();
}

namespace
{
// How the gain-reduction history paints a point of the centre strip.
enum class StripPaint
{
    plain,
    area,
    edge
};

StripPaint stripPaintAt (const juce::Image& shot, TRQAudioProcessorEditor& editor, juce::Point<float> canvas)
{
    // White over the accent: the area lifts green from about 78 to 140, the edge
    // to well over 200.
    const int green = pixelAt (shot, editor, canvas).getGreen();
    return green > 200 ? StripPaint::edge : green > 115 ? StripPaint::area : StripPaint::plain;
}
} // namespace

// The history stands on the strip's bottom and falls from its top by the reduction,
// newest on the left, within its own rectangle: 6 dB of reduction after a rest,
// on a scale whose floor the rest has pinned at -12 dB, fills the newest columns
// half way and the older ones wholly.
TEST_F (EditorWindow, GainReductionHistoryAsDrawn)
{
    if (!expectsGL())
        GTEST_SKIP() << "no meters without OpenGL 3.2";
    TRQAudioProcessor processor;
    processor.prepareToPlay (48000.0, 256);
    processor.getPluginState().setAdvancedPaneIsOpen (false);
    const auto& info = processor.getDSPInfo();
    auto opened = open (processor, prefs);
    auto& editor = *opened.editor;
    // With no reduction the floor rises to its upper limit, -12 dB, in 2.4 s.
    pump (3000);
    ASSERT_NE (info.meterMessaging, nullptr);
    juce::Image shot;
    {
        MeterFeeder feeder (info.meterMessaging, info.numInputs, info.blockSize, 0.1f, 0.1f, -6.0f);
        pump (500);
        shot = capture (editor);
    }
    ASSERT_TRUE (shot.isValid());
    save (shot, "editor-history-6db");
    const juce::Rectangle<float> strip (399.0f, 52.0f, 54.0f, 64.0f);
    auto at = [&] (float x, float down)
    { return stripPaintAt (shot, editor, strip.getPosition() + juce::Point<float> (x, down)); };
    // Half of 6 dB on a 12 dB scale: the top edge 2 + 31 units above the bottom.
    const float edgeDown = strip.getHeight() - 33.0f;
    for (float x : {2.0f, 6.0f, 10.0f})
    {
        SCOPED_TRACE ("newest, column " + juce::String (x));
        for (float down = 3.0f; down < edgeDown - 3.0f; down += 2.0f)
            EXPECT_EQ (at (x, down), StripPaint::plain) << down;
        for (float down = edgeDown + 3.0f; down < strip.getHeight() - 2.0f; down += 2.0f)
            EXPECT_EQ (at (x, down), StripPaint::area) << down;
        // A 2-unit edge line along the area's top.
        int edgeRows = 0;
        for (float down = edgeDown - 3.0f; down <= edgeDown + 3.0f; down += 0.25f)
            edgeRows += at (x, down) == StripPaint::edge ? 1 : 0;
        EXPECT_GE (edgeRows, 5) << "about 2 units of edge, in quarter steps";
        EXPECT_LE (edgeRows, 12);
    }
    for (float x : {34.0f, 42.0f, 50.0f})
        for (float down = 4.0f; down < strip.getHeight() - 2.0f; down += 4.0f)
            EXPECT_EQ (at (x, down), StripPaint::area) << "older, column " << x << " at " << down;
    // Nothing of it outside its rectangle.
    for (auto outside : {juce::Point<float> (426.0f, 49.0f), juce::Point<float> (426.0f, 120.0f),
                         juce::Point<float> (397.0f, 90.0f)})
        EXPECT_EQ (stripPaintAt (shot, editor, outside), StripPaint::plain) << outside.toString();

    // For the record, with the advanced pane open: the bars at -6 and -18 dBFS and
    // 12 dB of reduction. The input bar reaches past -12 dB, the output bar stops
    // short of it, and the history falls from the strip's top.
    editor.setAdvancedPaneOpen (true, true);
    {
        MeterFeeder feeder (info.meterMessaging, info.numInputs, info.blockSize, decibelsToGain (-6.0f),
                            decibelsToGain (-18.0f), -12.0f);
        pump (1200);
        shot = capture (editor);
    }
    save (shot, "editor-meters");
    EXPECT_TRUE (isReddish (pixelAt (shot, editor, {19.0f, 54.0f + 218.0f * 10.0f / 60.0f})));
    EXPECT_FALSE (isReddish (pixelAt (shot, editor, {335.0f, 54.0f + 218.0f * 14.0f / 60.0f})));
    EXPECT_EQ (stripPaintAt (shot, editor, {403.0f, 56.0f}), StripPaint::plain);
    processor.releaseResources();
}

namespace
{
// Keyboard focus to a component, asked until it stays for a moment: on a bare X
// server a late answer to an earlier request may hand it back to the component that
// had it before.
bool focusOn (juce::Component& target)
{
    for (int attempt = 0; attempt < 40; ++attempt)
    {
        if (!target.hasKeyboardFocus (false))
            target.grabKeyboardFocus();
        pump (100);
        if (target.hasKeyboardFocus (false))
        {
            pump (200);
            if (target.hasKeyboardFocus (false))
                return true;
        }
    }
    return false;
}

} // namespace

// Tips name what the mouse rests on, the parameter for a control and the action
// for a button; a press takes the tip away, and the tip's shadow margin lets the
// mouse through to whatever lies under it.
TEST_F (EditorWindow, TooltipsNameWhatTheMouseRestsOn)
{
    TRQAudioProcessor processor;
    processor.getPluginState().setAdvancedPaneIsOpen (true);
    auto opened = open (processor, prefs);
    auto& editor = *opened.editor;
    auto& tips = editor.getTooltipWindow();
    auto centreOf = [&editor] (juce::Component& c)
    { return editor.getRoot().getLocalArea (&c, c.getLocalBounds()).toFloat().getCentre(); };
    auto restOn = [&] (juce::Point<float> canvas)
    {
        // The tip is placed by the pointer the X server reports: put it there too.
        warpPointer (editor.localPointToGlobal (canvasToEditor (editor, canvas)).roundToInt());
        mouseMove (editor, canvas);
        mouseMove (editor, canvas + juce::Point<float> (0.5f, 0.0f));
        // The tip comes after 700 ms of rest; the window looks eight times a second.
        const auto before = tips.getTipShowing();
        for (int waited = 0; waited < 2000 && tips.getTipShowing() == before; waited += 100)
            pump (100);
        pump (200);
        return tips.getTipShowing();
    };
    const auto attack = centreOf (*editor.getControl (7));
    EXPECT_EQ (restOn (attack), "Comp Attack Time Constant");
    EXPECT_EQ (restOn (centreOf (*editor.getControl (16))), "HQ Mode");
    EXPECT_EQ (restOn (centreOf (*editor.getToolbar()->getButton (TRQToolbar::Undo))), "Undo");
    EXPECT_EQ (restOn (centreOf (*editor.getToolbar()->getButton (TRQToolbar::CopyAB))), "Copy A to B");
    EXPECT_EQ (restOn (centreOf (editor.getHUD()->getButton (1))), "Noise Off");
    EXPECT_EQ (restOn (TRQTaskButtons::frameOf (TRQTaskButtons::AdvancedControls).toFloat().getCentre()),
               "Advanced Controls");

    // The shadow margin passes the mouse on; the tip's box takes it.
    EXPECT_EQ (restOn (attack), "Comp Attack Time Constant");
    save (capture (editor), "editor-tooltip");
    const auto tip = tips.getBounds();
    const int margin = TRQLookAndFeel::tooltipMargin;
    EXPECT_NE (editor.getRoot().getComponentAt (juce::Point<int> (tip.getX() + margin / 2, tip.getCentreY())),
               &tips);
    EXPECT_EQ (editor.getRoot().getComponentAt (tip.getCentre()), &tips);

    // A press takes the tip away, and none comes while the button is down.
    mouseDown (editor, attack);
    pump (1200);
    EXPECT_EQ (tips.getTipShowing(), "");
    mouseUp (editor, attack);
}

namespace
{
float brightnessAt (const juce::Image& shot, TRQAudioProcessorEditor& editor, juce::Point<float> canvas)
{
    return brightness (pixelAt (shot, editor, canvas));
}

// How many quarter units of a line across the ring differ from the plain ground.
int ringQuarters (const juce::Image& shot, TRQAudioProcessorEditor& editor, juce::Point<float> from,
                  juce::Point<float> to, float ground)
{
    int n = 0;
    const int steps = juce::roundToInt (from.getDistanceFrom (to) * 4.0f);
    for (int i = 0; i <= steps; ++i)
        n += std::abs (brightnessAt (shot, editor, from + (to - from) * ((float)i / (float)steps)) - ground) >
                     0.08f
                 ? 1
                 : 0;
    return n;
}
} // namespace

// The keyboard focus ring, drawn by the GL pass: 4 units wide around the control,
// rounded with the control's corners, and a circle around the round power switch.
TEST_F (EditorWindow, FocusRingTakesTheControlsShape)
{
    if (!expectsGL())
        GTEST_SKIP() << "the ring is drawn by OpenGL";
    TRQAudioProcessor processor;
    processor.getPluginState().setAdvancedPaneIsOpen (false);
    auto opened = open (processor, prefs);
    auto& editor = *opened.editor;

    // The first focus after opening goes to the editor itself on a bare X server.
    focusOn (*editor.getControl (1));
    ASSERT_TRUE (focusOn (*editor.getControl (0)));
    pump (300);
    auto shot = capture (editor);
    save (shot, "editor-focus-ring-power");
    auto ring = editor.getGLState().ring.getRing();
    EXPECT_FLOAT_EQ (ring.width, 4.0f);
    EXPECT_FLOAT_EQ (ring.radius * 2.0f, ring.bounds.getWidth());
    EXPECT_FLOAT_EQ (ring.bounds.getWidth(), ring.bounds.getHeight());
    const auto centre = ring.bounds.getCentre();
    const float strip = brightnessAt (shot, editor, {centre.x, ring.bounds.getY() - 8.0f});
    // On the circle at 45 degrees, and nothing in the corner of its square.
    const auto diagonal = juce::Point<float> (1.0f, 1.0f) / std::sqrt (2.0f);
    EXPECT_GT (brightnessAt (shot, editor, centre + diagonal * ring.radius) - strip, 0.15f);
    EXPECT_LT (std::abs (brightnessAt (shot, editor,
                                       ring.bounds.getBottomRight() - juce::Point<float> (1.5f, 1.5f)) -
                         strip),
               0.05f);
    const int across = ringQuarters (shot, editor, centre + juce::Point<float> (ring.radius - 5.0f, 0.0f),
                                     centre + juce::Point<float> (ring.radius + 5.0f, 0.0f), strip);
    EXPECT_NEAR (across, 16, 4) << "4 units of ring";

    ASSERT_TRUE (focusOn (*editor.getControl (2)));
    pump (300);
    shot = capture (editor);
    save (shot, "editor-focus-ring");
    ring = editor.getGLState().ring.getRing();
    EXPECT_FLOAT_EQ (ring.radius, 6.0f) << "the thumb's corners, 3 units out";
    const float panel =
        brightnessAt (shot, editor, ring.bounds.getTopLeft() - juce::Point<float> (6.0f, 0.0f));
    EXPECT_TRUE (isReddish (pixelAt (shot, editor, {ring.bounds.getX(), ring.bounds.getCentreY()})));
    EXPECT_LT (
        std::abs (brightnessAt (shot, editor, ring.bounds.getTopLeft() - juce::Point<float> (1.0f, 1.0f)) -
                  panel),
        0.05f)
        << "a rounded corner";
    const int side = ringQuarters (shot, editor, {ring.bounds.getX() - 5.0f, ring.bounds.getCentreY() + 6.0f},
                                   {ring.bounds.getX() + 2.0f, ring.bounds.getCentreY() + 6.0f}, panel);
    EXPECT_NEAR (side, 16, 4) << "4 units of ring";
}

namespace
{
// Runs the processor on blocks of a sine until stopped, counting the blocks.
class AudioRunner
{
public:
    explicit AudioRunner (TRQAudioProcessor& p)
        : processor (p)
    {
        thread = std::thread (
            [this]
            {
                juce::AudioBuffer<float> buffer (4, 256);
                juce::MidiBuffer midi;
                while (!stop.load())
                {
                    for (int c = 0; c < 4; ++c)
                        for (int i = 0; i < 256; ++i)
                            buffer.setSample (c, i, 0.5f * std::sin (0.03f * (float)i));
                    processor.processBlock (buffer, midi);
                    blocks.fetch_add (1);
                    std::this_thread::sleep_for (std::chrono::milliseconds (2));
                }
            });
    }
    ~AudioRunner()
    {
        stop.store (true);
        thread.join();
    }
    std::atomic<int> blocks{0};

private:
    TRQAudioProcessor& processor;
    std::atomic<bool> stop{false};
    std::thread thread;
};
} // namespace

// With the real signal chain running on a sine, the meters move by themselves.
TEST_F (EditorWindow, MetersMoveWhileAudioPlays)
{
    if (!expectsGL())
        GTEST_SKIP() << "no meters without OpenGL 3.2";
    TRQAudioProcessor processor;
    processor.prepareToPlay (48000.0, 256);
    processor.getPluginState().setAdvancedPaneIsOpen (true);
    auto opened = open (processor, prefs);
    auto& editor = *opened.editor;
    {
        AudioRunner audio (processor);
        pump (1500);
        const auto shot = capture (editor);
        save (shot, "editor-meters-audio");
        EXPECT_TRUE (isReddish (pixelAt (shot, editor, {19.0f, 265.0f})));
        EXPECT_TRUE (isReddish (pixelAt (shot, editor, {335.0f, 265.0f})));
    }
    processor.releaseResources();
}

namespace
{
bool looksAlike (juce::Colour a, juce::Colour b)
{
    const int tolerance = 10;
    return std::abs ((int)a.getRed() - (int)b.getRed()) <= tolerance &&
           std::abs ((int)a.getGreen() - (int)b.getGreen()) <= tolerance &&
           std::abs ((int)a.getBlue() - (int)b.getBlue()) <= tolerance;
}
} // namespace

// The round task button leaves the corners of its frame to the plain strip, whether
// hovered, pressed or toggled, and while the gain-reduction history is full: nothing
// square shows behind the circle.
TEST_F (EditorWindow, TaskButtonCornersStayPlainStrip)
{
    TRQAudioProcessor processor;
    processor.prepareToPlay (48000.0, 256);
    processor.getPluginState().setAdvancedPaneIsOpen (false);
    auto opened = open (processor, prefs);
    auto& editor = *opened.editor;
    pump (200);
    const auto frame = TRQTaskButtons::frameOf (TRQTaskButtons::AdvancedControls).toFloat();
    const juce::Point<float> corners[] = {frame.getTopLeft() + juce::Point<float> (1.5f, 1.5f),
                                          frame.getTopRight() + juce::Point<float> (-1.5f, 1.5f),
                                          frame.getBottomLeft() + juce::Point<float> (1.5f, -1.5f),
                                          frame.getBottomRight() + juce::Point<float> (-1.5f, -1.5f)};
    // Between the noise switch and the power switch nothing is drawn on the strip.
    const juce::Point<float> plainStrip{426.0f, 168.0f};
    auto expectPlainCorners = [&] (const char* when)
    {
        const auto shot = capture (editor);
        const auto plain = pixelAt (shot, editor, plainStrip);
        for (auto corner : corners)
        {
            const auto seen = pixelAt (shot, editor, corner);
            EXPECT_TRUE (looksAlike (seen, plain))
                << when << " at " << corner.toString() << ": " << seen.toDisplayString (false) << " against "
                << plain.toDisplayString (false);
        }
        return shot;
    };
    auto messaging = processor.getDSPInfo().meterMessaging;
    ASSERT_NE (messaging, nullptr);
    MeterFeeder feeder (messaging, processor.getDSPInfo().numInputs, processor.getDSPInfo().blockSize, 0.5f,
                        -18.0f);
    pump (600);
    expectPlainCorners ("idle");

    mouseMove (editor, frame.getCentre());
    pump (400);
    save (expectPlainCorners ("hovered"), "task-button-hover");

    mouseDown (editor, frame.getCentre());
    pump (150);
    expectPlainCorners ("pressed");
    mouseUp (editor, frame.getCentre());
    pump (400);
    ASSERT_EQ (editor.getWidth(), 793) << "the click opens the advanced pane";
    save (expectPlainCorners ("after the click"), "task-button-clicked");
    processor.releaseResources();
}

// Opening and closing while audio runs: the audio thread never waits, and nothing
// stays behind.
TEST_F (EditorWindow, OpenAndCloseAHundredTimesWhileAudioRuns)
{
    TRQAudioProcessor processor;
    processor.prepareToPlay (48000.0, 256);
    {
        AudioRunner audio (processor);
        for (int i = 0; i < 100; ++i)
        {
            auto opened = open (processor, prefs);
            pump (5);
        }
        pump (50);
        EXPECT_GT (audio.blocks.load(), 100);
    }
    // The last editor's meters let go of the channel when its context closed.
    if (auto messaging = processor.getDSPInfo().meterMessaging)
    {
        for (uint32_t id = 0; id < MeterMessaging::meterCount; ++id)
            EXPECT_FALSE (messaging->isEnabled (id));
    }
    EXPECT_FALSE (TRQDrawing::isLoaded());
    EXPECT_EQ (juce::Desktop::getInstance().getNumComponents(), 0);
}

// A language and style change repaints the artwork in the new words at once.
TEST_F (EditorWindow, LanguageAndStyleChangeWhileOpen)
{
    TRQAudioProcessor processor;
    processor.getPluginState().setAdvancedPaneIsOpen (true);
    auto opened = open (processor, prefs);
    auto& editor = *opened.editor;
    editor.setLanguage (TRQLanguage::Japanese);
    editor.setDarkMode (1);
    pump (300);
    EXPECT_EQ (editor.getLayout().getLanguage(), TRQLanguage::Japanese);
    EXPECT_EQ (editor.getLayout().getStyle(), 1);
    EXPECT_EQ (prefs->getString ("Language", ""), "Japanese");
    const auto shot = capture (editor);
    save (shot, "editor-japanese-dark");
    EXPECT_LT (brightness (pixelAt (shot, editor, {20.0f, 338.0f})), 0.3f);
}

namespace
{
// The headings' ink along the top of both panes, as one number per column.
std::vector<float> headingProfile (const juce::Image& shot, TRQAudioProcessorEditor& editor)
{
    std::vector<float> profile;
    for (float x = 2.0f; x < 793.0f; x += 1.0f)
    {
        float ink = 0.0f;
        for (float y = 8.0f; y < 30.0f; y += 1.0f)
            ink += brightness (pixelAt (shot, editor, {x, y}));
        profile.push_back (ink);
    }
    return profile;
}
} // namespace

// Every label set in both styles, as a musician switches them in the open window:
// each language writes headings of its own, each style its own panel.
TEST_F (EditorWindow, EveryLanguageInBothStyles)
{
    TRQAudioProcessor processor;
    processor.getPluginState().setAdvancedPaneIsOpen (true);
    auto opened = open (processor, prefs);
    auto& editor = *opened.editor;
    for (int style : {0, 1})
    {
        editor.setDarkMode (style);
        std::vector<float> english;
        for (auto language : TRQLanguage::menuLanguages())
        {
            editor.setLanguage (language);
            pump (400);
            const auto shot = capture (editor);
            save (shot, juce::String ("languages/editor-") + TRQLanguage::languageKey (language) +
                            (style == 1 ? "-dark" : "-light"));
            SCOPED_TRACE (TRQLanguage::languageKey (language) + (style == 1 ? " dark" : " light"));
            EXPECT_EQ (brightness (pixelAt (shot, editor, {20.0f, 338.0f})) > 0.5f, style == 0);
            const auto profile = headingProfile (shot, editor);
            if (language == TRQLanguage::English)
                english = profile;
            else
            {
                float difference = 0.0f;
                for (size_t i = 0; i < profile.size(); ++i)
                    difference += std::abs (profile[i] - english[i]);
                EXPECT_GT (difference, 50.0f) << "headings of their own";
            }
        }
    }
}

// A locked parameter shows the lock in its corner; the power switch can't be locked.
TEST_F (EditorWindow, LockMarkShowsOnLockedControls)
{
    auto darkPixels = [] (const juce::Image& shot, TRQAudioProcessorEditor& editor)
    {
        int n = 0;
        for (float y = 39.0f; y < 57.0f; y += 1.0f)
            for (float x = 2.0f; x < 20.0f; x += 1.0f)
                n += brightness (pixelAt (shot, editor, {x, y})) < 0.5f ? 1 : 0;
        return n;
    };
    TRQAudioProcessor processor;
    processor.getPluginState().setAdvancedPaneIsOpen (false);
    int unlocked = 0;
    {
        auto opened = open (processor, prefs);
        pump (100);
        unlocked = darkPixels (capture (*opened.editor), *opened.editor);
    }
    processor.getPluginState().setLock (1, true);
    auto opened = open (processor, prefs);
    pump (100);
    EXPECT_TRUE (opened.editor->getControl (1)->isLocked());
    const auto shot = capture (*opened.editor);
    save (shot, "editor-lock");
    EXPECT_GT (darkPixels (shot, *opened.editor), unlocked + 10);
}
