#pragma once

#include "core/TRQCallbackQueue.h"
#include "state/TRQPluginState.h"
#include "state/TRQSettingsHost.h"
#include "state/TRQSignals.h"
#include "toolkit/HVNAudioBuffer.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <array>
#include <atomic>
#include <memory>

class HVNPublicDSP;
class MeterMessaging;
class TRQAudioParameter;
class TRQHostPrograms;
class TRQParameterManager;
class TRQPresetController;
class TRQUndoManager;

// The object the host sees. It computes nothing on audio itself: per block it moves
// parameter values, transport and the host's buffers across to the DSP host and
// back, and it reports latency.
class TRQAudioProcessor : public juce::AudioProcessor, public TRQSettingsHost, public TRQSignals::Trackable
{
public:
    using TRQPluginState = ::TRQPluginState;
    using Queue = TRQCallbackQueue<TRQAudioProcessor>;

    static constexpr int numParameters = 21;

    // What the editor side needs to attach its meters to the DSP in use.
    struct DSPInfo
    {
        uint32_t blockSize = 0;
        double sampleRate = 0.0;
        uint32_t numInputs = 0, numOutputs = 0, numSidechains = 0;
        std::shared_ptr<MeterMessaging> meterMessaging;
    };

    struct TransportInfo
    {
        double ppqPosition = 0.0;
        double tempo = 120.0;
    };

    TRQAudioProcessor();
    ~TRQAudioProcessor() override;

    const juce::String getName() const override;
    juce::StringArray getAlternateDisplayNames() const override;
    void prepareToPlay (double sampleRate, int maximumBlockSize) override;
    void releaseResources() override;
    void processBlock (juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi) override;
    void processBlockBypassed (juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi) override;
    using juce::AudioProcessor::processBlock;
    using juce::AudioProcessor::processBlockBypassed;
    double getTailLengthSeconds() const override;
    bool acceptsMidi() const override;
    bool producesMidi() const override;
    bool isMidiEffect() const override;
    bool supportsDoublePrecisionProcessing() const override;
    void reset() override;
    juce::AudioProcessorEditor* createEditor() override;
    bool hasEditor() const override;
    int getNumPrograms() override;
    int getCurrentProgram() override;
    void setCurrentProgram (int) override;
    const juce::String getProgramName (int) override;
    void changeProgramName (int, const juce::String&) override;
    void getStateInformation (juce::MemoryBlock& destination) override;
    void setStateInformation (const void* data, int sizeInBytes) override;
    bool isBusesLayoutSupported (const BusesLayout& layouts) const override;

    juce::AudioProcessor& asAudioProcessor() override { return *this; }
    TRQAudioParameter& getAudioParameter (int index) const override
    {
        return *parameters[static_cast<size_t> (index)];
    }
    // The parameter of index, or nullptr for an index out of range and while the
    // constructor has not made the parameters yet.
    TRQAudioParameter* findParameter (int index) const override;
    TRQPluginState& getPluginState() override { return pluginState; }
    const TRQPluginState& getPluginState() const { return pluginState; }
    TRQUndoManager& getUndoManager() const { return *undoManager; }
    TRQParameterManager& getParameterManager() const override { return *parameterManager; }
    std::shared_ptr<TRQPresetController> getPresetController() const override { return presetController; }
    std::shared_ptr<HVNPublicDSP> getDSP() const { return dsp; }
    bool getStateHasBeenSet() const { return stateHasBeenSet != 0; }

    // Runs on the message thread (the editor's timer): delivers what the audio
    // thread posted since the last call.
    void drainMessageQueues();
    const DSPInfo& getDSPInfo() const { return dspInfo; }
    const TransportInfo& getTransportInfo() const { return transportInfo; }

    // Work for the audio thread, run at the head of the next block.
    template<typename Callable>
    bool postToAudioThread (Callable&& callable)
    {
        return toAudioThreadA.post (std::forward<Callable> (callable));
    }

    // Fired on the message thread when a new DSP announced itself.
    TRQSignals::Signal<void()> dspAnnounced;
    // Fired on the message thread after a reset cleared the DSP's state.
    TRQSignals::Signal<void()> dspStateCleared;

    // Channel code of the DSP for a JUCE channel type: 25, 26 and 27 rotate.
    static uint32_t channelCode (int juceChannelType);

private:
    void processBlockCommon (juce::AudioBuffer<float>& buffer, bool notBypassed);
    void updateTransport();
    void announceDSP();
    void updateLatency();
    void applyLayoutDefaults (int ins, int outs);
    void setDefaultParameterValues();
    void refreshPresetDefaults();
    // Programs: the host's current one follows a factory preset selected in the
    // editor, and a restored state brings back the one it was saved with.
    void followSelection (unsigned presetIndex);
    void applyProgram (int program);
    void restoreProgram (const juce::XmlElement* restoredState);
    template<typename Callable>
    void onMessageThread (Callable&& callable);
    bool isAAX() const { return wrapperType == wrapperType_AAX; }

    std::shared_ptr<HVNPublicDSP> dsp;
    Queue audioToMessageA, audioToMessageB, toAudioThreadA, toAudioThreadB;
    uint8_t stateHasBeenSet = 0;
    HVNAudioBuffer<float> inputBlock{0}, outputBlock{0}, sidechainBlock{0};
    std::array<TRQAudioParameter*, numParameters> parameters{};
    std::vector<juce::AudioProcessorParameter*> meterParameters;
    TRQPluginState pluginState;
    std::unique_ptr<TRQUndoManager> undoManager;
    std::unique_ptr<TRQParameterManager> parameterManager;
    std::shared_ptr<TRQPresetController> presetController;
    std::unique_ptr<TRQHostPrograms> programs;
    std::atomic<int> currentProgram{0};
    bool restoringSelection = false;

    DSPInfo dspInfo;
    TransportInfo transportInfo;

    JUCE_DECLARE_WEAK_REFERENCEABLE (TRQAudioProcessor)
    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (TRQAudioProcessor)
};
