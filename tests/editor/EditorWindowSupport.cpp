#include "editor/EditorWindowSupport.h"

#include "editor/TRQControl.h"

#include <cstdlib>

namespace EditorWindowSupport
{
namespace
{
juce::int64 eventTime = 0;

juce::ComponentPeer* peerOf (TRQAudioProcessorEditor& editor)
{
    return editor.getPeer();
}

void sendAt (TRQAudioProcessorEditor& editor, juce::Point<float> position, juce::ModifierKeys mods)
{
    auto* peer = peerOf (editor);
    if (peer == nullptr)
        return;
    eventTime = std::max (eventTime + 20, (juce::int64)juce::Time::currentTimeMillis());
    juce::ModifierKeys::currentModifiers = mods;
    peer->handleMouseEvent (juce::MouseInputSource::InputSourceType::mouse, position, mods,
                            juce::MouseInputSource::defaultPressure,
                            juce::MouseInputSource::defaultOrientation, eventTime);
    pump (20);
}

void send (TRQAudioProcessorEditor& editor, juce::Point<float> canvas, juce::ModifierKeys mods)
{
    sendAt (editor, canvasToEditor (editor, canvas), mods);
}
} // namespace

bool hasDisplay()
{
    return std::getenv ("DISPLAY") != nullptr;
}

bool expectsGL()
{
    const char* v = std::getenv ("ZOLK_EXPECT_GL");
    return v == nullptr || juce::String (v) != "0";
}

void pump (int milliseconds)
{
    juce::MessageManager::getInstance()->runDispatchLoopUntil (milliseconds);
}

OpenEditor open (TRQAudioProcessor& processor, const std::shared_ptr<PreferencesFile>& prefs)
{
    // The X server's pointer stays in the screen's far corner, off every editor, or
    // the control under it would show its tip in the pictures.
    warpPointer ({1599, 999});
    OpenEditor result;
    prefs->use();
    result.editor = std::make_unique<TRQAudioProcessorEditor> (processor);
    auto& editor = *result.editor;
    editor.setTopLeftPosition (8, 20);
    editor.addToDesktop (0);
    editor.setVisible (true);
    for (int i = 0; i < 400; ++i)
    {
        juce::MessageManager::getInstance()->runDispatchLoopUntil (5);
        if (editor.getFramesRendered() > 0)
            break;
        if (editor.getGLStatus() == TRQAudioProcessorEditor::glFailed)
            break;
    }
    return result;
}

juce::Image capture (juce::Component& component)
{
    const auto area = component.getScreenBounds();
    const auto file = juce::File::createTempFile (".png");
    juce::ChildProcess process;
    juce::StringArray args{"import",
                           "-window",
                           "root",
                           "-crop",
                           juce::String (area.getWidth()) + "x" + juce::String (area.getHeight()) + "+" +
                               juce::String (area.getX()) + "+" + juce::String (area.getY()),
                           "+repage",
                           file.getFullPathName()};
    if (!process.start (args))
        return {};
    process.waitForProcessToFinish (20000);
    auto image = juce::ImageFileFormat::loadFrom (file);
    file.deleteFile();
    return image;
}

void save (const juce::Image& image, const juce::String& name)
{
    const char* dir = std::getenv ("ZOLK_SCREENSHOT_DIR");
    if (dir == nullptr || !image.isValid())
        return;
    const auto file = juce::File (dir).getChildFile (name + ".png");
    file.getParentDirectory().createDirectory();
    juce::FileOutputStream out (file);
    if (out.openedOk())
    {
        out.setPosition (0);
        out.truncate();
        juce::PNGImageFormat().writeImageToStream (image, out);
    }
}

juce::Point<float> canvasToEditor (TRQAudioProcessorEditor& editor, juce::Point<float> canvas)
{
    return editor.getLocalPoint (&editor.getRoot(), canvas);
}

void mouseDown (TRQAudioProcessorEditor& editor, juce::Point<float> canvas, juce::ModifierKeys mods)
{
    send (editor, canvas, mods.withFlags (juce::ModifierKeys::leftButtonModifier));
}

void mouseDrag (TRQAudioProcessorEditor& editor, juce::Point<float> canvas, juce::ModifierKeys mods)
{
    send (editor, canvas, mods.withFlags (juce::ModifierKeys::leftButtonModifier));
}

void mouseUp (TRQAudioProcessorEditor& editor, juce::Point<float> canvas, juce::ModifierKeys mods)
{
    send (editor, canvas, mods.withoutMouseButtons());
}

void rightClick (TRQAudioProcessorEditor& editor, juce::Point<float> canvas, juce::ModifierKeys mods)
{
    send (editor, canvas, mods.withFlags (juce::ModifierKeys::rightButtonModifier));
    send (editor, canvas, mods.withoutMouseButtons());
}

void mouseAt (TRQAudioProcessorEditor& editor, juce::Point<float> position, juce::ModifierKeys mods)
{
    sendAt (editor, position, mods);
}

void mouseMove (TRQAudioProcessorEditor& editor, juce::Point<float> canvas)
{
    send (editor, canvas, {});
}

void wheel (TRQAudioProcessorEditor& editor, juce::Point<float> canvas, float deltaY, juce::ModifierKeys mods)
{
    auto* peer = peerOf (editor);
    if (peer == nullptr)
        return;
    juce::ModifierKeys::currentModifiers = mods;
    juce::MouseWheelDetails details{0.0f, deltaY, false, false, false};
    eventTime = std::max (eventTime + 200, (juce::int64)juce::Time::currentTimeMillis());
    peer->handleMouseWheel (juce::MouseInputSource::InputSourceType::mouse, canvasToEditor (editor, canvas),
                            eventTime, details);
    pump (20);
}

namespace
{
void ensureFocus (juce::Component* target)
{
    for (int attempt = 0; target != nullptr && attempt < 10 && !target->hasKeyboardFocus (false); ++attempt)
    {
        target->grabKeyboardFocus();
        pump (5);
    }
}

void deliver (TRQAudioProcessorEditor& editor, const juce::KeyPress& k)
{
    juce::ModifierKeys::currentModifiers = k.getModifiers();
    if (auto* peer = editor.getPeer())
        peer->handleKeyPress (k);
    juce::ModifierKeys::currentModifiers = {};
}
} // namespace

juce::Component* key (TRQAudioProcessorEditor& editor, const juce::KeyPress& k, juce::Component* target)
{
    ensureFocus (target);
    deliver (editor, k);
    auto* focused = juce::Component::getCurrentlyFocusedComponent();
    pump (20);
    return focused;
}

juce::String typeText (TRQAudioProcessorEditor& editor, const juce::String& text, TRQControl& target)
{
    ensureFocus (&target);
    for (auto ch : text)
        deliver (editor, juce::KeyPress (ch, {}, ch));
    return target.getTypedText();
}
} // namespace EditorWindowSupport
