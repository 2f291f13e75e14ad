#include "dsp/HVNAbstractDSP.h"

#include <algorithm>

namespace
{
// The DSP's own start values, which its first block turns into targets.
float startValue (uint32_t index)
{
    using namespace HVNParameterIndex;
    switch (index)
    {
    case MasterOnOff:
    case CompAttackTimeConstant:
    case CompReleaseTimeConstant:
    case CompStereoLink:
        return 1.0f;
    case CompressionAmount:
    case LoFiAmount:
        return 50.0f;
    case WowFlutterAmount:
        return 15.0f;
    case MasterMix:
    case WowFlutterMix:
        return 100.0f;
    case DigitalRefLevel:
        return -18.0f;
    default:
        return 0.0f;
    }
}
} // namespace

HVNAbstractDSP::HVNAbstractDSP (uint32_t block, double rate, uint32_t inputs, uint32_t outputs,
                                uint32_t sidechains, uint32_t factor)
    : blockSize (block)
    , sampleRate (rate)
    , numInputs (inputs)
    , numOutputs (outputs)
    , numSidechains (sidechains)
    , upsampleFactor (factor)
    , baseBlockSize (factor > 0 ? block / factor : block)
    , baseSampleRate (factor > 0 ? rate / factor : rate)
    , meterValues (1, 0.0f)
    , meterMessaging (std::make_shared<MeterMessaging> (meterRecords))
    , isUpsampled (factor > 0)
    , channelCodes (inputs, 0)
{
    for (uint32_t i = 0; i < numParameters; ++i)
    {
        parameters[i].value = startValue (i);
        parameters[i].previousValue = parameters[i].value;
        parameters[i].changed = true;
        parameters[i].uninitialised = true;
    }
}

HVNAbstractDSP::~HVNAbstractDSP() = default;

void HVNAbstractDSP::postProcess (HVNAudioBuffer<float>&, uint32_t) {}

void HVNAbstractDSP::reset()
{
    for (auto& callback : resetCallbacks)
        callback();
    resetPhases();
}

void HVNAbstractDSP::resetPhases() {}

void HVNAbstractDSP::setChannelCodes (const std::vector<int32_t>& codes)
{
    const size_t n = std::min (codes.size(), channelCodes.size());
    std::copy_n (codes.begin(), n, channelCodes.begin());
    std::fill (channelCodes.begin() + static_cast<std::ptrdiff_t> (n), channelCodes.end(), 0);
}

void HVNAbstractDSP::setLatency (uint32_t samples)
{
    if (latencyIsSet)
        return;
    latencySamples = samples;
    latencyIsSet = true;
}
