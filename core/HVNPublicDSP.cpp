#include "core/HVNPublicDSP.h"

#include "dsp/HVNParameterIndex.h"
#include "dsp/HVNZC1DSP.h"
#include "state/ParameterRange.h"
#include "toolkit/HVNFPGuard.h"
#include "toolkit/HVNSIMD.h"
#include "toolkit/HVNVec.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace
{
uint32_t factorFor (double sampleRate)
{
    return sampleRate <= 96000.0 ? 4u : 2u;
}
} // namespace

int HVNPublicDSP::startVectorLibrary()
{
    const int status = HVNVec::start();
    if (status < 0)
        throw std::runtime_error ("HVNVec: ipp init error");
    // An unsupported processor fails here, before any audio object exists.
    HVNSIMD::instance();
    return status;
}

HVNPublicDSP::HVNPublicDSP (uint32_t blockSize, double rate, uint32_t inputs, uint32_t outputs,
                            uint32_t sidechains, bool startInHQ, DSPFactory dspFactory, Clock clockSource)
    : vectorLibraryStatus (startVectorLibrary())
    , factory (dspFactory
                   ? std::move (dspFactory)
                   : DSPFactory ([] (uint32_t b, double r, uint32_t i, uint32_t o, uint32_t s, uint32_t f)
                                 { return std::make_shared<HVNZC1DSP> (b, r, i, o, s, f); }))
    , clock (std::move (clockSource))
    , maxBlockSize (blockSize)
    , sampleRate (rate)
    , numInputs (inputs)
    , numOutputs (outputs)
    , numSidechains (sidechains)
    , upsampleFactor (factorFor (rate))
    , inputAll (inputs + sidechains, blockSize)
    , upsampledAll (inputs + sidechains, blockSize * upsampleFactor)
    , inputView (inputAll, 0, inputs)
    , sidechainView (inputAll, inputs, inputs + sidechains)
    , upInputView (upsampledAll, 0, inputs)
    , upSidechainView (upsampledAll, inputs, inputs + sidechains)
    , channelCodes (inputs, 0)
    , upsampledOutput (outputs, blockSize * upsampleFactor)
    , outputView (outputs)
    , swapFade (blockSize, &sampleRate)
{
    currentDSP = nextDSP = makeDSP (false);

    // A converter that can't be set up leaves HQ mode silent on the processed path;
    // the dry path still works.
    try
    {
        uint32_t upLength = maxBlockSize;
        upConverter.setup (sampleRate, upLength, sampleRate * upsampleFactor, numInputs + numSidechains);
        uint32_t downLength = maxBlockSize * upsampleFactor;
        downConverter.setup (sampleRate * upsampleFactor, downLength, sampleRate, numOutputs);
    }
    catch (const std::runtime_error&)
    {
    }
    converterLatency = upConverter.getLatency() / upsampleFactor + downConverter.getLatency();

    nextDSP = makeDSP (true);
    const uint32_t longest = std::max (latencyOf (*currentDSP), latencyOf (*nextDSP));

    swapFade.setRange (1.0f);
    swapFade.setRatePerSample (static_cast<float> (20.0 / sampleRate));
    swapFade.setInstant (1.0f);

    nextDSPReady = true;
    hqActive = false;
    hqWanted = startInHQ;
    swapInProgress = hqActive.load() != hqWanted.load();
    trySwap (false, false);

    pendingLatency = currentLatency = latencyOf (*currentDSP);
    bypass = std::make_unique<HVNBypassFader> (numOutputs, longest, maxBlockSize, sampleRate, clock);
}

HVNPublicDSP::~HVNPublicDSP() = default;

std::shared_ptr<HVNAbstractDSP> HVNPublicDSP::makeDSP (bool highRate) const
{
    if (highRate)
        return factory (maxBlockSize * upsampleFactor, sampleRate * upsampleFactor, numInputs, numOutputs,
                        numSidechains, upsampleFactor);
    return factory (maxBlockSize, sampleRate, numInputs, numOutputs, numSidechains, 0);
}

uint32_t HVNPublicDSP::latencyOf (const HVNAbstractDSP& dsp) const
{
    if (!dsp.isUpsampled)
        return dsp.getLatencySamples();
    return static_cast<uint32_t> (static_cast<double> (dsp.getLatencySamples()) / upsampleFactor +
                                  converterLatency);
}

uint32_t HVNPublicDSP::latencyToReport() const
{
    return swapInProgress.load() && nextDSPReady.load() ? pendingLatency.load() : currentLatency.load();
}

void HVNPublicDSP::setChannelCodes (const std::vector<int32_t>& codes)
{
    std::fill (channelCodes.begin(), channelCodes.end(), 0);
    std::copy_n (codes.begin(), std::min (codes.size(), channelCodes.size()), channelCodes.begin());
    currentDSP->setChannelCodes (channelCodes);
}

void HVNPublicDSP::setParameter (uint32_t index, float value, bool snap)
{
    if (index >= HVNParameterIndex::count)
        return;

    // A mono input has nothing to link: the layout decides, not the host.
    if (index == HVNParameterIndex::CompStereoLink && numInputs == 1)
        value = numOutputs == 1 ? 0.0f : 1.0f;

    auto& record = currentDSP->parameters[index];
    if (value != record.value)
    {
        if (snap)
            value = ::snapAndClamp (static_cast<ParameterId> (index), value);
        if (record.uninitialised)
        {
            record.value = record.previousValue = value;
            record.changed = true;
            record.uninitialised = false;
        }
        else if (record.value != value)
        {
            record.previousValue = record.value;
            record.value = value;
            record.changed = true;
        }
    }

    if (index != HVNParameterIndex::HQMode)
        return;

    const bool wanted = record.value == 1.0f;
    if (swapInProgress.load())
        return;

    if (wanted != hqWanted.load())
    {
        hqWanted = wanted;
        swapInProgress = true;
        if (nextDSPReady.load())
        {
            if (hasProcessed)
            {
                swapFade.setTarget (0.0f);
                return;
            }
            trySwap (false, true);
            return;
        }

        swapFade.setTarget (0.0f);
        if (hasProcessed)
        {
            worker.post ([this] { rebuild(); });
            return;
        }
        rebuild();
        trySwap (false, true);
    }
    else if (nextDSPReady.load())
    {
        // The DSP of the other mode that construction left ready is not wanted.
        swapInProgress = true;
        nextDSPReady = false;
        worker.post ([this] { dispose(); });
    }
}

void HVNPublicDSP::rebuild()
{
    const bool highRate = hqWanted.load();
    std::shared_ptr<HVNAbstractDSP> dsp;
    try
    {
        dsp = makeDSP (highRate);
    }
    catch (...)
    {
        // Stay in the current mode; process brings the fade back up.
        hqWanted = hqActive.load();
        swapInProgress = false;
        return;
    }

    nextDSP = std::move (dsp);
    if (highRate)
    {
        upConverter.reset();
        downConverter.reset();
    }
    pendingLatency = latencyOf (*nextDSP);
    nextDSP->setChannelCodes (channelCodes);
    nextDSPReady = true;
}

void HVNPublicDSP::dispose()
{
    nextDSP.reset();
    retiredDSP.reset();
    swapInProgress = false;
}

bool HVNPublicDSP::trySwap (bool waitForSilence, bool disposeOnWorker)
{
    if (!swapInProgress.load() || (waitForSilence && swapFade.getValue() != 0.0f))
        return false;
    if (!nextDSPReady.exchange (false))
        return false;

    hqActive = hqWanted.load();

    HVNAbstractDSP& from = *currentDSP;
    HVNAbstractDSP& to = *nextDSP;
    for (uint32_t i = 0; i < HVNAbstractDSP::numParameters; ++i)
    {
        to.parameters[i] = from.parameters[i];
        to.parameters[i].changed = true;
    }
    to.transport = from.transport;
    to.setChannelCodes (from.channelCodes);

    retiredDSP = currentDSP;
    currentDSP = nextDSP;
    currentLatency = latencyOf (*currentDSP);

    dspSwapped.emit();
    latencyChanged.emit();

    if (hasProcessed)
        swapFade.setTarget (1.0f);
    else
        swapFade.setInstant (1.0f);

    if (disposeOnWorker)
        worker.post ([this] { dispose(); });
    else
        dispose();
    return true;
}

void HVNPublicDSP::updateTransport (bool playing, double ppqPosition, double tempo, double timeInSeconds,
                                    int32_t frameRateCode)
{
    const bool started = playing && !isPlaying;

    auto update = [playing] (bool& is, const bool& was, bool& changed, bool& uninitialised)
    {
        is = playing;
        if (uninitialised || is != was)
            changed = true;
        uninitialised = false;
    };

    update (isPlaying, wasPlaying, playingChanged, playingUninitialised);

    auto& t = currentDSP->transport;
    update (t.isPlaying, t.wasPlaying, t.playingChanged, t.playingUninitialised);

    if (resetOnTransportStart && hasProcessed && started)
        currentDSP->reset();

    t.ppqPosition = ppqPosition;
    t.tempoChanged = tempo != t.tempo;
    t.tempo = tempo;
    t.timeInSeconds = timeInSeconds;
    t.frameRate = frameRateCode >= 0 && frameRateCode <= 8 ? frameRateCode : 99;
}

void HVNPublicDSP::runHostRate (uint32_t n, bool hasSidechain)
{
    currentDSP->process (inputView, outputView, sidechainView, n, hasSidechain);
}

uint32_t HVNPublicDSP::runHighRate (uint32_t n, bool hasSidechain)
{
    uint32_t m = 0, k = 0;
    try
    {
        if (upConverter.isReady() && n <= upConverter.getMaxSourceLength())
            m = upConverter.process (inputAll, n, upsampledAll);
        currentDSP->process (upInputView, upsampledOutput, upSidechainView, m, hasSidechain);
        if (downConverter.isReady() && m <= downConverter.getMaxSourceLength())
            k = downConverter.process (upsampledOutput, m, outputView);
    }
    catch (...)
    {
        // The converters refuse only blocks they were not set up for, which the
        // checks above keep away; nothing may escape the audio thread regardless.
    }

    // Whatever the converter did not deliver is silence, not stale host memory.
    if (k < n)
        for (uint32_t c = 0; c < outputView.channels(); ++c)
            if (float* out = outputView.channel (c))
                HVNVec::clear (out + k, n - k);
    return k;
}

void HVNPublicDSP::process (const HVNAudioBuffer<float>& input, HVNAudioBuffer<float>& output,
                            const HVNAudioBuffer<float>& sidechain, uint32_t numSamples, bool hasSidechain)
{
    const uint32_t n = std::min (numSamples, maxBlockSize);
    if (n == 0)
        return;

    HVNFPGuard denormals;

    if (numSidechains == 0)
    {
        inputAll.copyFrom (input, n);
    }
    else
    {
        inputView.copyFrom (input, n);
        if (hasSidechain)
            sidechainView.copyFrom (sidechain, n);
        else
            sidechainView.clear (n);
    }
    outputView.pointTo (output);

    if (currentDSP->parameterChanged (HVNParameterIndex::MasterOnOff))
        bypass->setTarget (currentDSP->parameterValue (HVNParameterIndex::MasterOnOff));

    hasProcessed = true;
    bypass->storeDry (inputView, n);
    trySwap (true, true);

    HVNAbstractDSP& dsp = *currentDSP;
    if (dsp.transport.playingChanged && dsp.transport.isPlaying)
        dsp.resetPhases();

    // A rebuild that failed gave up its swap with the fade down: bring it back.
    if (!swapInProgress.load() && swapFade.getTarget() != 1.0f)
        swapFade.setTarget (1.0f);

    swapFade.process (n);
    const bool fading = swapFade.isActive() || swapFade.getValue() != 1.0f;
    if (fading)
        swapFade.multiply (inputAll, n);

    uint32_t produced = n;
    if (!hqActive.load())
        runHostRate (n, hasSidechain);
    else
        produced = runHighRate (n, hasSidechain);

    dsp.postProcess (outputView, n);
    bypass->apply (outputView, n, currentLatency.load());

    if (fading)
        swapFade.multiply (outputView, produced);

    for (auto& record : dsp.parameters)
    {
        record.changed = false;
        record.previousValue = record.value;
    }
    dsp.transport.playingChanged = false;
    dsp.transport.wasPlaying = dsp.transport.isPlaying;
    playingChanged = false;
    wasPlaying = isPlaying;
}

void HVNPublicDSP::reset()
{
    worker.waitUntilIdle();
    hasProcessed = false;
    upConverter.reset();
    downConverter.reset();
    trySwap (false, true);
    bypass->clearDelay();
    currentDSP->reset();
}
