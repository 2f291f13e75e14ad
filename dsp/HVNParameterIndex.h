#pragma once

#include <cstdint>

// Position of each parameter in the DSP's records; the same numbers as the host's
// parameter list. Never renumber: sessions and presets depend on them.
namespace HVNParameterIndex
{
enum : uint32_t
{
    MasterOnOff = 0,
    InputGain = 1,
    CompressionAmount = 2,
    WowFlutterAmount = 3,
    LoFiAmount = 4,
    OutputGain = 5,
    MasterMix = 6,
    CompAttackTimeConstant = 7,
    CompReleaseTimeConstant = 8,
    CompStereoLink = 9,
    WowFlutterMix = 10,
    WowFlutterSpeed = 11,
    WowFlutterPhase = 12,
    LoFiNoiseGain = 13,
    LoFiType = 14,
    LoFiCrunch = 15,
    HQMode = 16,
    DigitalRefLevel = 17,
    SidechainListen = 18,
    SidechainExternal = 19,
    SidechainTilt = 20,
    count = 21
};
} // namespace HVNParameterIndex
