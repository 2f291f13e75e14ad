#pragma once

#include "editor/TRQFocusRing.h"
#include "editor/TRQLayoutComponent.h"
#include "editor/TRQLookAndFeel.h"
#include "editor/TRQMetaComponent.h"
#include "editor/TRQModalViewer.h"
#include "editor/TRQPopupMenuHandler.h"
#include "state/TRQSignals.h"
#include "state/TRQUserPrefs.h"

#include <juce_audio_processors/juce_audio_processors.h>
#include <juce_opengl/juce_opengl.h>

#include <array>
#include <atomic>
#include <deque>
#include <memory>
#include <mutex>
#include <vector>

class TRQAudioProcessor;
class TRQControl;
class TRQHUDControl;
class TRQTransientValueView;
class TRQParameterGestures;
class TRQEditorGLState;
class TRQPresetController;
class TRQPresetView;
class TRQTaskButtons;
class TRQToolbar;
class TRQTooltipWindow;
class MeterMessaging;

// The window content the host shows: artwork, one control per parameter, the
// advanced pane, and the meters drawn with OpenGL over a cached background. Values
// come from the processor on a 16 ms timer; user changes go out through the gesture
// door. Without a usable OpenGL 3.2 the panel paints itself in software and shows no
// meters.
class TRQAudioProcessorEditor : public juce::AudioProcessorEditor,
                                public TRQPopupMenuHandler,
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

    explicit TRQAudioProcessorEditor (TRQAudioProcessor& processor);
    ~TRQAudioProcessorEditor() override;

    void setScaleFactor (float newScale) override;
    int getControlParameterIndex (juce::Component& component) override;
    void resized() override;
    void paint (juce::Graphics& g) override;
    // Nothing of the panel but the menu takes the mouse while its context menu is open.
    bool hitTest (int x, int y) override;
    void mouseDown (const juce::MouseEvent& e) override;
    std::unique_ptr<juce::ComponentTraverser> createKeyboardFocusTraverser() override;

    void setAdvancedPaneOpen (bool open, bool force);
    // Modal states: 0 none, 1 the preset browser, 2 a preset form chosen by the
    // settings. Each opening can be pushed on a back stack that closeModal pops.
    void openModal (int state, bool pushHistory, const TRQModalViewer::ModalSettings& settings);
    void closeModal (int count);
    int getModalState() const { return modalState; }
    const TRQModalViewer::ModalSettings& getModalSettings() const { return modalSettings; }
    size_t getModalHistorySize() const { return modalHistory.size(); }
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
    TRQToolbar* getToolbar() const { return toolbar.get(); }
    TRQTaskButtons* getTaskButtons() const { return taskButtons.get(); }
    TRQPresetView* getPresetView() const { return presetView.get(); }
    TRQModalViewer& getModalViewer() { return modalViewer; }
    TRQTooltipWindow& getTooltipWindow() const { return *tooltipWindow; }
    TRQTransientValueView& getTransientValueView() const { return *transientValue; }
    TRQEditorGLState& getGLState() const { return *gl; }
    TRQParameterGestures& getGestures() { return *gestures; }
    TRQUserPrefs::EditorPrefs& getPreferences() { return prefs; }
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
    friend class TRQPopupMenuHandler;

    void timerCallback() override;
    void newOpenGLContextCreated() override;
    void renderOpenGL() override;
    void openGLContextClosing() override;
    void globalFocusChanged (juce::Component* focused) override;

    void createChildren();
    void connectPresetSignals();
    void toolbarPressed (int id, int state);
    void taskButtonPressed (int id, int state);
    void toggleAB (bool copy);
    void showPresetName();
    void applySize (float scale);
    void updateEnablement (int sourceIndex);
    void publishFocusRing();
    void renderBackgroundIfNeeded();
    void publishMeterSource();
    // The preset save form, or with update the form that rewrites the current preset.
    void openPresetForm (bool update);

    TRQAudioProcessor& processor;
    TRQUserPrefs::EditorPrefs prefs;
    TRQLookAndFeel lookAndFeel;
    juce::OpenGLContext openGLContext;
    std::unique_ptr<TRQEditorGLState> gl;
    TRQDrawing drawing;
    TRQMetaComponent advancedPane, root, mainPane, centrePane;
    TRQLayoutComponent layout;
    std::shared_ptr<TRQHUDControl> hud;
    std::shared_ptr<TRQPresetView> presetView;
    std::shared_ptr<TRQTaskButtons> taskButtons;
    std::shared_ptr<TRQToolbar> toolbar;
    TRQModalViewer modalViewer;
    std::unique_ptr<TRQTooltipWindow> tooltipWindow;
    std::shared_ptr<TRQPresetController> presetController;
    int modalState = 0;
    TRQModalViewer::ModalSettings modalSettings;
    std::deque<std::pair<int, TRQModalViewer::ModalSettings>> modalHistory;
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
