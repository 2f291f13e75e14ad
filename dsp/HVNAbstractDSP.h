#pragma once

#include "dsp/HVNParameterIndex.h"
#include "meters/MeterMessaging.h"
#include "toolkit/HVNAudioBuffer.h"
#include "toolkit/HVNEasingFloat.h"

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

// One parameter as the DSP sees it, in real units. A stage acts on a parameter only
// in the block whose `changed` flag is set; the host clears the flags after the block.
struct HVNParameterRecord
{
    float value = 0.0f;
    float previousValue = 0.0f;
    bool changed = true;
    bool uninitialised = true;
};

// The host's transport as of the current block.
struct HVNTransportRecord
{
    double ppqPosition = 0.0;
    double tempo = 0.0;
    bool tempoChanged = true;
    bool isPlaying = false;
    bool wasPlaying = false;
    bool playingChanged = true;
    bool playingUninitialised = true;
    double timeInSeconds = 0.0;
    int32_t frameRate = 99;
};

// Base of every signal processor of the plug-in: its configuration, one record per
// parameter, the reset list of its easings, the transport, the meter channel and
// its latency. Built whole off the audio thread; nothing is allocated afterwards.
class HVNAbstractDSP
{
public:
    static constexpr uint32_t numParameters = HVNParameterIndex::count;
    // Records per meter FIFO: two frames' worth of the largest block rate in use.
    static constexpr uint32_t meterRecords = 46;

    // upsampleFactor is 0 for a DSP at the host rate; blockSize and sampleRate are
    // then the DSP's own (host values times the factor in HQ mode).
    HVNAbstractDSP (uint32_t blockSize, double sampleRate, uint32_t numInputs, uint32_t numOutputs,
                    uint32_t numSidechains, uint32_t upsampleFactor);
    virtual ~HVNAbstractDSP();

    HVNAbstractDSP (const HVNAbstractDSP&) = delete;
    HVNAbstractDSP& operator= (const HVNAbstractDSP&) = delete;

    // Audio thread. input has numInputs channels, output numOutputs, sidechain
    // numSidechains; numSamples is at most blockSize. Never throws or allocates.
    virtual void process (const HVNAudioBuffer<float>& input, HVNAudioBuffer<float>& output,
                          const HVNAudioBuffer<float>& sidechain, uint32_t numSamples,
                          bool sidechainActive) = 0;
    // Called after the block, on the same output.
    virtual void postProcess (HVNAudioBuffer<float>& output, uint32_t numSamples);
    // Clears the audio state: every easing lands on its next target at once.
    virtual void reset();
    // Puts modulation phases back to their start (transport start).
    virtual void resetPhases();
    virtual uint32_t getNumParameters() const { return numParameters; }

    float parameterValue (uint32_t index) const { return parameters[index].value; }
    bool parameterChanged (uint32_t index) const { return parameters[index].changed; }

    uint32_t getLatencySamples() const { return latencySamples; }
    bool hasLatency() const { return latencyIsSet; }

    const uint32_t blockSize;
    const double sampleRate;
    const uint32_t numInputs, numOutputs, numSidechains;
    const uint32_t upsampleFactor;
    const uint32_t baseBlockSize;
    const double baseSampleRate;
    std::array<HVNParameterRecord, numParameters> parameters;
    HVNResetCallbacks resetCallbacks;
    std::vector<float> meterValues;
    std::shared_ptr<MeterMessaging> meterMessaging;
    const bool isUpsampled;
    HVNTransportRecord transport;
    // Channel type codes of the main input, one per input channel.
    std::vector<int32_t> channelCodes;

    // Copies codes without allocating; extra codes are ignored, missing ones are 0.
    void setChannelCodes (const std::vector<int32_t>& codes);

protected:
    // In samples of this DSP's own rate. Only the first call counts.
    void setLatency (uint32_t samples);

private:
    uint32_t latencySamples = 0;
    bool latencyIsSet = false;
};
