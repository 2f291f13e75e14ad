#pragma once

#include "editor/TRQFocusRing.h"

#include <juce_opengl/juce_opengl.h>

#include <atomic>
#include <memory>
#include <mutex>

class HVNZC1TRQSketch;
class MeterMessaging;
class TRQShapeRenderer;

// Everything the GL thread reads or owns: value-and-flag pairs the message thread
// publishes, the cached background handed over as an image, the shape renderer and
// the meter sketch. The message thread never touches the GL-side objects.
class TRQEditorGLState
{
public:
    struct MeterSource
    {
        std::shared_ptr<MeterMessaging> messaging;
        double sampleRate = 0.0;
        uint32_t blockSize = 0, numInputs = 0, numOutputs = 0;
        bool operator== (const MeterSource& o) const
        {
            return messaging == o.messaging && sampleRate == o.sampleRate && blockSize == o.blockSize &&
                   numInputs == o.numInputs && numOutputs == o.numOutputs;
        }
    };

    template<typename T>
    struct Published
    {
        std::atomic<T> value{};
        std::atomic<bool> changed{false};
        void publish (T v)
        {
            value.exchange (v);
            changed.exchange (true);
        }
        bool take (T& out)
        {
            if (!changed.exchange (false))
                return false;
            out = value.load();
            return true;
        }
    };

    explicit TRQEditorGLState (juce::OpenGLContext& context);
    ~TRQEditorGLState();

    // Message thread.
    void publishBackground (juce::Image image);
    void publishMeterSource (MeterSource source);

    // GL thread.
    void contextCreated();
    void contextClosing();
    void render (juce::Rectangle<int> viewportPixels, float renderScale);

    std::atomic<int> status{0};
    std::atomic<float> canvasScale{1.0f};
    std::atomic<float> renderScale{1.0f};
    std::atomic<bool> modalShowing{false};
    Published<int> darkMode, metering;
    Published<bool> advancedOpen;
    Published<int> focusParameter;
    TRQFocusRing ring; // in canvas units of the root
    std::atomic<int> frames{0};
    // Times the background was blurred, which a modal shown for a while does once.
    std::atomic<int> blurPasses{0};
    std::atomic<double> lastBlurMs{0.0};
    std::atomic<double> lastFrameMs{0.0};

private:
    bool checkContext();
    void renderMeters (double nowSeconds);
    void renderFocusRing();
    void drawBackground (juce::Rectangle<int> viewport);
    bool blurBackground();

    juce::OpenGLContext& context;
    const double createdMs;
    std::mutex handoff;
    juce::Image pendingBackground;
    bool backgroundPending = false;
    MeterSource pendingSource;
    bool sourcePending = false;

    // GL thread only.
    std::unique_ptr<TRQShapeRenderer> renderer;
    std::unique_ptr<HVNZC1TRQSketch> sketch;
    MeterSource currentSource;
    juce::OpenGLTexture background;
    int backgroundWidth = 0, backgroundHeight = 0;
    // The background blurred behind a modal, made once per background and size.
    juce::OpenGLFrameBuffer blurred, reduced;
    bool blurredCurrent = false;
    int darkModeNow = 0, meteringNow = 1, focusNow = -1;
    bool advancedNow = false;
    double lastFrameTime = 0.0;
    double lastFrameStart = 0.0;
    static constexpr double minimumFrameMs = 16.0;
};
