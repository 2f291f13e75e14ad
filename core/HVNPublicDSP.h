#pragma once

#include "core/HVNBypassFader.h"
#include "core/HVNRebuildWorker.h"
#include "dsp/HVNAbstractDSP.h"
#include "meters/MeterMessaging.h"
#include "state/TRQSignals.h"
#include "toolkit/HVNAudioBuffer.h"
#include "toolkit/HVNEasingFloat.h"
#include "toolkit/HVNSRC.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

// Stands between the plug-in processor and the signal path, and makes the path
// safe to reconfigure while audio runs. HQ mode runs the path at a multiple of the
// host rate: switching it fades the DSP's input and output down over 50 ms, swaps
// in a DSP that a worker thread built at the other rate, fades back up, and lets
// the worker dispose of the old one. Host bypass and MasterOnOff crossfade to the
// dry input delayed by the reported latency. The block's floating-point mode is set
// here: flush-to-zero and denormals-are-zero.
//
// Threads: process, setParameter, updateTransport and trySwap run on the audio
// thread, which never allocates or frees here (a post to the worker may wait only
// while a job is finishing). dspSwapped and latencyChanged are emitted on the audio
// thread. Construction, reset and destruction happen while audio is stopped.
class HVNPublicDSP
{
public:
    // Builds a DSP: (blockSize, sampleRate, numInputs, numOutputs, numSidechains,
    // upsampleFactor), the factor 0 meaning the host rate.
    using DSPFactory = std::function<std::shared_ptr<HVNAbstractDSP> (uint32_t, double, uint32_t, uint32_t,
                                                                      uint32_t, uint32_t)>;
    using Clock = HVNBypassFader::Clock;

    // Starts the vector library (throws std::runtime_error "HVNVec: ipp init error"
    // when it can't), builds a DSP at the host rate and one at the HQ rate, keeps the
    // one that startInHQ asks for and leaves the other for the first HQMode delivery
    // to use or dispose of. factory defaults to HVNZC1DSP; clock to a steady clock.
    HVNPublicDSP (uint32_t maxBlockSize, double sampleRate, uint32_t numInputs, uint32_t numOutputs,
                  uint32_t numSidechains, bool startInHQ, DSPFactory factory = {}, Clock clock = {});
    // Stops and joins the worker first, then frees buffers and DSPs.
    ~HVNPublicDSP();

    HVNPublicDSP (const HVNPublicDSP&) = delete;
    HVNPublicDSP& operator= (const HVNPublicDSP&) = delete;

    TRQSignals::Signal<void()> dspSwapped;
    TRQSignals::Signal<void()> latencyChanged;

    // Audio thread, once per parameter per block, before process. value is in real
    // units; snap rounds it to the parameter's step and range first.
    void setParameter (uint32_t index, float value, bool snap);

    // Audio thread, once per block before the parameters. frameRateCode 0..8 is kept,
    // anything else becomes 99. With resetOnTransportStart set, a transport start
    // after the first block resets the DSP.
    void updateTransport (bool isPlaying, double ppqPosition, double tempo, double timeInSeconds,
                          int32_t frameRateCode);
    void setResetOnTransportStart (bool shouldReset) { resetOnTransportStart = shouldReset; }

    // Channel type codes of the main input, one per input channel. Set-up only.
    void setChannelCodes (const std::vector<int32_t>& codes);

    // Audio thread. input has numInputs channels, sidechain numSidechains (ignored
    // unless hasSidechain), output numOutputs; all at least numSamples long. The
    // buffers are the caller's own blocks; output may be a view of host memory.
    // numSamples above maxBlockSize is cut to it; 0 does nothing.
    void process (const HVNAudioBuffer<float>& input, HVNAudioBuffer<float>& output,
                  const HVNAudioBuffer<float>& sidechain, uint32_t numSamples, bool hasSidechain);

    // Clears all audio state; waits for the worker first. Not on the audio thread.
    void reset();

    // Completes a pending swap. Called by process with both arguments true.
    bool trySwap (bool waitForSilence, bool disposeOnWorker);

    // A DSP's latency in host samples, converters included in HQ mode.
    uint32_t latencyOf (const HVNAbstractDSP& dsp) const;
    // What the host should be told now: the coming DSP's latency while a swap
    // waits for silence, else the current one's.
    uint32_t latencyToReport() const;

    // Audio thread or set-up only: the audio thread replaces it at a swap.
    const std::shared_ptr<HVNAbstractDSP>& getCurrentDSP() const { return currentDSP; }
    std::shared_ptr<MeterMessaging> getMeterMessaging() const { return currentDSP->meterMessaging; }
    uint32_t getCurrentBlockSize() const { return currentDSP->blockSize; }
    double getCurrentSampleRate() const { return currentDSP->sampleRate; }

    uint32_t getMaxBlockSize() const { return maxBlockSize; }
    double getSampleRate() const { return sampleRate; }
    uint32_t getNumInputs() const { return numInputs; }
    uint32_t getNumOutputs() const { return numOutputs; }
    uint32_t getNumSidechains() const { return numSidechains; }
    uint32_t getUpsampleFactor() const { return upsampleFactor; }
    double getConverterLatency() const { return converterLatency; }
    uint32_t getPendingLatency() const { return pendingLatency.load(); }
    uint32_t getCurrentLatency() const { return currentLatency.load(); }
    bool isHQActive() const { return hqActive.load(); }
    bool isHQWanted() const { return hqWanted.load(); }
    bool isSwapInProgress() const { return swapInProgress.load(); }
    bool isNextDSPReady() const { return nextDSPReady.load(); }
    bool getIsPlaying() const { return isPlaying; }
    bool getResetOnTransportStart() const { return resetOnTransportStart; }
    float getSwapFadeValue() const { return swapFade.getValue(); }
    const HVNBypassFader& getBypass() const { return *bypass; }

private:
    static int startVectorLibrary();
    std::shared_ptr<HVNAbstractDSP> makeDSP (bool highRate) const;
    void rebuild();
    void dispose();
    void runHostRate (uint32_t n, bool hasSidechain);
    uint32_t runHighRate (uint32_t n, bool hasSidechain);

    const int vectorLibraryStatus;
    const DSPFactory factory;
    const Clock clock;

    const uint32_t maxBlockSize;
    const double sampleRate;
    const uint32_t numInputs, numOutputs, numSidechains;
    const uint32_t upsampleFactor;
    bool isPlaying = false, wasPlaying = false, playingChanged = true, playingUninitialised = true;
    bool resetOnTransportStart = false;
    bool hasProcessed = false;
    std::atomic<uint32_t> pendingLatency{0}, currentLatency{0};
    double converterLatency = 0.0;
    std::shared_ptr<HVNAbstractDSP> nextDSP, currentDSP, retiredDSP;
    HVNAudioBuffer<float> inputAll, upsampledAll;
    HVNAudioBuffer<float> inputView, sidechainView, upInputView, upSidechainView;
    std::vector<int32_t> channelCodes;
    HVNAudioBuffer<float> upsampledOutput;
    HVNAudioBuffer<float> outputView;
    std::unique_ptr<HVNBypassFader> bypass;
    HVNSRC upConverter, downConverter;
    HVNEasingFloat<float> swapFade;
    std::atomic<bool> swapInProgress{false}, nextDSPReady{false}, hqActive{false}, hqWanted{false};
    HVNRebuildWorker worker;
};
