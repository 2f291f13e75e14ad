#include "editor/EditorWindowSupport.h"

#include "core/TRQAudioProcessor.h"
#include "editor/TRQAudioProcessorEditor.h"
#include "editor/TRQControl.h"
#include "editor/TRQParameterGestures.h"
#include "editor/TRQSlider.h"
#include "meters/MeterMessaging.h"
#include "state/ParameterRange.h"
#include "state/TRQAudioParameter.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <iostream>
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

class EditorWindow : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (!hasDisplay())
            GTEST_SKIP() << "no display; run through scripts/xvfb-test.sh";
        prefs = std::make_shared<TRQMemoryPreferenceSource>();
    }

    std::shared_ptr<TRQMemoryPreferenceSource> prefs;
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
                // Blank panel between the Input and Compress columns, and the red
                // centre strip.
                const auto panel = pixelAt (shot, editor, {79.0f, 320.0f});
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
