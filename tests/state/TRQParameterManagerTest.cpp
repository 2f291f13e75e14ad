#include "state/TRQParameterManager.h"
#include "core/ProcessorTestSupport.h"
#include "state/ParameterRange.h"
#include "state/TRQAudioParameter.h"
#include "state/TRQUndoManager.h"
#include "support/PresetFolder.h"

#include <gtest/gtest.h>

namespace
{
struct ChangeRecorder : TRQSignals::Trackable
{
    void onChange (int index, float value) { changes.emplace_back (index, value); }
    std::vector<std::pair<int, float>> changes;
};

class ParameterManagerTest : public ::testing::Test
{
protected:
    ParameterManagerTest()
    {
        history().setClock ([this] { return now; });
    }

    TRQUndoManager& history() { return p->getUndoManager(); }
    TRQParameterManager& manager() { return p->getParameterManager(); }
    float real (int id) { return p->getAudioParameter (id).getRealValue(); }

    void set (int id, float value)
    {
        p->getAudioParameter (id).setValueNotifyingHost (toNormalised (static_cast<ParameterId> (id), value));
    }

    // A drag on a control: gesture, one change, release.
    void drag (int id, float value)
    {
        auto& parameter = p->getAudioParameter (id);
        parameter.beginChangeGesture();
        set (id, value);
        parameter.endChangeGesture();
    }

    PresetFolder presets; // empty: no preset is selected
    std::unique_ptr<TRQAudioProcessor> p = ProcessorTestSupport::make();
    std::int64_t now = 100000;
};
} // namespace

TEST_F (ParameterManagerTest, AClickThatMovesNothingLeavesNoTrace)
{
    auto& parameter = p->getAudioParameter (2);
    parameter.beginChangeGesture();
    parameter.endChangeGesture();
    EXPECT_EQ (history().getNumTransactions(), 0u);
    EXPECT_FALSE (history().canUndo());
}

TEST_F (ParameterManagerTest, GesturesStartingWithinHalfASecondUndoTogether)
{
    drag (2, 70.0f);
    now += 499;
    drag (3, 40.0f);
    EXPECT_EQ (history().getNumTransactions(), 1u);

    history().undo();
    EXPECT_FLOAT_EQ (real (2), 50.0f);
    EXPECT_FLOAT_EQ (real (3), 15.0f);
    history().redo();
    EXPECT_FLOAT_EQ (real (2), 70.0f);
    EXPECT_FLOAT_EQ (real (3), 40.0f);
}

TEST_F (ParameterManagerTest, AGestureHalfASecondAfterTheFirstMakesItsOwnStep)
{
    drag (2, 70.0f);
    now += 200;
    drag (2, 75.0f);
    now += 300; // 0.5 s after the transaction began, though 0.3 s after its last action
    drag (3, 40.0f);
    EXPECT_EQ (history().getNumTransactions(), 2u);

    history().undo();
    EXPECT_FLOAT_EQ (real (2), 75.0f);
    EXPECT_FLOAT_EQ (real (3), 15.0f);
    history().undo();
    EXPECT_FLOAT_EQ (real (2), 50.0f);
}

TEST_F (ParameterManagerTest, AfterAnUndoTheNextGestureAlwaysBeginsANewStep)
{
    drag (2, 70.0f);
    drag (3, 40.0f);
    history().undo();
    now += 10;
    drag (4, 20.0f);

    history().undo();
    EXPECT_FLOAT_EQ (real (4), 50.0f);
    EXPECT_FLOAT_EQ (real (2), 50.0f) << "the undone step stays undone";
    EXPECT_TRUE (history().canUndo()) << "the one undone step came back behind the new one";
    history().undo();
    EXPECT_FLOAT_EQ (real (2), 50.0f);
    EXPECT_FLOAT_EQ (real (3), 15.0f);
}

TEST_F (ParameterManagerTest, OverlappingGesturesShareOneAction)
{
    auto& compression = p->getAudioParameter (2);
    auto& output = p->getAudioParameter (5);
    compression.beginChangeGesture();
    output.beginChangeGesture();
    set (2, 80.0f);
    set (5, -6.0f);
    compression.endChangeGesture();
    EXPECT_EQ (history().getNumTransactions(), 0u) << "the other gesture is still open";
    output.endChangeGesture();
    EXPECT_EQ (history().getNumTransactions(), 1u);

    history().undo();
    EXPECT_FLOAT_EQ (real (2), 50.0f);
    EXPECT_FLOAT_EQ (real (5), 0.0f);
}

TEST_F (ParameterManagerTest, TellsOfChangesAndIgnoresTheMeterIndices)
{
    ChangeRecorder recorder;
    manager().parameterChanged.connect (&ChangeRecorder::onChange, &recorder);
    set (6, 50.0f);
    manager().audioProcessorParameterChanged (p.get(), 21, 0.5f);
    manager().audioProcessorParameterChangeGestureBegin (p.get(), 21);
    manager().audioProcessorParameterChangeGestureEnd (p.get(), 21);

    ASSERT_EQ (recorder.changes.size(), 1u);
    EXPECT_EQ (recorder.changes[0].first, 6);
    EXPECT_FLOAT_EQ (recorder.changes[0].second, 0.5f);
    EXPECT_EQ (history().getNumTransactions(), 0u);
}

TEST_F (ParameterManagerTest, ABulkChangeIsAlwaysItsOwnStepEvenWhenNothingMoved)
{
    drag (2, 70.0f);
    manager().beginPresetAction ("");
    manager().endPresetAction ("");
    EXPECT_EQ (history().getNumTransactions(), 2u);

    manager().beginPresetAction ("");
    set (2, 10.0f);
    set (3, 90.0f);
    manager().endPresetAction ("");
    history().undo();
    EXPECT_FLOAT_EQ (real (2), 70.0f);
    EXPECT_FLOAT_EQ (real (3), 15.0f);
}

TEST_F (ParameterManagerTest, TogglingABTwiceBringsBackTheFirstSideWithoutHistory)
{
    set (2, 70.0f);
    EXPECT_TRUE (manager().toggleAB ("", false));
    EXPECT_FLOAT_EQ (real (2), 70.0f) << "the first toggle keeps the settings";

    set (2, 20.0f);
    set (13, -40.0f);
    EXPECT_FALSE (manager().toggleAB ("", false));
    EXPECT_FLOAT_EQ (real (2), 70.0f);
    EXPECT_FLOAT_EQ (real (13), 0.0f);

    EXPECT_TRUE (manager().toggleAB ("", false));
    EXPECT_FLOAT_EQ (real (2), 20.0f);
    EXPECT_FLOAT_EQ (real (13), -40.0f);
    EXPECT_EQ (history().getNumTransactions(), 0u);
}

TEST_F (ParameterManagerTest, CopyingASideAndTogglingChangesNothing)
{
    set (2, 70.0f);
    EXPECT_TRUE (manager().toggleAB ("", false));
    set (2, 30.0f);
    EXPECT_FALSE (manager().toggleAB ("", true)) << "copy flips the side shown";
    EXPECT_FLOAT_EQ (real (2), 30.0f);
    EXPECT_TRUE (manager().toggleAB ("", false));
    EXPECT_FLOAT_EQ (real (2), 30.0f);
    EXPECT_FALSE (manager().toggleAB ("", false));
    EXPECT_FLOAT_EQ (real (2), 30.0f);
}
