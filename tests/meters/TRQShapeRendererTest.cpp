#include "meters/TRQShapeRenderer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
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
        for (int i = 0; i < 600 && !done.load(); ++i)
            juce::MessageManager::getInstance()->runDispatchLoopUntil (10);
        return done.load();
    }

    // Red channel at (x, y), y counted from the top as on screen.
    int redAt (int x, int y) const { return pixels[(size_t)(((99 - y) * 200 + x) * 4)]; }
    int greenAt (int x, int y) const { return pixels[(size_t)(((99 - y) * 200 + x) * 4 + 1)]; }

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
        // The native surface follows the component's size asynchronously; on a busy
        // machine the first frames may still land in a smaller one.
        if (++framesSeen < settleFrames)
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
    static constexpr int settleFrames = 10;
    int framesSeen = 0;
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

namespace
{
// One tap of the background blur's kernel, before normalisation.
double kernelTap (int x)
{
    const double sigma = 15.0;
    return 0.39894 * std::exp (-0.5 * x * x / (sigma * sigma)) / sigma;
}

juce::Image halfWhite()
{
    juce::Image image (juce::Image::ARGB, 200, 100, true);
    juce::Graphics g (image);
    g.fillAll (juce::Colours::black);
    g.setColour (juce::Colours::white);
    g.fillRect (0, 0, 100, 100);
    return image;
}
} // namespace

TEST (TRQShapeRenderer, BlurSpreadsAnEdgeOverSevenPixelsEachSide)
{
    if (!glAvailable())
        GTEST_SKIP() << "needs a display with OpenGL 3.2";
    ShapeProbe probe (
        [] (TRQShapeRenderer& r)
        {
            juce::OpenGLTexture texture;
            texture.loadImage (halfWhite());
            glDisable (GL_BLEND);
            r.drawBlurred (texture.getTextureID());
        });
    ASSERT_TRUE (probe.waitForFrame());
    EXPECT_FALSE (probe.failed);
    double sum = 0.0;
    for (int i = -7; i <= 7; ++i)
        sum += kernelTap (i);
    // Column 100 + d sees white through the taps 7 .. d + 1 to its left.
    for (int d = -9; d <= 9; ++d)
    {
        double white = 0.0;
        for (int i = -7; i <= 7; ++i)
            white += (100 + d + i < 100) ? kernelTap (i) : 0.0;
        const double expected = 255.0 * white / sum;
        EXPECT_NEAR (probe.redAt (100 + d, 50), expected, 2.5) << "column " << 100 + d;
    }
    // Normalised by the square of the kernel sum: flat areas keep their level, the
    // image's own edges included.
    EXPECT_GE (probe.redAt (10, 50), 254);
    EXPECT_GE (probe.redAt (0, 0), 254);
    EXPECT_LE (probe.redAt (190, 50), 1);
    EXPECT_GE (probe.redAt (50, 2), 254);
}

TEST (TRQShapeRenderer, MixLaysTheSecondTextureOverByItsAlpha)
{
    if (!glAvailable())
        GTEST_SKIP() << "needs a display with OpenGL 3.2";
    ShapeProbe probe (
        [] (TRQShapeRenderer& r)
        {
            juce::Image base (juce::Image::ARGB, 200, 100, true);
            base.clear (base.getBounds(), juce::Colours::red);
            // JUCE keeps images premultiplied: a quarter-opaque green is (0, 64, 0, 64).
            juce::Image overlay (juce::Image::ARGB, 200, 100, true);
            overlay.clear ({0, 0, 100, 100}, juce::Colour (0x4000ff00));
            juce::OpenGLTexture t0, t1;
            t0.loadImage (base);
            t1.loadImage (overlay);
            glDisable (GL_BLEND);
            r.drawMix (t0.getTextureID(), t1.getTextureID());
        });
    ASSERT_TRUE (probe.waitForFrame());
    EXPECT_FALSE (probe.failed);
    // mix (t0, t1, t1.a) with t1.a = 0.25.
    EXPECT_NEAR (probe.redAt (50, 50), 191, 3);
    EXPECT_NEAR (probe.greenAt (50, 50), 16, 3);
    // Where the overlay is transparent the base shows unchanged.
    EXPECT_GE (probe.redAt (150, 50), 254);
    EXPECT_LE (probe.greenAt (150, 50), 1);
}
