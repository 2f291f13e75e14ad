#include "state/TRQUndoManager.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace
{
// Writes what it does into a shared log; can be told to fail.
class LoggingAction : public TRQUndoableAction
{
public:
    LoggingAction (std::vector<std::string>& l, std::string n, bool succeed = true)
        : log (l)
        , name (std::move (n))
        , succeeds (succeed)
    {
    }
    bool perform() override
    {
        log.push_back ("do " + name);
        return succeeds;
    }
    bool undo() override
    {
        log.push_back ("undo " + name);
        return succeeds;
    }

private:
    std::vector<std::string>& log;
    std::string name;
    bool succeeds;
};

struct StateRecorder : TRQSignals::Trackable
{
    void onState (bool canUndo, bool canRedo) { states.emplace_back (canUndo, canRedo); }
    std::vector<std::pair<bool, bool>> states;
};
} // namespace

TEST (TRQUndoManager, ActionsJoinTheOpenTransactionUntilANewOneIsAskedFor)
{
    std::vector<std::string> log;
    TRQUndoManager history;
    StateRecorder recorder;
    history.stateChanged.connect (&StateRecorder::onState, &recorder);

    EXPECT_TRUE (history.perform (new LoggingAction (log, "a")));
    EXPECT_TRUE (history.perform (new LoggingAction (log, "b")));
    EXPECT_TRUE (log.empty()) << "joining the history runs nothing";
    EXPECT_EQ (history.getNumTransactions(), 1u);

    history.beginNewTransaction();
    history.perform (new LoggingAction (log, "c"));
    EXPECT_EQ (history.getNumTransactions(), 2u);
    EXPECT_EQ (history.getIndex(), 2u);

    history.undo();
    history.undo();
    EXPECT_EQ (log, (std::vector<std::string>{"undo c", "undo b", "undo a"})) << "backwards within a set";
    EXPECT_FALSE (history.canUndo());
    history.undo(); // nothing left: no change, no signal
    history.redo();
    EXPECT_EQ (log.back(), "do b");
    EXPECT_EQ (history.getIndex(), 1u);

    const std::vector<std::pair<bool, bool>> expected{{true, false}, {true, false}, {true, false},
                                                      {true, true},  {false, true}, {true, true}};
    EXPECT_EQ (recorder.states, expected);
}

TEST (TRQUndoManager, ANewChangeAfterOneUndoKeepsTheUndoneTransactionInTheHistory)
{
    std::vector<std::string> log;
    TRQUndoManager history;
    history.perform (new LoggingAction (log, "a"));
    history.beginNewTransaction();
    history.perform (new LoggingAction (log, "b"));
    history.undo();

    history.perform (new LoggingAction (log, "c"));
    EXPECT_EQ (history.getNumTransactions(), 3u);
    EXPECT_FALSE (history.canRedo());

    log.clear();
    history.undo();
    history.undo();
    history.undo();
    EXPECT_EQ (log, (std::vector<std::string>{"undo c", "undo b", "undo a"}));
}

TEST (TRQUndoManager, ANewChangeAfterTwoUndosDropsBoth)
{
    std::vector<std::string> log;
    TRQUndoManager history;
    for (const char* name : {"a", "b", "c"})
    {
        history.beginNewTransaction();
        history.perform (new LoggingAction (log, name));
    }
    history.undo();
    history.undo();
    history.perform (new LoggingAction (log, "d"));
    EXPECT_EQ (history.getNumTransactions(), 2u);

    log.clear();
    history.undo();
    history.undo();
    EXPECT_EQ (log, (std::vector<std::string>{"undo d", "undo a"}));
}

TEST (TRQUndoManager, AFailingActionStopsTheWalkAndKeepsTheIndex)
{
    std::vector<std::string> log;
    TRQUndoManager history;
    history.perform (new LoggingAction (log, "a"));
    history.perform (new LoggingAction (log, "b", false));
    history.perform (new LoggingAction (log, "c"));

    history.undo();
    EXPECT_EQ (log, (std::vector<std::string>{"undo c", "undo b"}));
    EXPECT_EQ (history.getIndex(), 1u) << "the transaction can be tried again";
    EXPECT_TRUE (history.isNewTransactionPending());
}

TEST (TRQUndoManager, StampsTransactionsWithTheirStartAndDimsTheButtonsWhenItGoes)
{
    std::vector<std::string> log;
    std::int64_t now = 1000;
    StateRecorder recorder;
    {
        TRQUndoManager history;
        history.setClock ([&] { return now; });
        EXPECT_EQ (history.lastTimeStampMs(), 0);
        history.perform (new LoggingAction (log, "a"));
        now = 1400;
        history.perform (new LoggingAction (log, "b"));
        EXPECT_EQ (history.lastTimeStampMs(), 1000) << "the time a set was made, not of its last action";
        history.stateChanged.connect (&StateRecorder::onState, &recorder);
    }
    ASSERT_EQ (recorder.states.size(), 1u);
    EXPECT_EQ (recorder.states.back(), std::make_pair (false, false));
}
