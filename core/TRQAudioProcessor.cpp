#include "core/TRQAudioProcessor.h"

#include "core/HVNPublicDSP.h"
#include "core/TRQMeterParameter.h"
#include "dsp/HVNAbstractDSP.h"
#include "editor/TRQAudioProcessorEditor.h"
#include "presets/TRQHostPrograms.h"
#include "presets/TRQPresetController.h"
#include "state/ParameterCatalogue.h"
#include "state/ParameterRange.h"
#include "state/TRQAudioParameter.h"
#include "state/TRQLinks.h"
#include "state/TRQParameterManager.h"
#include "state/TRQStateChunk.h"
#include "state/TRQUndoManager.h"

namespace
{
// Channel configurations as (inputs, outputs); the last one is the default width.
constexpr int channelConfigurations[][2] = {{1, 1}, {1, 2}, {2, 2}};

// The program the host last knew, saved beside the selected preset so that a host that
// sets its stored program again after restoring a project finds it already current.
const char* const hostProgramAttribute = "HostProgram";

// The highest JUCE channel type that names a speaker; above it lie discrete channels.
constexpr int highestSpeakerType = 61;

bool hasSpeakerChannel (const juce::AudioChannelSet& set)
{
    for (auto type : set.getChannelTypes())
        if (static_cast<int> (type) <= highestSpeakerType)
            return true;
    return false;
}

// Frame-rate codes as the DSP keeps them: the host's 0 to 8, anything else 99.
int frameRateCode (const juce::Optional<juce::AudioPlayHead::FrameRate>& rate)
{
    if (!rate.hasValue())
        return 99;
    switch (rate->getType())
    {
    case juce::AudioPlayHead::fps23976:
        return 0;
    case juce::AudioPlayHead::fps24:
        return 1;
    case juce::AudioPlayHead::fps25:
        return 2;
    case juce::AudioPlayHead::fps2997:
        return 3;
    case juce::AudioPlayHead::fps30:
        return 4;
    case juce::AudioPlayHead::fps2997drop:
        return 5;
    case juce::AudioPlayHead::fps30drop:
        return 6;
    case juce::AudioPlayHead::fps60:
        return 7;
    case juce::AudioPlayHead::fps60drop:
        return 8;
    default:
        return 99;
    }
}
} // namespace

TRQAudioProcessor::TRQAudioProcessor()
    : juce::AudioProcessor (BusesProperties()
                                .withInput ("Input", juce::AudioChannelSet::stereo(), true)
                                .withOutput ("Output", juce::AudioChannelSet::stereo(), true)
                                .withInput ("Sidechain", juce::AudioChannelSet::stereo(), true))
{
    // The history and the presets come before the parameters, so that the parameters
    // can start from the default preset.
    undoManager = std::make_unique<TRQUndoManager>();
    parameterManager = std::make_unique<TRQParameterManager> (*this, *undoManager);
    presetController = std::make_shared<TRQPresetController> (*this);
    parameterManager->setController (presetController);
    presetController->beginAction.connect (&TRQParameterManager::beginPresetAction, parameterManager.get());
    presetController->endAction.connect (&TRQParameterManager::endPresetAction, parameterManager.get());
    presetController->presetUuidChanged.connect (&TRQPluginState::setLastPresetRecorded, &pluginState);
    presetController->defaultChanged.connect (&TRQAudioProcessor::refreshPresetDefaults, this);
    presetController->load();

    programs = std::make_unique<TRQHostPrograms> (presetController->getPresets());
    currentProgram = programs->programOfUuid (presetController->lastUuid()).valueOr (0);
    presetController->presetIndexChanged.connect (&TRQAudioProcessor::followSelection, this);

    for (int i = 0; i < numParameters; ++i)
    {
        const auto id = static_cast<ParameterId> (i);
        const auto& spec = ParameterCatalogue::row (id);
        // LV2 turns parameter ids into names that may not start with a digit, so
        // there the decimal index stands behind an underscore, as in the saved state.
        const auto idText = wrapperType == wrapperType_LV2 ? "_" + juce::String (i) : juce::String (i);
        auto parameter = std::make_unique<TRQAudioParameter> (
            idText, juce::String::fromUTF8 (spec.name.c_str()), juce::String(), spec.defaultValue,
            presetController->defaultPresetValue (id));
        parameters[static_cast<size_t> (i)] = parameter.get();
        addParameter (parameter.release());
    }
    TRQLinks::build (parameters);

    if (isAAX())
    {
        const auto& meters = ParameterCatalogue::meters();
        for (size_t m = 0; m < meters.size(); ++m)
        {
            auto meter = std::make_unique<TRQMeterParameter> (numParameters + static_cast<int> (m),
                                                              juce::String::fromUTF8 (meters[m].name.c_str()),
                                                              meters[m].kind);
            meterParameters.push_back (meter.get());
            addParameter (meter.release());
        }
    }
}

TRQAudioProcessor::~TRQAudioProcessor() = default;

TRQAudioParameter* TRQAudioProcessor::findParameter (int index) const
{
    return juce::isPositiveAndBelow (index, numParameters) ? parameters[static_cast<size_t> (index)]
                                                           : nullptr;
}

void TRQAudioProcessor::refreshPresetDefaults()
{
    for (auto* parameter : parameters)
        parameter->setPresetDefault (presetController->defaultPresetValue (parameter->getId()));
}

const juce::String TRQAudioProcessor::getName() const
{
    return juce::String::fromUTF8 (ParameterCatalogue::product().displayName.c_str());
}

juce::StringArray TRQAudioProcessor::getAlternateDisplayNames() const
{
    juce::StringArray names;
    for (const auto& name : ParameterCatalogue::product().alternateNames)
        names.add (juce::String::fromUTF8 (name.c_str()));
    return names;
}

uint32_t TRQAudioProcessor::channelCode (int type)
{
    switch (type)
    {
    case 25:
        return 26;
    case 26:
        return 27;
    case 27:
        return 25;
    default:
        return static_cast<uint32_t> (type);
    }
}

void TRQAudioProcessor::prepareToPlay (double sampleRate, int maximumBlockSize)
{
    const int ins = getBusCount (true) > 0 ? getChannelCountOfBus (true, 0) : 0;
    const int outs = getBusCount (false) > 0 ? getChannelCountOfBus (false, 0) : 0;
    const int scs = getBusCount (true) > 1 ? getChannelCountOfBus (true, 1) : 0;
    const auto blockSize = static_cast<uint32_t> (std::max (1, maximumBlockSize));

    const bool sameSettings = dsp != nullptr && blockSize <= dsp->getMaxBlockSize() &&
                              sampleRate == dsp->getSampleRate() &&
                              static_cast<uint32_t> (ins) == dsp->getNumInputs() &&
                              static_cast<uint32_t> (outs) == dsp->getNumOutputs() &&
                              static_cast<uint32_t> (scs) == dsp->getNumSidechains();
    if (sameSettings)
    {
        dsp->reset();
    }
    else
    {
        const bool hq = parameters[16]->getRealValue() == 1.0f;
        dsp = std::make_shared<HVNPublicDSP> (blockSize, sampleRate, static_cast<uint32_t> (ins),
                                              static_cast<uint32_t> (outs), static_cast<uint32_t> (scs), hq);
        announceDSP();
        dsp->dspSwapped.connect (&TRQAudioProcessor::announceDSP, this);
        dsp->latencyChanged.connect (&TRQAudioProcessor::updateLatency, this);
        updateLatency();

        if (isAAX())
            dsp->setResetOnTransportStart (true);

        std::vector<int32_t> codes;
        if (getBusCount (true) > 0)
            for (auto type : getBus (true, 0)->getCurrentLayout().getChannelTypes())
                codes.push_back (static_cast<int32_t> (channelCode (static_cast<int> (type))));
        dsp->setChannelCodes (codes);

        inputBlock = HVNAudioBuffer<float> (static_cast<uint32_t> (ins), blockSize);
        outputBlock = HVNAudioBuffer<float> (static_cast<uint32_t> (outs), blockSize);
        sidechainBlock = HVNAudioBuffer<float> (static_cast<uint32_t> (scs), blockSize);
    }

    if (!stateHasBeenSet)
        applyLayoutDefaults (ins, outs);
}

void TRQAudioProcessor::applyLayoutDefaults (int ins, int outs)
{
    for (int i = 0; i < numParameters; ++i)
    {
        const auto value = ParameterCatalogue::layoutDefault (static_cast<ParameterId> (i), ins, outs);
        if (value)
            parameters[static_cast<size_t> (i)]->setValue (
                toNormalised (static_cast<ParameterId> (i), value.value));
    }
}

void TRQAudioProcessor::releaseResources() {}

void TRQAudioProcessor::announceDSP()
{
    auto current = dsp != nullptr ? dsp->getCurrentDSP() : nullptr;
    if (current == nullptr)
        return;

    DSPInfo info;
    info.blockSize = current->blockSize;
    info.sampleRate = current->sampleRate;
    info.numInputs = current->numInputs;
    info.numOutputs = current->numOutputs;
    info.numSidechains = current->numSidechains;
    info.meterMessaging = current->meterMessaging;

    audioToMessageA.post (
        [info = std::move (info)] (TRQAudioProcessor& p)
        {
            p.dspInfo = info;
            p.dspAnnounced.emit();
        });
}

void TRQAudioProcessor::updateLatency()
{
    if (dsp == nullptr)
        return;
    const auto latency = static_cast<int> (dsp->latencyToReport());
    if (latency != getLatencySamples())
        setLatencySamples (latency);
}

void TRQAudioProcessor::drainMessageQueues()
{
    audioToMessageA.drain (*this);
    audioToMessageB.drain (*this);
}

void TRQAudioProcessor::processBlock (juce::AudioBuffer<float>& buffer, juce::MidiBuffer&)
{
    processBlockCommon (buffer, true);
}

void TRQAudioProcessor::processBlockBypassed (juce::AudioBuffer<float>& buffer, juce::MidiBuffer&)
{
    processBlockCommon (buffer, false);
}

void TRQAudioProcessor::updateTransport()
{
    bool isPlaying = false;
    TransportInfo info;
    double timeInSeconds = 0.0;
    int32_t frameRate = 99;
    if (auto* playHead = getPlayHead())
    {
        if (const auto position = playHead->getPosition())
        {
            isPlaying = position->getIsPlaying();
            info.ppqPosition = position->getPpqPosition().orFallback (0.0);
            info.tempo = position->getBpm().orFallback (120.0);
            timeInSeconds = position->getTimeInSeconds().orFallback (0.0);
            frameRate = frameRateCode (position->getFrameRate());
        }
    }
    dsp->updateTransport (isPlaying, info.ppqPosition, info.tempo, timeInSeconds, frameRate);

    const auto deliver = [info] (TRQAudioProcessor& p) { p.transportInfo = info; };
    audioToMessageA.post (deliver);
    audioToMessageB.post (deliver);
}

void TRQAudioProcessor::processBlockCommon (juce::AudioBuffer<float>& buffer, bool notBypassed)
{
    toAudioThreadA.drain (*this);
    toAudioThreadB.drain (*this);

    float values[numParameters];
    for (int i = 0; i < numParameters; ++i)
        values[i] =
            fromNormalised (static_cast<ParameterId> (i), parameters[static_cast<size_t> (i)]->getValue());

    // Host bypass reaches the DSP exactly as if the user had switched the plug-in off.
    if (!notBypassed)
        values[0] = 0.0f;

    if (dsp == nullptr)
        return;

    updateTransport();

    for (int i = 0; i < numParameters; ++i)
        dsp->setParameter (static_cast<uint32_t> (i), values[i], false);

    const int numSamples = std::min (buffer.getNumSamples(), static_cast<int> (inputBlock.frames()));
    if (numSamples <= 0)
        return;
    const auto n = static_cast<uint32_t> (numSamples);

    // Copying between the host's pointers and our own blocks keeps the DSP safe
    // from hosts that alias input and output channels.
    auto mainIn = getBusBuffer (buffer, true, 0);
    for (int c = 0; c < static_cast<int> (inputBlock.channels()) && c < mainIn.getNumChannels(); ++c)
        std::copy_n (mainIn.getReadPointer (c), numSamples, inputBlock.channel (static_cast<uint32_t> (c)));

    bool hasSidechain = false;
    if (getBusCount (true) > 1 && getChannelCountOfBus (true, 1) > 0)
    {
        auto side = getBusBuffer (buffer, true, 1);
        if (side.getNumChannels() > 0 && side.getReadPointer (0) != nullptr)
        {
            for (int c = 0; c < static_cast<int> (sidechainBlock.channels()) && c < side.getNumChannels();
                 ++c)
                std::copy_n (side.getReadPointer (c), numSamples,
                             sidechainBlock.channel (static_cast<uint32_t> (c)));
            hasSidechain = true;
        }
    }

    dsp->process (inputBlock, outputBlock, sidechainBlock, n, hasSidechain);

    auto mainOut = getBusBuffer (buffer, false, 0);
    for (int c = 0; c < static_cast<int> (outputBlock.channels()) && c < mainOut.getNumChannels(); ++c)
        std::copy_n (outputBlock.channel (static_cast<uint32_t> (c)), numSamples,
                     mainOut.getWritePointer (c));

    if (isAAX())
    {
        if (auto current = dsp->getCurrentDSP())
            for (size_t m = 0; m < meterParameters.size() && m < current->meterValues.size(); ++m)
                meterParameters[m]->setValue (juce::jlimit (0.0f, 1.0f, current->meterValues[m]));
    }
}

double TRQAudioProcessor::getTailLengthSeconds() const
{
    return 0.0;
}
bool TRQAudioProcessor::acceptsMidi() const
{
    return false;
}
bool TRQAudioProcessor::producesMidi() const
{
    return false;
}
bool TRQAudioProcessor::isMidiEffect() const
{
    return false;
}
bool TRQAudioProcessor::supportsDoublePrecisionProcessing() const
{
    return false;
}

void TRQAudioProcessor::reset()
{
    if (dsp == nullptr)
        return;
    for (int i = 0; i < numParameters; ++i)
        dsp->setParameter (static_cast<uint32_t> (i), parameters[static_cast<size_t> (i)]->getRealValue(),
                           true);
    dsp->reset();
}

juce::AudioProcessorEditor* TRQAudioProcessor::createEditor()
{
    return new TRQAudioProcessorEditor (*this);
}
bool TRQAudioProcessor::hasEditor() const
{
    return true;
}

template<typename Callable>
void TRQAudioProcessor::onMessageThread (Callable&& callable)
{
    auto* messages = juce::MessageManager::getInstanceWithoutCreating();
    if (messages == nullptr || messages->isThisTheMessageThread())
    {
        callable();
        return;
    }
    juce::MessageManager::callAsync (
        [weak = juce::WeakReference<TRQAudioProcessor> (this), callable = std::forward<Callable> (callable)]
        {
            if (weak != nullptr)
                callable();
        });
}

int TRQAudioProcessor::getNumPrograms()
{
    return programs->size();
}
int TRQAudioProcessor::getCurrentProgram()
{
    return currentProgram;
}

const juce::String TRQAudioProcessor::getProgramName (int program)
{
    return programs->name (program);
}

// Factory presets are read-only.
void TRQAudioProcessor::changeProgramName (int, const juce::String&) {}

void TRQAudioProcessor::setCurrentProgram (int program)
{
    // Hosts set their stored program again right after restoring a project: the
    // restored state already has it, and its settings must stay.
    if (!juce::isPositiveAndBelow (program, programs->size()) || program == currentProgram)
        return;
    onMessageThread ([this, program] { applyProgram (program); });
}

void TRQAudioProcessor::applyProgram (int program)
{
    const auto preset = presetController->indexOfUuid (programs->uuid (program));
    const auto* editor = dynamic_cast<TRQAudioProcessorEditor*> (getActiveEditor());
    if (!preset || (editor != nullptr && editor->getModalState() == 2))
    {
        // No such preset here, or a preset form is open on the present settings: they
        // stay, and the host hears, once its own call has returned, that the program
        // didn't change.
        juce::MessageManager::callAsync (
            [weak = juce::WeakReference<TRQAudioProcessor> (this)]
            {
                if (weak != nullptr)
                    weak->updateHostDisplay (ChangeDetails().withProgramChanged (true));
            });
        return;
    }
    currentProgram = program;
    // As the preset browser does it: one step of history, the name and modified flag follow.
    presetController->selectPreset (preset.value, true, true);
}

void TRQAudioProcessor::followSelection (unsigned presetIndex)
{
    if (restoringSelection)
        return;
    const auto preset = presetController->getPreset (presetIndex);
    const auto program = preset ? programs->programOfUuid (preset.value.uuid) : HVNChecked<int>();
    if (!program || program.value == currentProgram)
        return;
    currentProgram = program.value;
    updateHostDisplay (ChangeDetails().withProgramChanged (true));
}

void TRQAudioProcessor::restoreProgram (const juce::XmlElement* restoredState)
{
    // The saved program wins; a state saved without one takes the restored preset's.
    const auto uuid = pluginState.getAttribute (TRQPluginState::lastPresetAttribute);
    if (restoredState != nullptr && restoredState->hasAttribute (hostProgramAttribute))
        currentProgram =
            juce::jlimit (0, programs->size() - 1, restoredState->getIntAttribute (hostProgramAttribute));
    else if (const auto program = programs->programOfUuid (uuid))
        currentProgram = program.value;

    // The preset list's selection and modified flag follow the restored settings,
    // without applying anything and without moving the host's program.
    onMessageThread (
        [this]
        {
            const juce::ScopedValueSetter<bool> restoring (restoringSelection, true);
            presetController->reload();
            presetController->updateModified ({}, {});
        });
}

void TRQAudioProcessor::getStateInformation (juce::MemoryBlock& destination)
{
    juce::XmlElement root ("MYPLUGINSETTINGS");
    auto* state = new juce::XmlElement (pluginState.getElement());
    state->setAttribute (hostProgramAttribute, currentProgram.load());
    root.addChildElement (state);
    for (int i = 0; i < numParameters; ++i)
        root.setAttribute ("_" + juce::String (i), parameters[static_cast<size_t> (i)]->getValue());
    if (isAAX())
        root.setAttribute ("defaultChunk", stateHasBeenSet ? "0" : "1");
    TRQStateChunk::write (root, destination);
}

void TRQAudioProcessor::setDefaultParameterValues()
{
    for (auto* parameter : parameters)
    {
        parameter->setValue (toNormalised (parameter->getId(), parameter->getPresetDefault()));
        parameter->sendValueChangedMessageToListeners (parameter->getValue());
    }
}

void TRQAudioProcessor::setStateInformation (const void* data, int sizeInBytes)
{
    const auto root = TRQStateChunk::read (data, sizeInBytes);
    if (root != nullptr && root->hasTagName ("MYPLUGINSETTINGS"))
    {
        const auto* restored = root->getChildByName (TRQPluginState::elementName);

        if (isAAX() && root->hasAttribute ("defaultChunk") && root->getIntAttribute ("defaultChunk") == 1 &&
            !stateHasBeenSet)
        {
            // A host's default chunk starts a fresh instance on the user's default preset.
            setDefaultParameterValues();
        }
        else
        {
            if (restored != nullptr)
                pluginState.replaceWith (*restored);

            for (int i = 0; i < numParameters; ++i)
            {
                auto* parameter = parameters[static_cast<size_t> (i)];
                const auto value = root->getDoubleAttribute ("_" + juce::String (i), parameter->getValue());
                parameter->setValue (static_cast<float> (value));
                parameter->sendValueChangedMessageToListeners (parameter->getValue());
            }
            restoreProgram (restored);
        }
    }

    stateHasBeenSet = 1;
}

bool TRQAudioProcessor::isBusesLayoutSupported (const BusesLayout& layouts) const
{
    const auto mainIn = layouts.getMainInputChannelSet();
    const auto mainOut = layouts.getMainOutputChannelSet();
    const int c = mainIn.size();
    const int s = layouts.inputBuses.size() > 1 ? layouts.inputBuses[1].size() : 0;

    if (s != c && s != 1)
        return false;

    bool known = false;
    for (const auto& configuration : channelConfigurations)
        known = known || (configuration[0] == c && configuration[1] == mainOut.size());

    return known && hasSpeakerChannel (mainIn) && hasSpeakerChannel (mainOut);
}

juce::AudioProcessor* JUCE_CALLTYPE createPluginFilter()
{
    return new TRQAudioProcessor();
}
