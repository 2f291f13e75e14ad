#include "state/TRQLinks.h"

#include "state/ParameterCatalogue.h"
#include "state/ParameterRange.h"
#include "state/TRQAudioParameter.h"

#include <stdexcept>

TRQLinkedBy::TRQLinkedBy (std::vector<Pair> p)
    : pairs (std::move (p))
{
}

void TRQLinkedBy::valueChanged (float newNormalised, float oldReal)
{
    if (newNormalised == oldReal)
        return;

    for (auto& [source, target] : pairs)
    {
        const float value = source->getValue();
        if (newNormalised > 0.0f)
        {
            target->storeRealValue (fromNormalised (target->getId(), value));
        }
        else
        {
            target->setValue (value);
            target->sendValueChangedMessageToListeners (target->getValue());
        }
    }
}

TRQLinkedPrimary::TRQLinkedPrimary (TRQAudioParameter& g, TRQAudioParameter& t)
    : gate (g)
    , target (t)
{
}

void TRQLinkedPrimary::valueChanged (float newNormalised, float)
{
    if (gate.getValue() > 0.0f)
        target.storeRealValue (fromNormalised (target.getId(), newNormalised));
}

TRQLinkedSecondary::TRQLinkedSecondary (TRQAudioParameter& g)
    : gate (g)
{
}

bool TRQLinkedSecondary::isAutomatable() const
{
    return !(gate.getValue() > 0.0f);
}

namespace TRQLinks
{
namespace
{
TRQAudioParameter& at (const std::array<TRQAudioParameter*, kNumParameters>& parameters, ParameterId id)
{
    if (!isValidParameterId (id))
        throw std::out_of_range ("TRQLinks: a link names a parameter that does not exist");
    return *parameters[id];
}
} // namespace

void build (const std::array<TRQAudioParameter*, kNumParameters>& parameters)
{
    build (parameters, ParameterCatalogue::rows());
}

void build (const std::array<TRQAudioParameter*, kNumParameters>& parameters,
            const std::array<ParameterSpec, kNumParameters>& rows)
{
    for (ParameterId id = 0; id < kNumParameters; ++id)
    {
        const auto& row = rows[id];
        if (!row.linkedByPairs.empty())
        {
            std::vector<TRQLinkedBy::Pair> pairs;
            for (const auto& [source, target] : row.linkedByPairs)
                pairs.emplace_back (&at (parameters, source), &at (parameters, target));
            parameters[id]->setLinkManager (std::make_unique<TRQLinkedBy> (std::move (pairs)));
        }
        else if (row.linkedPrimary[0] != 0)
        {
            parameters[id]->setLinkManager (std::make_unique<TRQLinkedPrimary> (
                at (parameters, row.linkedPrimary[1]), at (parameters, row.linkedPrimary[0])));
        }
        else if (row.linkedSecondary[0] != 0)
        {
            parameters[id]->setLinkManager (
                std::make_unique<TRQLinkedSecondary> (at (parameters, row.linkedSecondary[1])));
        }
    }
}

bool isHeldByGate (unsigned id, const float* values)
{
    if (!isValidParameterId (id))
        return false;
    const auto& row = ParameterCatalogue::row (id);
    return row.linkedSecondary[0] != 0 && isValidParameterId (row.linkedSecondary[1]) &&
           values[row.linkedSecondary[1]] > 0.0f;
}
} // namespace TRQLinks
