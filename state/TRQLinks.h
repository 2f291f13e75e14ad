#pragma once

#include "state/ParameterId.h"
#include "state/ParameterSpec.h"
#include "state/TRQLinkManager.h"

#include <array>
#include <utility>
#include <vector>

class TRQAudioParameter;

// The owning parameter is a switch: while it is on, each target follows its source
// quietly; when it goes off, each target takes its source's position and the host
// hears of it.
class TRQLinkedBy : public TRQLinkManager
{
public:
    using Pair = std::pair<TRQAudioParameter*, TRQAudioParameter*>; // source, target

    explicit TRQLinkedBy (std::vector<Pair> pairs);
    void valueChanged (float newNormalised, float oldReal) override;

private:
    std::vector<Pair> pairs;
};

// While the gate is on, the target follows the owning parameter quietly.
class TRQLinkedPrimary : public TRQLinkManager
{
public:
    TRQLinkedPrimary (TRQAudioParameter& gate, TRQAudioParameter& target);
    void valueChanged (float newNormalised, float oldReal) override;

private:
    TRQAudioParameter& gate;
    TRQAudioParameter& target;
};

// While the gate is on, the owning parameter refuses host changes and stays out of
// preset URLs.
class TRQLinkedSecondary : public TRQLinkManager
{
public:
    explicit TRQLinkedSecondary (TRQAudioParameter& gate);
    bool isAutomatable() const override;

private:
    TRQAudioParameter& gate;
};

namespace TRQLinks
{
// Gives each parameter the link manager its row asks for: the catalogue's rows unless
// others are given. The array holds the 21 parameters in id order. Throws
// std::out_of_range for a row that names an id of 21 or more.
void build (const std::array<TRQAudioParameter*, kNumParameters>& parameters);
void build (const std::array<TRQAudioParameter*, kNumParameters>& parameters,
            const std::array<ParameterSpec, kNumParameters>& rows);

// Whether the row of id has a linked secondary whose gate is on in values (real
// values by id).
bool isHeldByGate (unsigned id, const float* values);
} // namespace TRQLinks
