#include "editor/TRQAudioProcessorEditor.h"

#include "core/TRQAudioProcessor.h"
#include "editor/TRQBrowser.h"
#include "editor/TRQControl.h"
#include "editor/TRQEditorGLState.h"
#include "editor/TRQEditorSize.h"
#include "editor/TRQHUDControl.h"
#include "editor/TRQIndexedControl.h"
#include "editor/TRQKeyboardFocusTraverser.h"
#include "editor/TRQParameterGestures.h"
#include "editor/TRQPresetModal.h"
#include "editor/TRQPresetView.h"
#include "editor/TRQSlider.h"
#include "editor/TRQTaskButtons.h"
#include "editor/TRQToggle.h"
#include "editor/TRQToolbar.h"
#include "editor/TRQTooltipWindow.h"
#include "editor/TRQTransientValueView.h"
#include "editor/TRQValueLaw.h"
#include "presets/TRQPresetController.h"
#include "presets/TRQPresetURL.h"
#include "state/ParameterCatalogue.h"
#include "state/ParameterRange.h"
#include "state/TRQAudioParameter.h"
#include "state/TRQParameterManager.h"
#include "state/TRQUndoManager.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace
{
// If the context has not rendered a single frame by then, the platform has no
// usable OpenGL and the panel paints itself.
constexpr double glGiveUpMs = 3000.0;

std::shared_ptr<TRQControl> makeControl (int index, TRQAudioParameter& parameter,
                                         TRQParameterGestures& gestures)
{
    const auto& row = ParameterCatalogue::row (static_cast<ParameterId> (index));
    switch (row.toggleKind)
    {
    case 0:
        return std::make_shared<TRQSlider> (index, parameter, gestures);
    case 1:
    case 2:
    case 3:
        return std::make_shared<TRQIndexedControl> (index, parameter, gestures);
    case 7:
    case 8:
        return std::make_shared<TRQToggle> (index, parameter, gestures);
    default:
        return nullptr;
    }
}
} // namespace

TRQAudioProcessorEditor::TRQAudioProcessorEditor (TRQAudioProcessor& p)
    : juce::AudioProcessorEditor (p)
    , processor (p)
    , prefs (TRQUserPrefs::EditorPrefs::loaded())
    , lookAndFeel (prefs.fontSource.get() == TRQUserPrefs::FontSource::System)
    , gl (std::make_unique<TRQEditorGLState> (openGLContext))
    , drawing (TRQDrawing::get())
    , gestures (std::make_unique<TRQParameterGestures> (p))
{
    presetController = p.getPresetController();
    setLookAndFeel (&lookAndFeel);
    juce::LookAndFeel::setDefaultLookAndFeel (&lookAndFeel);
    lookAndFeel.setStyle ((int)prefs.darkMode.get());

    addAndMakeVisible (root);
    root.addAndMakeVisible (layout);
    layout.setBounds (0, 0, TRQEditorSize::canvasWidth, TRQEditorSize::canvasHeight);
    root.addChildComponent (advancedPane);
    root.addAndMakeVisible (mainPane);
    root.addAndMakeVisible (centrePane);
    advancedPane.setBounds (457, 0, 336, 380);
    mainPane.setBounds (0, 0, 395, 350);
    centrePane.setBounds (395, 0, 62, 380);

    processor.dspAnnounced.connect (&TRQAudioProcessorEditor::publishMeterSource, this);
    createChildren();
    transientValue = std::make_shared<TRQTransientValueView>();
    root.addChild (transientValue, false);

    gl->darkMode.publish ((int)prefs.darkMode.get());
    gl->metering.publish ((int)prefs.metering.get());
    layout.setStyle ((int)prefs.darkMode.get());
    layout.setLanguage (TRQLanguage::drawingLanguage (prefs.language.get()));
    for (auto& control : controls)
        if (control != nullptr)
            control->setLanguageAndStyle (TRQLanguage::drawingLanguage (prefs.language.get()),
                                          (int)prefs.darkMode.get());
    hud->setLanguageAndStyle (TRQLanguage::drawingLanguage (prefs.language.get()), (int)prefs.darkMode.get());

    const bool open =
        prefs.alwaysOpenAdvPane.get() == TRQUserPrefs::AlwaysOpenAdvPane::On ||
        processor.getPluginState().getAttribute (TRQPluginState::advancedPaneAttribute) == "1" ||
        processor.getPluginState().getAttribute (TRQPluginState::advancedPaneAttribute) == "true";
    setAdvancedPaneOpen (open, true);
    connectPresetSignals();

    for (int i = 0; i < TRQAudioProcessor::numParameters; ++i)
    {
        editorValues[(size_t)i] = std::numeric_limits<float>::quiet_NaN();
        parameterChanged (i, processor.getAudioParameter (i).getRealValue(), false);
    }

    const auto locks = processor.getPluginState().getLockStates();
    for (size_t i = 0; i < locks.size(); ++i)
        if (controls[i] != nullptr)
            controls[i]->setLocked (locks[i]);

    setWantsKeyboardFocus (prefs.doubleClickKeyEntry.get() == TRQUserPrefs::DoubleClickKeyEntry::Off);
    setFocusContainerType (FocusContainerType::keyboardFocusContainer);
    setResizable (true, true);
    setConstrainer (this);
    setScaleFactor (1.0f);
    publishMeterSource();

    juce::Desktop::getInstance().addFocusChangeListener (this);

    juce::OpenGLPixelFormat format;
    format.multisamplingLevel = 8;
    openGLContext.setPixelFormat (format);
    openGLContext.setMultisamplingEnabled (true);
    openGLContext.setOpenGLVersionRequired (juce::OpenGLContext::openGL3_2);
    openGLContext.setRenderer (this);
    openGLContext.setContinuousRepainting (true);
    openGLContext.setComponentPaintingEnabled (true);
    openGLContext.attachTo (*this);
    glAttached = true;
    glAttachTime = juce::Time::getMillisecondCounterHiRes();

    startTimer (16);
}

TRQAudioProcessorEditor::~TRQAudioProcessorEditor()
{
    dismissPopupMenu();
    juce::Desktop::getInstance().removeFocusChangeListener (this);
    stopTimer();
    openGLContext.detach();
    // Take the controls down while the editor is whole: a focused control that goes
    // away hands the focus up to us, and our traverser walks the controls.
    if (auto* focused = juce::Component::getCurrentlyFocusedComponent();
        focused != nullptr && isParentOf (focused))
        focused->giveAwayKeyboardFocus();
    modalViewer.clear();
    for (auto* pane : {&mainPane, &centrePane, &advancedPane})
        pane->removeAllChildren();
    root.removeAllChildren();
    removeAllChildren();
    controls.clear();
    setLookAndFeel (nullptr);
    if (&juce::LookAndFeel::getDefaultLookAndFeel() == &lookAndFeel)
        juce::LookAndFeel::setDefaultLookAndFeel (nullptr);
    for (auto& control : controls)
        if (control != nullptr)
            control->setLookAndFeel (nullptr);
}

void TRQAudioProcessorEditor::createChildren()
{
    controls.resize ((size_t)TRQAudioProcessor::numParameters);
    TRQMetaComponent* panes[] = {&mainPane, &centrePane, &advancedPane};
    for (int i = 0; i < TRQAudioProcessor::numParameters; ++i)
    {
        auto control = makeControl (i, processor.getAudioParameter (i), *gestures);
        if (control == nullptr)
            continue;
        const auto& row = control->getRow();
        auto* pane = panes[std::min<uint32_t> (row.pane, 2)];
        control->setBounds (
            juce::Rectangle<float> (row.frame.x, row.frame.y, row.frame.width, row.frame.height)
                .translated (-(float)pane->getX(), -(float)pane->getY())
                .toNearestInt());
        control->setScrollEnabled (prefs.scrolling.get() == TRQUserPrefs::Scrolling::On);
        control->setDoubleClickKeyEntry (prefs.doubleClickKeyEntry.get() ==
                                         TRQUserPrefs::DoubleClickKeyEntry::On);
        pane->addChild (control, true);
        controls[(size_t)i] = control;
    }
    hud = std::make_shared<TRQHUDControl> (*gestures);
    root.addAndMakeVisible (*hud);

    toolbar = std::make_shared<TRQToolbar>();
    toolbar->setBounds (0, 350, 395, 30);
    toolbar->setStyle ((int)prefs.darkMode.get());
    toolbar->pressed.connect (&TRQAudioProcessorEditor::toolbarPressed, this);
    root.addAndMakeVisible (*toolbar);

    presetView = std::make_shared<TRQPresetView> (presetController);
    presetView->setBounds (0, 0, 395, 350);
    presetView->setStyle ((int)prefs.darkMode.get());
    presetView->closeSignal.connect (this, [this] { closeModal (1); });
    presetView->modalSignal.connect (this, [this] (int state, const TRQModalViewer::ModalSettings& settings)
                                     { openModal (state, true, settings); });
    root.addChildComponent (*presetView);

    taskButtons = std::make_shared<TRQTaskButtons>();
    taskButtons->setBounds (395, 0, 62, 380);
    taskButtons->pressed.connect (&TRQAudioProcessorEditor::taskButtonPressed, this);
    root.addAndMakeVisible (*taskButtons);

    modalViewer.closedSignal.connect (this, [this] { closeModal (1); });
    root.addChildComponent (modalViewer);

    tooltipWindow = std::make_unique<TRQTooltipWindow> (&root, 700);
}

void TRQAudioProcessorEditor::connectPresetSignals()
{
    auto& manager = processor.getParameterManager();
    toolbar->setActiveSlot (manager.getIsOnB() ? 1 : 0);
    gestures->onABAction = [this] (int action) { toggleAB (action == 1); };

    auto& undo = processor.getUndoManager();
    undo.stateChanged.connect (toolbar.get(), [this] (bool canUndo, bool canRedo)
                               { toolbar->setUndoState (canUndo, canRedo); });
    toolbar->setUndoState (undo.canUndo(), undo.canRedo());

    if (presetController == nullptr)
        return;
    presetController->presetNameChanged.connect (toolbar.get(),
                                                 [this] (const juce::String&, bool) { showPresetName(); });
    presetController->modifiedChanged.connect (toolbar.get(),
                                               [this] (bool modified) { toolbar->setModified (modified); });
    presetController->presetsLoaded.connect (toolbar.get(), [this] { showPresetName(); });
    showPresetName();
}

void TRQAudioProcessorEditor::showPresetName()
{
    const auto& presets = presetController->getPresets();
    const auto index = presetController->getCurrentPresetIndex();
    const bool has = presetController->getHasSelection() && index < presets.size();
    // A preset without a name of its own still needs something to click on.
    const auto name = has && presets[index].name.isNotEmpty() ? presets[index].name : juce::String ("None");
    toolbar->setPresetName (name, presetController->getIsModified());
}

void TRQAudioProcessorEditor::toolbarPressed (int id, int state)
{
    auto& undo = processor.getUndoManager();
    switch (id)
    {
    case TRQToolbar::Presets:
        if (state == 1)
            openModal (1, true, {});
        else
        {
            modalHistory.clear();
            openModal (0, false, {});
        }
        break;
    case TRQToolbar::PrevPreset:
    case TRQToolbar::NextPreset:
        if (presetController != nullptr && !presetController->getPresets().empty())
        {
            const auto count = (std::uint32_t)presetController->getPresets().size();
            auto i = presetController->getCurrentPresetIndex();
            if (id == TRQToolbar::PrevPreset)
                i = (i == 0 ? count : i) - 1;
            else if (++i >= count)
                i -= count;
            presetController->selectPreset (i, true, true);
        }
        break;
    case TRQToolbar::Undo:
        undo.undo();
        toolbar->setUndoState (undo.canUndo(), undo.canRedo());
        break;
    case TRQToolbar::Redo:
        undo.redo();
        toolbar->setUndoState (undo.canUndo(), undo.canRedo());
        break;
    case TRQToolbar::SelectA:
    case TRQToolbar::SelectB:
        // Only a press on the slot that isn't live switches; the live one stays lit.
        if ((id == TRQToolbar::SelectB) != processor.getParameterManager().getIsOnB())
            toggleAB (false);
        else
            toolbar->setActiveSlot (processor.getParameterManager().getIsOnB() ? 1 : 0);
        break;
    case TRQToolbar::CopyAB:
        toggleAB (true);
        break;
    default:
        break;
    }
}

void TRQAudioProcessorEditor::toggleAB (bool copy)
{
    const auto uuid = presetController != nullptr ? presetController->lastUuid() : juce::String();
    const bool onB = processor.getParameterManager().toggleAB (uuid, copy);
    toolbar->setActiveSlot (onB ? 1 : 0);
}

void TRQAudioProcessorEditor::taskButtonPressed (int id, int state)
{
    if (id == TRQTaskButtons::AdvancedControls)
        setAdvancedPaneOpen (state != 0, false);
    else if (id == TRQTaskButtons::GetCurrentSettings)
        TRQBrowser::open (TRQPresetURL::settingsAsUrl (processor));
}

void TRQAudioProcessorEditor::openModal (int state, bool pushHistory,
                                         const TRQModalViewer::ModalSettings& settings)
{
    if (state == modalState && settings == modalSettings)
        return;
    const int width = advancedPaneOpen ? TRQEditorSize::canvasWidth : TRQEditorSize::closedWidth;
    switch (state)
    {
    case 0:
        presetView->setVisible (false);
        modalViewer.clear();
        toolbar->setPresetsOpen (false);
        mainPane.setInterceptsMouseClicks (true, true);
        break;
    case 1:
        modalViewer.clear();
        mainPane.setInterceptsMouseClicks (false, false);
        presetView->setVisible (true);
        toolbar->setPresetsOpen (true);
        break;
    case 2:
    {
        presetView->setVisible (false);
        TRQPresetController::Values values{};
        for (int i = 0; i < TRQAudioProcessor::numParameters; ++i)
            values[(size_t)i] =
                snapAndClamp (static_cast<ParameterId> (i), processor.getAudioParameter (i).getRealValue());
        auto form = TRQPresetModal::make (presetController, values, settings);
        form->closeSignal.connect (this, [this] (int count) { closeModal (count); });
        form->modalSignal.connect (this, [this] (int next, const TRQModalViewer::ModalSettings& s)
                                   { openModal (next, true, s); });
        modalViewer.show (form, 0.925f, settings, width);
        if (auto* name = form->getNameEditor())
        {
            name->getField().grabKeyboardFocus();
            name->getField().selectAll();
        }
        break;
    }
    default:
        return;
    }
    if (pushHistory)
        modalHistory.emplace_back (modalState, modalSettings);
    modalState = state;
    modalSettings = settings;
    gl->modalShowing.store (state == 2);
    // The browser covers the main pane only; a form covers everything.
    for (auto& control : controls)
        if (control != nullptr)
            control->setInModal (state == 2 || (state == 1 && control->getParentComponent() == &mainPane));
}

void TRQAudioProcessorEditor::closeModal (int count)
{
    for (int i = 0; i < count; ++i)
    {
        if (modalHistory.empty())
        {
            openModal (0, false, {});
            continue;
        }
        const auto previous = modalHistory.back();
        modalHistory.pop_back();
        openModal (previous.first, false, previous.second);
    }
}

TRQControl* TRQAudioProcessorEditor::getControl (int index) const
{
    return index >= 0 && (size_t)index < controls.size() ? controls[(size_t)index].get() : nullptr;
}

int TRQAudioProcessorEditor::getMinimumWidth() const
{
    return processor.wrapperType == juce::AudioProcessor::wrapperType_AAX ? 453 : 100;
}

int TRQAudioProcessorEditor::getGLStatus() const
{
    return gl->status.load();
}

int TRQAudioProcessorEditor::getFramesRendered() const
{
    return gl->frames.load();
}

double TRQAudioProcessorEditor::getLastFrameMs() const
{
    return gl->lastFrameMs.load();
}

void TRQAudioProcessorEditor::applySize (float scale)
{
    const auto size = TRQEditorSize::compute (scale, advancedPaneOpen, hostScaleFactor, getMinimumWidth());
    uiScaleFactor.store (size.uiScaleFactor);
    gl->canvasScale.store (size.uiScaleFactor * hostScaleFactor);
    targetSize = {0, 0, size.width, size.height};
    setSize (size.width, size.height);
    resized();
}

void TRQAudioProcessorEditor::setScaleFactor (float newScale)
{
    if (newScale != hostScaleFactor)
        hostScaleFactor = newScale;
    applySize ((float)prefs.uiScale.get() * 0.01f);
}

void TRQAudioProcessorEditor::setUserScale (int percent)
{
    if (percent != prefs.uiScale.get())
        prefs.uiScale.set (percent);
    applySize ((float)percent * 0.01f);
}

void TRQAudioProcessorEditor::applyBoundsToComponent (juce::Component&, juce::Rectangle<int> bounds)
{
    const int percent =
        std::min (TRQEditorSize::percentForWidth (bounds.getWidth(), advancedPaneOpen, hostScaleFactor),
                  TRQUserPrefs::UIScalePref::largest);
    // A drag passes many sizes; the file is written only when the percentage moves.
    if (percent != prefs.uiScale.get())
        prefs.uiScale.set (percent);
    applySize ((float)percent * 0.01f);
}

void TRQAudioProcessorEditor::resized()
{
    if (!targetSize.isEmpty() && getLocalBounds() != targetSize)
    {
        setSize (targetSize.getWidth(), targetSize.getHeight());
        return;
    }
    root.setTransform (juce::AffineTransform::scale (uiScaleFactor.load() * hostScaleFactor));
    backgroundDirty = true;
}

void TRQAudioProcessorEditor::paint (juce::Graphics& g)
{
    // Behind the layout only while nothing else paints, such as between the first
    // frame and the first paint of the layout.
    if (gl->status.load() != glGood)
        g.fillAll (juce::Colour (0xff333333));
}

bool TRQAudioProcessorEditor::hitTest (int x, int y)
{
    return mayTakeMouseAt ({x, y}) && juce::AudioProcessorEditor::hitTest (x, y);
}

void TRQAudioProcessorEditor::mouseDown (const juce::MouseEvent& e)
{
    handleEditorMouseDown (e);
}

void TRQAudioProcessorEditor::openPresetForm (bool update)
{
    TRQModalViewer::ModalSettings settings;
    if (update)
    {
        if (presetController == nullptr || !presetController->getHasSelection())
            return;
        const auto preset = presetController->getPreset (presetController->getCurrentPresetIndex());
        if (!preset)
            return;
        settings.hasForm = true;
        settings.set (TRQModalViewer::ModalSettings::kind, TRQPresetModal::updateForm)
            .set (TRQModalViewer::ModalSettings::uuid, preset.value.uuid);
    }
    openModal (2, true, settings);
}

int TRQAudioProcessorEditor::getControlParameterIndex (juce::Component& component)
{
    // With Alt held the press belongs to the control's reset, not the host.
    if (TRQValueLaw::modifiersAre (juce::ModifierKeys::getCurrentModifiers(),
                                   juce::ModifierKeys::altModifier))
        return -1;
    for (auto* c = &component; c != nullptr && c != this; c = c->getParentComponent())
        if (auto* control = dynamic_cast<TRQControl*> (c))
            return control->getParameterIndex();
    return -1;
}

std::unique_ptr<juce::ComponentTraverser> TRQAudioProcessorEditor::createKeyboardFocusTraverser()
{
    if (controls.empty())
        return juce::Component::createKeyboardFocusTraverser();
    return std::make_unique<TRQKeyboardFocusTraverser> (controls, [this] { return advancedPaneOpen; });
}

void TRQAudioProcessorEditor::setAdvancedPaneOpen (bool open, bool force)
{
    if (!force && open == advancedPaneOpen)
        return;
    advancedPaneOpen = open;
    gl->advancedOpen.publish (open);
    if (force && taskButtons != nullptr)
        taskButtons->setButtonState (TRQTaskButtons::AdvancedControls, open ? 1 : 0);
    if (modalViewer.isShowingModal())
        modalViewer.setBounds (0, 0, open ? TRQEditorSize::canvasWidth : TRQEditorSize::closedWidth, 380);
    if (!open)
    {
        root.setBounds (0, 0, TRQEditorSize::closedWidth, TRQEditorSize::canvasHeight);
        advancedPane.setVisible (false);
        processor.getPluginState().setAdvancedPaneIsOpen (false);
        if (auto* focused = juce::Component::getCurrentlyFocusedComponent())
            if (advancedPane.isParentOf (focused))
                focused->giveAwayKeyboardFocus();
    }
    else
    {
        for (auto& control : controls)
            if (control != nullptr && control->getRow().pane == 2)
                control->refresh (true);
        advancedPane.setVisible (true);
        root.setBounds (0, 0, TRQEditorSize::canvasWidth, TRQEditorSize::canvasHeight);
        processor.getPluginState().setAdvancedPaneIsOpen (true);
    }
    applySize ((float)prefs.uiScale.get() * 0.01f);
}

void TRQAudioProcessorEditor::parameterChanged (int index, float value, bool notifyManager)
{
    if (index < 0 || index >= TRQAudioProcessor::numParameters)
        throw std::out_of_range ("parameter index");
    auto* control = getControl (index);
    if (control != nullptr)
        control->setNormalisedFromParameter (toNormalised (static_cast<ParameterId> (index), value));

    const float previous = editorValues[(size_t)index];
    editorValues[(size_t)index] = value;
    const bool changed = !(previous == value);

    if (index == TRQHUDControl::parameterIndex && hud != nullptr)
        hud->parameterChanged (value);

    if (changed)
        updateEnablement (index);

    if (changed && notifyManager)
        if (auto controller = processor.getPresetController())
            controller->updateModified (
                HVNChecked<std::uint32_t> ((std::uint32_t)index),
                HVNChecked<float> (toNormalised (static_cast<ParameterId> (index), value)));

    // A hidden control shows where its value went; the first value is no change.
    if (changed && !std::isnan (previous) && !advancedPaneOpen && control != nullptr &&
        control->getRow().pane == 2)
        transientValue->show (controls[(size_t)index]);
}

void TRQAudioProcessorEditor::updateEnablement (int sourceIndex)
{
    const auto& row = ParameterCatalogue::row (static_cast<ParameterId> (sourceIndex));
    if (row.enableMap.empty())
        return;
    const auto found = row.enableMap.find (editorValues[(size_t)sourceIndex]);
    for (auto dependant : row.enableList)
    {
        const bool enabled =
            found != row.enableMap.end() &&
            std::find (found->second.begin(), found->second.end(), dependant) != found->second.end();
        if (auto* control = getControl ((int)dependant))
            control->setDependencyDisabled (sourceIndex, !enabled);
    }
}

void TRQAudioProcessorEditor::setDarkMode (int mode)
{
    prefs.darkMode.set (static_cast<TRQUserPrefs::DarkMode> (mode));
    gl->darkMode.publish (mode);
    layout.setStyle (mode);
    lookAndFeel.setStyle (mode);
    sendLookAndFeelChange();
    toolbar->setStyle (mode);
    presetView->setStyle (mode);
    const auto language = TRQLanguage::drawingLanguage (prefs.language.get());
    for (auto& control : controls)
        if (control != nullptr)
            control->setLanguageAndStyle (language, mode);
    hud->setLanguageAndStyle (language, mode);
    backgroundDirty = true;
}

void TRQAudioProcessorEditor::setLanguage (TRQLanguage::Language language)
{
    prefs.language.set (language);
    const auto shown = TRQLanguage::drawingLanguage (language);
    layout.setLanguage (shown);
    hud->setLanguageAndStyle (shown, (int)prefs.darkMode.get());
    for (auto& control : controls)
        if (control != nullptr)
            control->setLanguageAndStyle (shown, (int)prefs.darkMode.get());
    backgroundDirty = true;
    languageChanged.emit ((int)language);
}

void TRQAudioProcessorEditor::setMetering (int metering)
{
    prefs.metering.set (static_cast<TRQUserPrefs::Metering> (metering));
    gl->metering.publish (metering);
}

void TRQAudioProcessorEditor::publishMeterSource()
{
    const auto& info = processor.getDSPInfo();
    TRQEditorGLState::MeterSource source;
    source.messaging = info.meterMessaging;
    source.sampleRate = info.sampleRate;
    source.blockSize = info.blockSize;
    source.numInputs = info.numInputs;
    source.numOutputs = info.numOutputs;
    gl->publishMeterSource (std::move (source));
}

void TRQAudioProcessorEditor::globalFocusChanged (juce::Component*)
{
    publishFocusRing();
}

void TRQAudioProcessorEditor::publishFocusRing()
{
    auto* focused = juce::Component::getCurrentlyFocusedComponent();
    TRQControl* control = nullptr;
    for (auto* c = focused; c != nullptr && control == nullptr; c = c->getParentComponent())
        if (isParentOf (c))
            control = dynamic_cast<TRQControl*> (c);
    if (control == nullptr || !control->isShowing())
    {
        gl->focusParameter.publish (-1);
        return;
    }
    control->updateFocusRing();
    const auto ring = control->getRing();
    const auto colour = juce::Colour::fromFloatRGBA (ring.colour[0], ring.colour[1], ring.colour[2], 1.0f);
    gl->ring.setRing (root.getLocalArea (control, ring.bounds), ring.radius,
                      colour.withAlpha (ring.colour[3] / 0.65f));
    gl->focusParameter.publish (control->getParameterIndex());
}

void TRQAudioProcessorEditor::timerCallback()
{
    const double start = juce::Time::getMillisecondCounterHiRes();
    processor.drainMessageQueues();

    for (int i = 0; i < TRQAudioProcessor::numParameters; ++i)
    {
        const float value = processor.getAudioParameter (i).getRealValue();
        if (!(value == editorValues[(size_t)i]))
            parameterChanged (i, value, true);
    }

    mainPane.refresh (false);
    centrePane.refresh (false);
    advancedPane.refresh (false);
    root.refresh (false);
    hud->refresh (false);

    if (auto* focused = juce::Component::getCurrentlyFocusedComponent())
        if (auto* control = dynamic_cast<TRQControl*> (focused); control != nullptr && isParentOf (control))
            publishFocusRing();

    const int status = gl->status.load();
    if (glAttached && (status == glFailed || (status == glUnknown && start - glAttachTime > glGiveUpMs)))
    {
        openGLContext.detach();
        glAttached = false;
        gl->status.store (glFailed);
        layout.setVisible (true);
        repaint();
    }
    else if (status == glGood && layout.isVisible())
        layout.setVisible (false);

    if (glAttached)
        renderBackgroundIfNeeded();
    lastTimerMs = juce::Time::getMillisecondCounterHiRes() - start;
}

void TRQAudioProcessorEditor::renderBackgroundIfNeeded()
{
    const float renderScale = gl->renderScale.load();
    const auto size = getLocalBounds();
    if (!backgroundDirty && size == lastBackgroundSize && renderScale == lastBackgroundScale)
        return;
    backgroundDirty = false;
    lastBackgroundSize = size;
    lastBackgroundScale = renderScale;
    const int w = juce::roundToInt ((float)size.getWidth() * renderScale);
    const int h = juce::roundToInt ((float)size.getHeight() * renderScale);
    if (w <= 0 || h <= 0)
        return;
    juce::Image image (juce::Image::ARGB, w, h, true, juce::SoftwareImageType());
    {
        juce::Graphics g (image);
        g.addTransform (juce::AffineTransform::scale (uiScaleFactor.load() * hostScaleFactor * renderScale));
        layout.paint (g);
    }
    gl->publishBackground (std::move (image));
}

void TRQAudioProcessorEditor::newOpenGLContextCreated()
{
    gl->contextCreated();
}

void TRQAudioProcessorEditor::renderOpenGL()
{
    const float scale = (float)openGLContext.getRenderingScale();
    const auto viewport = juce::Rectangle<int> (juce::roundToInt ((float)getWidth() * scale),
                                                juce::roundToInt ((float)getHeight() * scale));
    gl->render (viewport, scale);
}

void TRQAudioProcessorEditor::openGLContextClosing()
{
    gl->contextClosing();
}
