#include "meters/TRQShapeRenderer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <functional>

using namespace juce::gl;

namespace
{
// A window whose GL thread runs one drawing job on a black viewport and reads the
// pixels back.
class ShapeProbe : public juce::Component, private juce::OpenGLRenderer
{
public:
    using Job = std::function<void (TRQShapeRenderer&)>;

    explicit ShapeProbe (Job j)
        : job (std::move (j))
    {
        setSize (200, 100);
        context.setOpenGLVersionRequired (juce::OpenGLContext::openGL3_2);
        context.setRenderer (this);
        context.setComponentPaintingEnabled (false);
        context.setContinuousRepainting (true);
        setTopLeftPosition (40, 40);
        addToDesktop (0);
        setVisible (true);
        context.attachTo (*this);
    }
    ~ShapeProbe() override { context.detach(); }

    // Waits for a finished frame; false when GL never came.
    bool waitForFrame()
    {
        for (int i = 0; i < 300 && !done.load(); ++i)
            juce::MessageManager::getInstance()->runDispatchLoopUntil (10);
        return done.load();
    }

    // Red channel at (x, y), y counted from the top as on screen.
    int redAt (int x, int y) const { return pixels[(size_t)(((99 - y) * 200 + x) * 4)]; }

    bool scissorWasOnAfter = true;
    GLint scissorBoxAfter[4] = {};
    bool failed = false;

private:
    void newOpenGLContextCreated() override { renderer = std::make_unique<TRQShapeRenderer> (context); }
    void openGLContextClosing() override
    {
        renderer->release();
        renderer.reset();
    }
    void renderOpenGL() override
    {
        if (done.load() || renderer == nullptr)
            return;
        glViewport (0, 0, 200, 100);
        juce::OpenGLHelpers::clear (juce::Colours::black);
        glEnable (GL_BLEND);
        glBlendFunc (GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        glDisable (GL_SCISSOR_TEST);
        glScissor (1, 2, 3, 4);
        renderer->beginFrame (1.0f, 200, 100, 1.0f);
        renderer->setColour (juce::Colours::white);
        job (*renderer);
        scissorWasOnAfter = glIsEnabled (GL_SCISSOR_TEST) != 0;
        glGetIntegerv (GL_SCISSOR_BOX, scissorBoxAfter);
        pixels.resize (200 * 100 * 4);
        glReadPixels (0, 0, 200, 100, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
        failed = renderer->hasFailed();
        done.store (true);
    }

    Job job;
    juce::OpenGLContext context;
    std::unique_ptr<TRQShapeRenderer> renderer;
    std::vector<juce::uint8> pixels;
    std::atomic<bool> done{false};
};

bool glAvailable()
{
    const char* expect = std::getenv ("ZOLK_EXPECT_GL");
    return std::getenv ("DISPLAY") != nullptr && (expect == nullptr || juce::String (expect) != "0");
}
} // namespace

TEST (TRQShapeRenderer, ShapesCoverWhatTheirFormulasSay)
{
    if (!glAvailable())
        GTEST_SKIP() << "needs a display with OpenGL 3.2";
    ShapeProbe probe (
        [] (TRQShapeRenderer& r)
        {
            r.setRegion ({0.0f, 0.0f, 200.0f, 100.0f});
            r.gradientFraction = 1.0f;
            r.gradientCircle ({50.0f, 50.0f}, 20.0f);
            r.fillRect ({120.0f, 10.0f, 30.0f, 20.0f});
            r.strokeRect ({120.0f, 60.0f, 30.0f, 30.0f}, 0.0f);
        });
    ASSERT_TRUE (probe.waitForFrame());
    EXPECT_FALSE (probe.failed);
    // Gradient circle: full at the centre, nothing past the rim, half way between.
    EXPECT_GT (probe.redAt (50, 50), 240);
    EXPECT_LT (probe.redAt (50, 75), 10);
    EXPECT_NEAR (probe.redAt (50, 60), 128, 40);
    // Filled rectangle inside, nothing outside.
    EXPECT_GT (probe.redAt (135, 20), 240);
    EXPECT_LT (probe.redAt (135, 35), 10);
    // A stroke of width zero shows nothing.
    for (int x = 118; x < 153; ++x)
        EXPECT_LT (probe.redAt (x, 60), 10);
    // The caller's scissor state comes back as it was.
    EXPECT_FALSE (probe.scissorWasOnAfter);
    EXPECT_EQ (probe.scissorBoxAfter[0], 1);
    EXPECT_EQ (probe.scissorBoxAfter[3], 4);
}

TEST (TRQShapeRenderer, RegionsClipAndOutsideDrawsNothing)
{
    if (!glAvailable())
        GTEST_SKIP() << "needs a display with OpenGL 3.2";
    ShapeProbe probe (
        [] (TRQShapeRenderer& r)
        {
            // A rectangle bigger than its region is cut at the region's edge.
            r.setRegion ({10.0f, 10.0f, 40.0f, 40.0f});
            r.fillRect ({-20.0f, -20.0f, 100.0f, 100.0f});
            // A region off the viewport draws nothing at all.
            r.setRegion ({300.0f, 300.0f, 50.0f, 50.0f});
            r.fillRect ({0.0f, 0.0f, 50.0f, 50.0f});
            r.setRegion ({0.0f, 0.0f, 200.0f, 100.0f});
            std::vector<juce::Point<float>> segment{{100.0f, 80.0f}, {190.0f, 80.0f}};
            r.lines (segment, 4.0f);
        });
    ASSERT_TRUE (probe.waitForFrame());
    EXPECT_GT (probe.redAt (30, 30), 240);
    EXPECT_LT (probe.redAt (55, 30), 10);
    EXPECT_LT (probe.redAt (5, 5), 10);
    // The line is as wide as its stroke.
    EXPECT_GT (probe.redAt (150, 80), 240);
    EXPECT_LT (probe.redAt (150, 84), 10);
}
