#include "state/TRQPluginState.h"

#include "state/ParameterCatalogue.h"

#include <nlohmann/json.hpp>

namespace
{
// Calls f (source, target) for every pair of the catalogue's lock lists, in order.
template<typename Function>
void forEachLockPair (Function&& f)
{
    for (const auto& row : ParameterCatalogue::rows())
        for (size_t list = 0; list < row.lockFrom.size() && list < row.lockTo.size(); ++list)
            for (size_t i = 0; i < row.lockFrom[list].size() && i < row.lockTo[list].size(); ++i)
                f (row.lockFrom[list][i], row.lockTo[list][i]);
}

std::string locksToJson (const TRQPluginState::LockStates& locks)
{
    nlohmann::json object = nlohmann::json::object();
    for (size_t id = 0; id < locks.size(); ++id)
        object[std::to_string (id)] = locks[id];
    return object.dump();
}
} // namespace

TRQPluginState::TRQPluginState()
{
    element.setAttribute (lastPresetAttribute, juce::String());
    element.setAttribute (advancedPaneAttribute, 0);
    element.setAttribute (lockStatesAttribute, juce::String (locksToJson (LockStates{})));
}

TRQPluginState::~TRQPluginState() = default;

void TRQPluginState::setLastPresetRecorded (juce::String uuid)
{
    element.setAttribute (lastPresetAttribute, uuid);
}

void TRQPluginState::setAdvancedPaneIsOpen (bool isOpen)
{
    element.setAttribute (advancedPaneAttribute, isOpen ? 1 : 0);
}

void TRQPluginState::setLockStates (const LockStates& locks)
{
    element.setAttribute (lockStatesAttribute, juce::String (locksToJson (locks)));
}

void TRQPluginState::setLock (unsigned id, bool locked)
{
    if (id >= 21)
        return;
    auto locks = getLockStates();
    locks[id] = locked;
    forEachLockPair (
        [&] (ParameterId source, ParameterId target)
        {
            if (source == id && isValidParameterId (target))
                locks[target] = locked;
        });
    setLockStates (locks);
}

TRQPluginState::LockStates TRQPluginState::getLockStates() const
{
    LockStates locks{};
    const auto text = element.getStringAttribute (lockStatesAttribute).toStdString();

    // A damaged entry keeps everything read before it; nothing here may throw.
    if (!text.empty())
    {
        try
        {
            const auto object = nlohmann::json::parse (text);
            for (size_t id = 0; id < locks.size(); ++id)
                locks[id] = object.at (std::to_string (id)).get<bool>();
        }
        catch (const std::exception&)
        {
        }
    }

    forEachLockPair (
        [&] (ParameterId source, ParameterId target)
        {
            if (isValidParameterId (source) && isValidParameterId (target) && locks[source])
                locks[target] = true;
        });
    return locks;
}

void TRQPluginState::replaceWith (const juce::XmlElement& restored)
{
    element.removeAllAttributes();
    element.setTagName (restored.getTagName());
    for (int i = 0; i < restored.getNumAttributes(); ++i)
        element.setAttribute (restored.getAttributeName (i), restored.getAttributeValue (i));
}
