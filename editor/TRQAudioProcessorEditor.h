#pragma once

#include "editor/TRQEditorPreferences.h"
#include "editor/TRQFocusRing.h"
#include "editor/TRQLayoutComponent.h"
#include "editor/TRQLookAndFeel.h"
#include "editor/TRQMetaComponent.h"
#include "state/TRQSignals.h"

#include <juce_audio_processors/juce_audio_processors.h>
#include <juce_opengl/juce_opengl.h>

#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

class TRQAudioProcessor;
class TRQControl;
class TRQHUDControl;
class TRQTransientValueView;
class TRQParameterGestures;
class TRQEditorGLState;
class MeterMessaging;

// The window content the host shows: artwork, one control per parameter, the
// advanced pane, and the meters drawn with OpenGL over a cached background. Values
// come from the processor on a 16 ms timer; user changes go out through the gesture
// door. Without a usable OpenGL 3.2 the panel paints itself in software and shows no
// meters.
class TRQAudioProcessorEditor : public juce::AudioProcessorEditor,
                                public TRQSignals::Trackable,
                                private juce::Timer,
                                private juce::OpenGLRenderer,
                                public juce::ComponentBoundsConstrainer,
                                private juce::FocusChangeListener
{
public:
    enum GLStatus
    {
        glUnknown = 0,
        glFailed = 1,
        glGood = 2
    };

    explicit TRQAudioProcessorEditor (TRQAudioProcessor& processor,
                                      std::shared_ptr<TRQPreferenceSource> preferences = {});
    ~TRQAudioProcessorEditor() override;

    void setScaleFactor (float newScale) override;
    int getControlParameterIndex (juce::Component& component) override;
    void resized() override;
    void paint (juce::Graphics& g) override;
    std::unique_ptr<juce::ComponentTraverser> createKeyboardFocusTraverser() override;

    void setAdvancedPaneOpen (bool open, bool force);
    bool isAdvancedPaneOpen() const { return advancedPaneOpen; }
    // The single path of a new parameter value (real units) into the interface.
    void parameterChanged (int index, float value, bool notifyManager);

    // Fired after the panel took a new language.
    TRQSignals::Signal<void (int)> languageChanged;

    void setDarkMode (int mode);
    void setLanguage (TRQLanguage::Language language);
    void setUserScale (int percent);
    void setMetering (int metering);

    // Test and host-side hooks.
    TRQControl* getControl (int index) const;
    TRQHUDControl* getHUD() const { return hud.get(); }
    TRQTransientValueView& getTransientValueView() const { return *transientValue; }
    TRQEditorGLState& getGLState() const { return *gl; }
    TRQParameterGestures& getGestures() { return *gestures; }
    TRQEditorPreferences& getPreferences() { return prefs; }
    juce::Component& getRoot() { return root; }
    TRQLayoutComponent& getLayout() { return layout; }
    int getGLStatus() const;
    float getUIScaleFactor() const { return uiScaleFactor.load(); }
    float getHostScaleFactor() const { return hostScaleFactor; }
    int getMinimumWidth() const;
    // Frames rendered by the GL thread so far, and the time the last one took.
    int getFramesRendered() const;
    double getLastFrameMs() const;
    double getLastTimerMs() const { return lastTimerMs; }
    // Runs one timer tick now.
    void tick() { timerCallback(); }

    // ComponentBoundsConstrainer: the user dragged the host's or our own corner.
    void applyBoundsToComponent (juce::Component& component, juce::Rectangle<int> bounds) override;
    void resizeStart() override { isResizing = true; }
    void resizeEnd() override { isResizing = false; }

private:
    void timerCallback() override;
    void newOpenGLContextCreated() override;
    void renderOpenGL() override;
    void openGLContextClosing() override;
    void globalFocusChanged (juce::Component* focused) override;

    void createChildren();
    void applySize (float scale);
    void updateEnablement (int sourceIndex);
    void publishFocusRing();
    void renderBackgroundIfNeeded();
    void publishMeterSource();

    TRQAudioProcessor& processor;
    TRQEditorPreferences prefs;
    TRQLookAndFeel lookAndFeel;
    juce::OpenGLContext openGLContext;
    std::unique_ptr<TRQEditorGLState> gl;
    TRQDrawing drawing;
    TRQMetaComponent advancedPane, root, mainPane, centrePane;
    TRQLayoutComponent layout;
    std::shared_ptr<TRQHUDControl> hud;
    std::shared_ptr<TRQTransientValueView> transientValue;
    std::unique_ptr<TRQParameterGestures> gestures;
    std::vector<std::shared_ptr<TRQControl>> controls;
    std::array<float, 21> editorValues{};
    bool advancedPaneOpen = false;
    std::atomic<float> uiScaleFactor{1.0f};
    float hostScaleFactor = 1.0f;
    juce::Rectangle<int> targetSize;
    bool isResizing = false;
    bool glAttached = false;
    double glAttachTime = 0.0;
    double lastTimerMs = 0.0;
    juce::Rectangle<int> lastBackgroundSize;
    float lastBackgroundScale = 0.0f;
    bool backgroundDirty = true;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (TRQAudioProcessorEditor)
};
