#include "editor/TRQEditorGLState.h"

#include "meters/HVNZC1TRQSketch.h"
#include "meters/MeterMessaging.h"
#include "meters/TRQShapeRenderer.h"

#include <cstdio>
#include <cstdlib>

using namespace juce::gl;

TRQEditorGLState::TRQEditorGLState (juce::OpenGLContext& c)
    : context (c)
    , createdMs (juce::Time::getMillisecondCounterHiRes())
{
    focusParameter.value.store (-1);
    // The controls hand over rings already grown by their own outsets.
    ring.outset = 0.0f;
}

TRQEditorGLState::~TRQEditorGLState() = default;

void TRQEditorGLState::publishBackground (juce::Image image)
{
    std::lock_guard<std::mutex> lock (handoff);
    pendingBackground = std::move (image);
    backgroundPending = true;
}

void TRQEditorGLState::publishMeterSource (MeterSource source)
{
    std::lock_guard<std::mutex> lock (handoff);
    pendingSource = std::move (source);
    sourcePending = true;
}

void TRQEditorGLState::contextCreated()
{
    renderer = std::make_unique<TRQShapeRenderer> (context);
    backgroundWidth = backgroundHeight = 0;
    std::lock_guard<std::mutex> lock (handoff);
    // A new context needs the background uploaded again; the message thread keeps
    // the image, so ask it for another.
    backgroundPending = pendingBackground.isValid();
}

void TRQEditorGLState::contextClosing()
{
    if (sketch != nullptr && currentSource.messaging != nullptr)
        currentSource.messaging->clear();
    sketch.reset();
    currentSource = {};
    background.release();
    blurred.release();
    reduced.release();
    blurredCurrent = false;
    if (renderer != nullptr)
        renderer->release();
    renderer.reset();
}

bool TRQEditorGLState::checkContext()
{
    if (!context.isActive() || renderer == nullptr)
        return false;
    const auto* version = reinterpret_cast<const char*> (glGetString (GL_VERSION));
    if (version == nullptr)
        return false;
    const auto number = juce::String (version).upToFirstOccurrenceOf (" ", false, false).getDoubleValue();
    return number >= 3.2 - 1.0e-9;
}

void TRQEditorGLState::render (juce::Rectangle<int> viewport, float scale)
{
    // Continuous repainting runs as fast as the driver allows where nothing waits
    // for the display (software GL, virtual servers); sixty frames a second is all
    // the meters need.
    const double sinceLast = juce::Time::getMillisecondCounterHiRes() - lastFrameStart;
    if (lastFrameStart > 0.0 && sinceLast < minimumFrameMs)
        juce::Thread::sleep ((int)(minimumFrameMs - sinceLast));
    const double start = juce::Time::getMillisecondCounterHiRes();
    lastFrameStart = start;
    if (status.load() != 2 && !checkContext())
    {
        status.store (1);
        return;
    }
    renderScale.store (scale);

    glViewport (0, 0, viewport.getWidth(), viewport.getHeight());
    juce::OpenGLHelpers::clear (juce::Colour (0xff333333));

    {
        std::lock_guard<std::mutex> lock (handoff);
        if (backgroundPending && pendingBackground.isValid())
        {
            background.loadImage (pendingBackground);
            backgroundWidth = pendingBackground.getWidth();
            backgroundHeight = pendingBackground.getHeight();
            blurredCurrent = false;
        }
        backgroundPending = false;
    }
    drawBackground (viewport);

    renderer->beginFrame (canvasScale.load(), viewport.getWidth(), viewport.getHeight(), scale);
    const double now = start / 1000.0;
    if (!modalShowing.load())
        renderMeters (now);

    glEnable (GL_BLEND);
    glBlendFunc (GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    renderFocusRing();

    glBindBuffer (GL_ARRAY_BUFFER, 0);
    glUseProgram (0);
    for (GLenum error = glGetError(); error != GL_NO_ERROR; error = glGetError())
    {
        DBG ("error " << (int)error << ":");
    }
    if (renderer->hasFailed())
    {
        status.store (1);
        return;
    }
    status.store (2);
    if (frames.fetch_add (1) == 0 && std::getenv ("ZOLK_REPORT_FIRST_FRAME") != nullptr)
        std::fprintf (stderr, "first frame %.1f ms after the editor was made\n",
                      juce::Time::getMillisecondCounterHiRes() - createdMs);
    lastFrameMs.store (juce::Time::getMillisecondCounterHiRes() - start);
}

void TRQEditorGLState::drawBackground (juce::Rectangle<int> viewport)
{
    glEnable (GL_BLEND);
    glBlendFunc (GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    if (backgroundWidth <= 0)
        return;
    if (!modalShowing.load())
    {
        renderer->drawTexture (background, backgroundWidth, backgroundHeight);
        return;
    }
    // 225 taps a pixel is too dear for every frame: blur once into a buffer and
    // lay that over the sharp image from then on.
    if (!blurredCurrent && !blurBackground())
    {
        renderer->drawTexture (background, backgroundWidth, backgroundHeight);
        return;
    }
    glViewport (0, 0, viewport.getWidth(), viewport.getHeight());
    renderer->drawMix (background.getTextureID(), blurred.getTextureID());
}

bool TRQEditorGLState::blurBackground()
{
    // The blur works on canvas units, not device pixels: it looks the same at every
    // size, and a large window costs no more than one at 100 %.
    const float pixelsPerUnit = std::max (1.0f, canvasScale.load() * renderScale.load());
    const int width = std::max (1, juce::roundToInt ((float)backgroundWidth / pixelsPerUnit));
    const int height = std::max (1, juce::roundToInt ((float)backgroundHeight / pixelsPerUnit));
    const bool reduce = width < backgroundWidth || height < backgroundHeight;
    auto fits = [&] (juce::OpenGLFrameBuffer& buffer)
    {
        return (buffer.getWidth() == width && buffer.getHeight() == height) ||
               buffer.initialise (context, width, height);
    };
    if (!fits (blurred) || (reduce && !fits (reduced)))
        return false;

    const double start = juce::Time::getMillisecondCounterHiRes();
    GLint previousFrameBuffer = 0;
    glGetIntegerv (GL_FRAMEBUFFER_BINDING, &previousFrameBuffer);
    glDisable (GL_BLEND);
    glViewport (0, 0, width, height);
    GLuint source = background.getTextureID();
    if (reduce)
    {
        glBindFramebuffer (GL_FRAMEBUFFER, reduced.getFrameBufferID());
        renderer->drawTexture (background, backgroundWidth, backgroundHeight);
        source = reduced.getTextureID();
    }
    glBindFramebuffer (GL_FRAMEBUFFER, blurred.getFrameBufferID());
    renderer->drawBlurred (source);
    // Once per background: wait for it, so that its cost is known.
    glFinish();
    glBindFramebuffer (GL_FRAMEBUFFER, (GLuint)previousFrameBuffer);
    glEnable (GL_BLEND);
    lastBlurMs.store (juce::Time::getMillisecondCounterHiRes() - start);
    blurPasses.fetch_add (1);
    blurredCurrent = true;
    return true;
}

void TRQEditorGLState::renderMeters (double now)
{
    {
        std::lock_guard<std::mutex> lock (handoff);
        if (sourcePending && !(pendingSource == currentSource))
        {
            if (currentSource.messaging != nullptr)
                currentSource.messaging->clear();
            sketch.reset();
            currentSource = pendingSource;
            if (currentSource.messaging != nullptr && currentSource.sampleRate > 0.0 &&
                currentSource.blockSize > 0 && currentSource.numInputs > 0 && currentSource.numOutputs > 0)
            {
                currentSource.messaging->clear();
                sketch =
                    std::make_unique<HVNZC1TRQSketch> (*currentSource.messaging, currentSource.numInputs,
                                                       currentSource.numOutputs, currentSource.blockSize);
                sketch->setDarkMode (darkModeNow == 1);
                sketch->setMetering (meteringNow);
                sketch->setAdvancedPaneOpen (advancedNow);
            }
        }
        sourcePending = false;
    }

    int intValue = 0;
    bool boolValue = false;
    if (darkMode.take (intValue))
    {
        darkModeNow = intValue;
        if (sketch)
            sketch->setDarkMode (intValue == 1);
    }
    if (metering.take (intValue))
    {
        meteringNow = intValue;
        if (sketch)
            sketch->setMetering (intValue);
    }
    if (advancedOpen.take (boolValue))
    {
        advancedNow = boolValue;
        if (sketch)
            sketch->setAdvancedPaneOpen (boolValue);
    }

    if (sketch == nullptr)
        return;
    if (currentSource.messaging != nullptr)
        currentSource.messaging->poll();
    const double seconds = lastFrameTime > 0.0 ? juce::jlimit (0.0, 0.25, now - lastFrameTime) : 0.0;
    lastFrameTime = now;
    sketch->updateAndRender ((float)seconds, now, *renderer);
}

void TRQEditorGLState::renderFocusRing()
{
    int parameter = -1;
    if (focusParameter.take (parameter))
        focusNow = parameter;
    if (focusNow < 0 || !ring.hasRing())
        return;
    const auto r = ring.getRing();
    renderer->setRegion (r.bounds.expanded (r.width));
    renderer->setColour (juce::Colour::fromFloatRGBA (r.colour[0], r.colour[1], r.colour[2], r.colour[3]));
    // The ring's full width straddles the outline the control gave, corners rounded
    // by its radius.
    renderer->ringAround ({r.width, r.width, r.bounds.getWidth(), r.bounds.getHeight()}, r.radius, r.width);
}
