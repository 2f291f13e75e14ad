#include "state/TRQPluginState.h"

#include <gtest/gtest.h>

TEST (TRQPluginState, StartsWithItsThreeDefaults)
{
    TRQPluginState state;
    EXPECT_EQ (state.getElement().getTagName(), "PluginState");
    EXPECT_EQ (state.getAttribute ("LastPresetRecorded"), "");
    EXPECT_EQ (state.getAttribute ("AdvancedPaneIsOpen"), "0");
    const auto locks = state.getAttribute ("ParameterLockStates");
    EXPECT_TRUE (locks.startsWith ("{\"0\":false,\"1\":false,\"10\":false")) << "keys sorted as text";
    for (bool locked : state.getLockStates())
        EXPECT_FALSE (locked);
}

TEST (TRQPluginState, SetsAndReadsLocks)
{
    TRQPluginState state;
    state.setLock (5, true);
    state.setLock (20, true);
    state.setLock (21, true); // no such parameter: ignored
    const auto locks = state.getLockStates();
    for (size_t id = 0; id < locks.size(); ++id)
        EXPECT_EQ (locks[id], id == 5 || id == 20) << id;
    EXPECT_TRUE (state.getAttribute ("ParameterLockStates").contains ("\"5\":true"));

    state.setAdvancedPaneIsOpen (true);
    state.setLastPresetRecorded ("abc");
    EXPECT_EQ (state.getAttribute ("AdvancedPaneIsOpen"), "1");
    EXPECT_EQ (state.getAttribute ("LastPresetRecorded"), "abc");
}

TEST (TRQPluginState, DamagedLockTextKeepsWhatWasReadBeforeIt)
{
    TRQPluginState state;
    juce::XmlElement restored ("PluginState");
    restored.setAttribute ("ParameterLockStates", "{\"0\":true,\"1\":true,\"2\":3,\"3\":true}");
    state.replaceWith (restored);
    const auto locks = state.getLockStates();
    EXPECT_TRUE (locks[0]);
    EXPECT_TRUE (locks[1]);
    EXPECT_FALSE (locks[2]);
    EXPECT_FALSE (locks[3]) << "reading stops at the bad entry";

    restored.setAttribute ("ParameterLockStates", "not json");
    state.replaceWith (restored);
    for (bool locked : state.getLockStates())
        EXPECT_FALSE (locked);
    EXPECT_EQ (state.getAttribute ("AdvancedPaneIsOpen"), "") << "a restored element replaces all attributes";
}
