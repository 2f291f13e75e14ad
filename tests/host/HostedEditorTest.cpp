#include "host/HostedPlugin.h"

#include <gtest/gtest.h>

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

#include <atomic>
#include <cstdlib>

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

// What the host hears from one parameter.
class ParameterWatcher : public juce::AudioProcessorParameter::Listener
{
public:
    void parameterValueChanged (int, float) override { ++changes; }
    void parameterGestureChanged (int, bool starting) override { ++(starting ? begins : ends); }
    std::atomic<int> changes{0}, begins{0}, ends{0};
};

// The X server's own pointer, moved and pressed through the XTEST extension: the
// events reach whatever window lies under it, exactly as a user's mouse would.
class XTestMouse
{
public:
    XTestMouse()
        : display (XOpenDisplay (nullptr))
    {
        int event = 0, error = 0, major = 0, minor = 0;
        usable = display != nullptr && XTestQueryExtension (display, &event, &error, &major, &minor);
    }
    ~XTestMouse()
    {
        if (display != nullptr)
            XCloseDisplay (display);
    }

    bool isUsable() const { return usable; }

    void moveTo (juce::Point<int> screen, int settleMs = 40)
    {
        XTestFakeMotionEvent (display, -1, screen.x, screen.y, CurrentTime);
        XFlush (display);
        pump (settleMs);
    }
    void button (bool down, int settleMs = 80)
    {
        XTestFakeButtonEvent (display, 1, down ? True : False, CurrentTime);
        XFlush (display);
        pump (settleMs);
    }

private:
    Display* display;
    bool usable = false;
};
// The plug-in's window on screen and in front, given time for its first frames.
std::unique_ptr<juce::AudioProcessorEditor> showEditor (juce::AudioPluginInstance& instance,
                                                        juce::Point<int> at)
{
    std::unique_ptr<juce::AudioProcessorEditor> editor (instance.createEditorIfNeeded());
    if (editor != nullptr)
    {
        editor->setTopLeftPosition (at);
        editor->addToDesktop (0);
        editor->setVisible (true);
        editor->toFront (true);
        pump (1500);
    }
    return editor;
}

// Closes the window as a host does.
void closeEditor (juce::AudioPluginInstance& instance, std::unique_ptr<juce::AudioProcessorEditor>& editor)
{
    instance.editorBeingDeleted (editor.get());
    editor.reset();
    pump (50);
}
} // namespace

// Each test opens the VST3 in a real window on the X server, which the X server's
// own pointer can reach.
class HostedEditor : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (std::getenv ("DISPLAY") == nullptr)
            GTEST_SKIP() << "no display; run through scripts/xvfb-test.sh";
        ASSERT_TRUE (mouse.isUsable()) << "the X server has no XTEST extension";
        instance = HostedPlugin::load (HostedPlugin::Format::vst3);
        ASSERT_NE (instance, nullptr);
    }

    XTestMouse mouse;
    std::unique_ptr<juce::AudioPluginInstance> instance;
};

// The VST3 opened by a JUCE host in a real window: the panel is painted, and a
// change made by the host reaches it.
TEST_F (HostedEditor, Vst3EditorShowsAndFollowsTheHost)
{
    auto* power = HostedPlugin::parameterNamed (*instance, "Master On/Off");
    ASSERT_NE (power, nullptr);
    std::unique_ptr<juce::AudioProcessorEditor> editor (instance->createEditorIfNeeded());
    ASSERT_NE (editor, nullptr);
    editor->setTopLeftPosition (30, 30);
    editor->addToDesktop (0);
    editor->setVisible (true);
    pump (1500);
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
    // dims the faders. (The way back, a click inside the plug-in's window, is the
    // next test's.)
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

// A real mouse drag inside the hosted VST3's own window: the X server delivers it to
// the plug-in's window, the plug-in's fader moves, and the host hears the gesture
// and the new value.
TEST_F (HostedEditor, Vst3EditorTakesARealMouseDrag)
{
    auto* compression = HostedPlugin::parameterNamed (*instance, "Compression Amount");
    ASSERT_NE (compression, nullptr);
    compression->setValueNotifyingHost (0.5f);
    ParameterWatcher watcher;
    compression->addListener (&watcher);

    auto editor = showEditor (*instance, {60, 50});
    ASSERT_NE (editor, nullptr);
    ASSERT_GE (editor->getWidth(), 457);

    // The Compress fader's thumb at 50 %, in the window at 100 %: a drag of 60
    // pixels down takes 60 of its 218 units of track.
    const auto thumb = editor->getScreenPosition() + juce::Point<int> (120, 163);
    watcher.changes = 0;
    mouse.moveTo (thumb + juce::Point<int> (0, -30));
    mouse.moveTo (thumb);
    mouse.button (true);
    for (int dy = 10; dy <= 60; dy += 10)
        mouse.moveTo (thumb + juce::Point<int> (0, dy));
    mouse.button (false, 400);

    EXPECT_GE (watcher.begins.load(), 1);
    EXPECT_EQ (watcher.begins.load(), watcher.ends.load());
    EXPECT_GE (watcher.changes.load(), 2) << "the value moved along with the drag";
    EXPECT_NEAR (compression->getValue(), 0.5f - 60.0f / 218.0f, 0.03f);

    // The fader shows where it went: the red value text has left its old place.
    const auto shot = capture (*editor);
    if (const char* dir = std::getenv ("ZOLK_SCREENSHOT_DIR"))
    {
        juce::FileOutputStream out (juce::File (dir).getChildFile ("hosted-vst3-dragged.png"));
        out.setPosition (0);
        out.truncate();
        juce::PNGImageFormat().writeImageToStream (shot, out);
    }
    EXPECT_LT (redPixels (shot, {95, 150, 50, 26}), 10);
    EXPECT_GT (redPixels (shot, {95, 210, 50, 26}), 10);

    // A click on the power switch in the centre strip turns it off.
    auto* power = HostedPlugin::parameterNamed (*instance, "Master On/Off");
    ASSERT_NE (power, nullptr);
    ASSERT_GT (power->getValue(), 0.5f);
    mouse.moveTo (editor->getScreenPosition() + juce::Point<int> (426, 212));
    mouse.button (true);
    mouse.button (false, 300);
    EXPECT_LT (power->getValue(), 0.5f);

    mouse.moveTo ({0, 0});
    compression->removeListener (&watcher);
    closeEditor (*instance, editor);
}

// The host's program follows a factory preset chosen in the plug-in's own window:
// a click on the toolbar's next-preset arrow moves it one on, as the preset did.
TEST_F (HostedEditor, Vst3ProgramFollowsThePresetArrow)
{
    ASSERT_GT (instance->getNumPrograms(), 2);
    // Program 1 ("Clean Compressor") takes the Lo-Fi Amount to 0; the plug-in applies it
    // on its own message thread.
    auto* lofi = HostedPlugin::parameterNamed (*instance, "Lo-Fi Amount");
    ASSERT_NE (lofi, nullptr);
    instance->setCurrentProgram (1);
    for (int i = 0; i < 100 && lofi->getValue() > 0.0f; ++i)
        pump (30);
    ASSERT_EQ (lofi->getValue(), 0.0f);
    ASSERT_EQ (instance->getCurrentProgram(), 1);

    auto editor = showEditor (*instance, {60, 50});
    ASSERT_NE (editor, nullptr);

    // The arrow right of the preset name, in the toolbar under the main pane.
    mouse.moveTo (editor->getScreenPosition() + juce::Point<int> (293, 365));
    mouse.button (true);
    mouse.button (false, 300);
    for (int i = 0; i < 100 && instance->getCurrentProgram() != 2; ++i)
        pump (30);
    EXPECT_EQ (instance->getCurrentProgram(), 2);

    mouse.moveTo ({0, 0});
    closeEditor (*instance, editor);
}
