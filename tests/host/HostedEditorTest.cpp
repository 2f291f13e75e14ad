#include "host/HostedPlugin.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>

namespace
{
void pump (int ms)
{
    juce::MessageManager::getInstance()->runDispatchLoopUntil (ms);
}

juce::Image capture (juce::Component& component)
{
    const auto area = component.getScreenBounds();
    const auto file = juce::File::createTempFile (".png");
    juce::ChildProcess process;
    process.start (juce::StringArray{"import", "-window", "root", "-crop",
                                     juce::String (area.getWidth()) + "x" + juce::String (area.getHeight()) +
                                         "+" + juce::String (area.getX()) + "+" + juce::String (area.getY()),
                                     "+repage", file.getFullPathName()});
    process.waitForProcessToFinish (20000);
    auto image = juce::ImageFileFormat::loadFrom (file);
    file.deleteFile();
    return image;
}

// Strongly red pixels in an area: the value texts of the faders.
int redPixels (const juce::Image& image, juce::Rectangle<int> area)
{
    int n = 0;
    for (int y = area.getY(); y < area.getBottom(); ++y)
        for (int x = area.getX(); x < area.getRight(); ++x)
        {
            const auto c = image.getPixelAt (x, y);
            n += c.getFloatRed() > c.getFloatGreen() + 0.3f ? 1 : 0;
        }
    return n;
}

float brightness (juce::Colour c)
{
    return (c.getFloatRed() + c.getFloatGreen() + c.getFloatBlue()) / 3.0f;
}
} // namespace

// The VST3 opened by a JUCE host in a real window: the panel is painted, and a
// change made by the host reaches it.
TEST (HostedEditor, Vst3EditorShowsAndFollowsTheHost)
{
    if (std::getenv ("DISPLAY") == nullptr)
        GTEST_SKIP() << "no display; run through scripts/xvfb-test.sh";
    auto instance = HostedPlugin::load (HostedPlugin::Format::vst3);
    ASSERT_NE (instance, nullptr);
    auto* power = HostedPlugin::parameterNamed (*instance, "Master On/Off");
    ASSERT_NE (power, nullptr);
    const double start = juce::Time::getMillisecondCounterHiRes();
    std::unique_ptr<juce::AudioProcessorEditor> editor (instance->createEditorIfNeeded());
    ASSERT_NE (editor, nullptr);
    editor->setTopLeftPosition (30, 30);
    editor->addToDesktop (0);
    editor->setVisible (true);
    pump (1500);
    std::cout << "[perf] hosted VST3 editor open and settled in "
              << juce::Time::getMillisecondCounterHiRes() - start << " ms (includes 1.5 s of waiting)\n";
    EXPECT_GE (editor->getWidth(), 457);
    EXPECT_EQ (editor->getHeight(), 380);

    const auto shot = capture (*editor);
    ASSERT_TRUE (shot.isValid());
    if (const char* dir = std::getenv ("ZOLK_SCREENSHOT_DIR"))
    {
        juce::File (dir).createDirectory();
        juce::FileOutputStream out (juce::File (dir).getChildFile ("hosted-vst3.png"));
        out.setPosition (0);
        out.truncate();
        juce::PNGImageFormat().writeImageToStream (shot, out);
    }
    EXPECT_GT (brightness (shot.getPixelAt (20, 338)), 0.9f);
    const auto strip = shot.getPixelAt (400, 100);
    EXPECT_GT (strip.getFloatRed(), strip.getFloatGreen() + 0.2f);

    // The host switches the power off: the editor follows within a few ticks and
    // dims the faders. (The plug-in's window is its own X window inside the host's,
    // so clicks are driven in-process by the editor's own window tests.)
    const juce::Rectangle<int> compressThumb (95, 150, 50, 26);
    const int redBefore = redPixels (shot, compressThumb);
    EXPECT_GT (redBefore, 10);
    ASSERT_GT (power->getValue(), 0.5f);
    power->setValueNotifyingHost (0.0f);
    pump (600);
    const auto dimmed = capture (*editor);
    EXPECT_LT (redPixels (dimmed, compressThumb), redBefore / 2);
    instance->editorBeingDeleted (editor.get());
    editor.reset();
    pump (50);
}
