#include "editor/EditorWindowSupport.h"

#include "core/TRQAudioProcessor.h"
#include "editor/TRQAudioProcessorEditor.h"
#include "editor/TRQControl.h"
#include "editor/TRQEditorGLState.h"
#include "editor/TRQSlider.h"
#include "editor/TRQTransientValueView.h"
#include "state/TRQAudioParameter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

using namespace EditorWindowSupport;

namespace
{
constexpr int compress = 2, attack = 7, stereoLink = 9, speed = 11;

bool isReddish (juce::Colour c)
{
    return c.getFloatRed() > c.getFloatGreen() + 0.2f && c.getFloatRed() > c.getFloatBlue() + 0.2f;
}

// Strongly red pixels of a canvas area in a screenshot of the editor.
int reddishPixels (const juce::Image& shot, TRQAudioProcessorEditor& editor, juce::Rectangle<float> canvas)
{
    const auto area =
        juce::Rectangle<float>::leftTopRightBottom (canvasToEditor (editor, canvas.getTopLeft()).x,
                                                    canvasToEditor (editor, canvas.getTopLeft()).y,
                                                    canvasToEditor (editor, canvas.getBottomRight()).x,
                                                    canvasToEditor (editor, canvas.getBottomRight()).y)
            .toNearestInt();
    int n = 0;
    for (int y = area.getY(); y < area.getBottom(); ++y)
        for (int x = area.getX(); x < area.getRight(); ++x)
            n += isReddish (shot.getPixelAt (x, y)) ? 1 : 0;
    return n;
}

void setFromHost (TRQAudioProcessor& processor, int index, float normalised)
{
    processor.getAudioParameter (index).setValueNotifyingHost (normalised);
}

// The slider's thumb centre in canvas units.
juce::Point<float> thumbCentre (TRQAudioProcessorEditor& editor, TRQSlider& slider)
{
    return editor.getRoot().getLocalPoint (&slider, slider.thumbBounds().getCentre());
}

class EditorWindowAnimation : public WindowTest
{
};
} // namespace

// Automation moves a control of the closed advanced pane: its label and value show
// over the main pane, stay while changes keep coming, and fade away after them.
TEST_F (EditorWindowAnimation, HiddenControlShowsItsValueForAMoment)
{
    TRQAudioProcessor processor;
    processor.getPluginState().setAdvancedPaneIsOpen (false);
    auto opened = open (processor, prefs);
    auto& editor = *opened.editor;
    auto& view = editor.getTransientValueView();
    pump (100);
    // The values an editor starts with are no change.
    EXPECT_FALSE (view.isVisible());
    const auto panel = TRQTransientValueView::panelArea();
    const int redBefore = reddishPixels (capture (editor), editor, panel);

    setFromHost (processor, attack, 0.9f);
    pump (250);
    ASSERT_TRUE (view.isVisible());
    EXPECT_EQ (view.getSource(), editor.getControl (attack));
    EXPECT_GT (editor.getControl (attack)->transientValueAlpha(), 0.95f);
    const auto shot = capture (editor);
    save (shot, "editor-transient-value");
    // The value is written in the control's red.
    EXPECT_GT (reddishPixels (shot, editor, panel), redBefore + 30);

    // A control that can be seen shows nothing extra; the panel stays with attack.
    setFromHost (processor, compress, 0.1f);
    pump (100);
    EXPECT_EQ (view.getSource(), editor.getControl (attack));

    // Changes coming in keep it up past the time it would otherwise fade.
    for (int i = 0; i < 12; ++i)
    {
        setFromHost (processor, attack, i % 2 == 0 ? 0.3f : 0.6f);
        pump (200);
    }
    EXPECT_TRUE (view.isVisible());
    EXPECT_GT (editor.getControl (attack)->transientValueAlpha(), 0.95f);

    pump (2300);
    EXPECT_FALSE (view.isVisible());
    EXPECT_FALSE (editor.getControl (attack)->isShowingTransientValue());
    EXPECT_LE (reddishPixels (capture (editor), editor, panel), redBefore + 5);
}

// Switches show their state's own outline; the panel follows the latest control,
// shows nothing for changes that come together, goes when the pane opens, and an
// open pane never shows it.
TEST_F (EditorWindowAnimation, SwitchesShowTheirStateAndAnOpenPaneEndsIt)
{
    TRQAudioProcessor processor;
    processor.getPluginState().setAdvancedPaneIsOpen (false);
    prefs->setInt ("DarkMode", 1);
    auto opened = open (processor, prefs);
    auto& editor = *opened.editor;
    auto& view = editor.getTransientValueView();
    pump (100);

    // A preset or an undo moves several at once: no single value tells of it.
    setFromHost (processor, attack, 0.7f);
    setFromHost (processor, speed, 0.5f);
    setFromHost (processor, stereoLink, 0.0f);
    pump (150);
    EXPECT_FALSE (view.isVisible());

    setFromHost (processor, speed, 1.0f);
    pump (150);
    ASSERT_TRUE (view.isVisible());
    EXPECT_EQ (view.getSource(), editor.getControl (speed));
    save (capture (editor), "editor-transient-switch-dark");

    setFromHost (processor, stereoLink, 1.0f);
    pump (100);
    EXPECT_EQ (view.getSource(), editor.getControl (stereoLink));

    editor.setAdvancedPaneOpen (true, true);
    pump (100);
    EXPECT_FALSE (view.isVisible());

    setFromHost (processor, attack, 0.2f);
    pump (150);
    EXPECT_FALSE (view.isVisible());
    EXPECT_FALSE (editor.getControl (attack)->isShowingTransientValue());
}

// The thumb lights up while the mouse is over it, lifts while pressed, and settles
// back when left.
TEST_F (EditorWindowAnimation, ThumbLightsUpUnderTheMouseAndLiftsOnAPress)
{
    TRQAudioProcessor processor;
    auto opened = open (processor, prefs);
    auto& editor = *opened.editor;
    auto* slider = dynamic_cast<TRQSlider*> (editor.getControl (compress));
    ASSERT_NE (slider, nullptr);
    pump (100);
    const auto centre = thumbCentre (editor, *slider);
    const auto thumbArea = editor.getRoot().getLocalArea (slider, slider->thumbBounds()).expanded (1.0f);
    const int redBefore = reddishPixels (capture (editor), editor, thumbArea);

    mouseMove (editor, centre + juce::Point<float> (0.0f, 60.0f));
    pump (300);
    EXPECT_EQ (slider->hoverAmount(), 0.0f) << "the track away from the thumb doesn't light it";

    mouseMove (editor, centre);
    pump (200);
    EXPECT_EQ (slider->hoverAmount(), 1.0f);
    const auto lit = capture (editor);
    save (lit, "editor-thumb-hover");
    EXPECT_GT (reddishPixels (lit, editor, thumbArea), redBefore + 20);

    const float valueBefore = processor.getAudioParameter (compress).getValue();
    mouseDown (editor, centre);
    pump (200);
    EXPECT_EQ (slider->pressAmount(), 1.0f);
    mouseUp (editor, centre);
    EXPECT_EQ (processor.getAudioParameter (compress).getValue(), valueBefore)
        << "a press on the thumb doesn't move it";
    pump (300);
    EXPECT_EQ (slider->pressAmount(), 0.0f);

    mouseMove (editor, {20.0f, 330.0f});
    pump (350);
    EXPECT_EQ (slider->hoverAmount(), 0.0f);
}

// A jump from the host glides: the thumb passes through positions in between, in
// order, each one reported, and lands on the value.
TEST_F (EditorWindowAnimation, ThumbGlidesAndReportsEveryPosition)
{
    TRQAudioProcessor processor;
    setFromHost (processor, compress, 0.0f);
    auto opened = open (processor, prefs);
    auto& editor = *opened.editor;
    auto* slider = dynamic_cast<TRQSlider*> (editor.getControl (compress));
    ASSERT_NE (slider, nullptr);
    pump (100);
    std::vector<float> positions;
    TRQSignals::Trackable listener;
    slider->positionChanged.connect (&listener, [&positions] (float p) { positions.push_back (p); });

    setFromHost (processor, compress, 1.0f);
    pump (400);
    ASSERT_FALSE (positions.empty());
    EXPECT_EQ (positions.back(), 1.0f);
    int between = 0;
    for (size_t i = 0; i < positions.size(); ++i)
    {
        between += positions[i] > 0.0f && positions[i] < 1.0f ? 1 : 0;
        if (i > 0)
        {
            EXPECT_GT (positions[i], positions[i - 1]);
        }
    }
    EXPECT_GE (between, 2) << "a 100 ms glide seen by a 16 ms timer";
    EXPECT_NEAR (slider->thumbBounds().getCentreY(), slider->thumbCentreFor (1.0f).y, 0.01f);
}

// Behind a modal the GL pass shows the artwork blurred, made once and reused by
// every frame after; a new size blurs again.
TEST_F (EditorWindowAnimation, ModalBackgroundIsBlurredOnce)
{
    if (!expectsGL())
        GTEST_SKIP() << "no GL background without OpenGL 3.2";
    TRQAudioProcessor processor;
    processor.getPluginState().setAdvancedPaneIsOpen (true);
    auto opened = open (processor, prefs);
    auto& editor = *opened.editor;
    auto& gl = editor.getGLState();
    pump (200);
    // The heading "Input" over a white panel: dark ink when sharp.
    auto darkest = [&editor] (const juce::Image& shot)
    {
        float lowest = 1.0f;
        for (float y = 10.0f; y < 28.0f; y += 1.0f)
            for (float x = 20.0f; x < 60.0f; x += 1.0f)
            {
                const auto p = canvasToEditor (editor, {x, y}).roundToInt();
                const auto c = shot.getPixelAt (p.x, p.y);
                lowest = std::min (lowest, (c.getFloatRed() + c.getFloatGreen() + c.getFloatBlue()) / 3.0f);
            }
        return lowest;
    };
    EXPECT_LT (darkest (capture (editor)), 0.3f);
    EXPECT_EQ (gl.blurPasses.load(), 0);

    gl.modalShowing = true;
    pump (300);
    const int framesBefore = editor.getFramesRendered();
    pump (300);
    EXPECT_GT (editor.getFramesRendered(), framesBefore);
    EXPECT_EQ (gl.blurPasses.load(), 1);
    const auto blurred = capture (editor);
    save (blurred, "editor-modal-blur");
    EXPECT_GT (darkest (blurred), 0.6f) << "the heading's ink spread over 15 pixels";

    editor.setUserScale (120);
    pump (400);
    EXPECT_EQ (gl.blurPasses.load(), 2);

    gl.modalShowing = false;
    pump (300);
    EXPECT_LT (darkest (capture (editor)), 0.3f);
}
