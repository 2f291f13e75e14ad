#include "editor/EditorWindowSupport.h"

#include "core/TRQAudioProcessor.h"
#include "editor/TRQAudioProcessorEditor.h"
#include "editor/TRQControl.h"
#include "editor/TRQParameterGestures.h"
#include "editor/TRQSlider.h"
#include "editor/TRQTaskButtons.h"
#include "meters/MeterMessaging.h"
#include "state/ParameterRange.h"
#include "state/TRQAudioParameter.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <iostream>
#include <thread>

#include <time.h>

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
                if (opened.msToFirstFrame >= 0.0 && percent == 100)
                    std::cout << "[perf] first frame at 100 %: " << opened.msToFirstFrame << " ms\n";
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
// Stands in for the DSP's meter taps: a steady level and gain reduction, block
// after block, from a thread of its own as the audio thread would.
class MeterFeeder
{
public:
    MeterFeeder (std::shared_ptr<MeterMessaging> m, uint32_t channels, uint32_t frames, float peak,
                 float reduction)
        : messaging (std::move (m))
        , block (channels, frames)
    {
        for (uint32_t c = 0; c < channels; ++c)
            for (uint32_t i = 0; i < frames; ++i)
                block.channel (c)[i] = peak * std::sin (0.05 * (double)i);
        thread = std::thread (
            [this, frames, reduction]
            {
                while (!stop.load())
                {
                    messaging->writeBuffer (MeterMessaging::inputLevelId, block, frames);
                    messaging->writeBuffer (MeterMessaging::outputLevelId, block, frames);
                    messaging->writeBuffer (MeterMessaging::detectorId, block, frames);
                    messaging->writePoint (reduction);
                    std::this_thread::sleep_for (std::chrono::milliseconds (10));
                }
            });
    }
    ~MeterFeeder()
    {
        stop.store (true);
        thread.join();
    }

private:
    std::shared_ptr<MeterMessaging> messaging;
    HVNAudioBuffer<double> block;
    std::atomic<bool> stop{false};
    std::thread thread;
};

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

// The meters move on the GL thread from what the meter channel carries.
TEST_F (EditorWindow, MetersFollowTheMeterChannel)
{
    if (!expectsGL())
        GTEST_SKIP() << "no meters without OpenGL 3.2";
    TRQAudioProcessor processor;
    processor.prepareToPlay (48000.0, 256);
    processor.getPluginState().setAdvancedPaneIsOpen (true);
    auto opened = open (processor, prefs);
    auto& editor = *opened.editor;
    pump (200);
    const auto messaging = processor.getDSPInfo().meterMessaging;
    ASSERT_NE (messaging, nullptr);
    {
        MeterFeeder feeder (messaging, processor.getDSPInfo().numInputs, processor.getDSPInfo().blockSize,
                            0.5f, -9.0f);
        pump (1200);
        const auto shot = capture (editor);
        save (shot, "editor-meters");
        // -6 dB of a [-60, 0] bar: the lower nine tenths are lit.
        EXPECT_TRUE (isReddish (pixelAt (shot, editor, {65.0f, 250.0f})));
        EXPECT_TRUE (isReddish (pixelAt (shot, editor, {381.0f, 250.0f})));
        EXPECT_FALSE (isReddish (pixelAt (shot, editor, {65.0f, 56.0f})));
        // Nine dB of reduction reach a good way down the history.
        EXPECT_TRUE (isReddish (pixelAt (shot, editor, {420.0f, 58.0f})) ||
                     brightness (pixelAt (shot, editor, {420.0f, 58.0f})) < 0.95f);
    }
    processor.releaseResources();
}

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
        EXPECT_TRUE (isReddish (pixelAt (shot, editor, {67.0f, 265.0f})));
        EXPECT_TRUE (isReddish (pixelAt (shot, editor, {383.0f, 265.0f})));
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

// Not a timed test: prints what an idle editor costs, for the record.
TEST_F (EditorWindow, IdleCostIsMeasured)
{
    if (!expectsGL())
        GTEST_SKIP();
    TRQAudioProcessor processor;
    for (int percent : {100, 200})
    {
        prefs->setInt ("UIScale", percent);
        processor.getPluginState().setAdvancedPaneIsOpen (true);
        auto opened = open (processor, prefs);
        auto& editor = *opened.editor;
        pump (500);
        const int framesBefore = editor.getFramesRendered();
        double timerTotal = 0.0, frameTotal = 0.0;
        const int ticks = 60;
        const auto cpuBefore = std::clock();
        timespec threadBefore{}, threadAfter{};
        clock_gettime (CLOCK_THREAD_CPUTIME_ID, &threadBefore);
        const double wallBefore = juce::Time::getMillisecondCounterHiRes();
        for (int i = 0; i < ticks; ++i)
        {
            pump (16);
            timerTotal += editor.getLastTimerMs();
            frameTotal += editor.getLastFrameMs();
        }
        const double wall = juce::Time::getMillisecondCounterHiRes() - wallBefore;
        const double cpu = 1000.0 * (double)(std::clock() - cpuBefore) / CLOCKS_PER_SEC;
        clock_gettime (CLOCK_THREAD_CPUTIME_ID, &threadAfter);
        const double messageCpu = (double)(threadAfter.tv_sec - threadBefore.tv_sec) * 1000.0 +
                                  (double)(threadAfter.tv_nsec - threadBefore.tv_nsec) / 1.0e6;
        std::cout << "[perf] " << percent << " %: timer tick " << timerTotal / ticks << " ms, GL frame "
                  << frameTotal / ticks << " ms, frames/s "
                  << (editor.getFramesRendered() - framesBefore) * 1000.0 / wall << ", message thread CPU "
                  << 100.0 * messageCpu / wall << " %, process CPU (all threads) " << 100.0 * cpu / wall
                  << " %\n";
    }
}
