#pragma once

#include "state/TRQSignals.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

// One step that the history can take back and forth.
class TRQUndoableAction
{
public:
    virtual ~TRQUndoableAction();
    virtual bool perform() = 0;
    virtual bool undo() = 0;
};

// One transaction: the actions that undo and redo together, and when it began.
struct TRQActionSet
{
    explicit TRQActionSet (std::int64_t createdMs)
        : timeStampMs (createdMs)
    {
    }

    std::vector<std::shared_ptr<TRQUndoableAction>> actions;
    std::int64_t timeStampMs;
};

// The undo history: a list of transactions and the count of those that lie behind the
// present. Actions are handed over after their change has been made and are not run
// when they join. The history has no limit.
class TRQUndoManager
{
public:
    using Clock = std::function<std::int64_t()>;

    TRQUndoManager();
    virtual ~TRQUndoManager();

    // Takes ownership of the action and appends it to the current transaction, or to a
    // new one when a new transaction was asked for. Always true.
    bool perform (TRQUndoableAction* action);
    void undo();
    void redo();

    bool canUndo() const { return !sets.empty() && index > 0; }
    bool canRedo() const { return !sets.empty() && index < sets.size(); }

    // The next action opens a transaction of its own.
    void beginNewTransaction() { newTransactionFlag = true; }
    bool isNewTransactionPending() const { return newTransactionFlag; }

    std::uint32_t getIndex() const { return index; }
    std::size_t getNumTransactions() const { return sets.size(); }
    bool isInAction() const { return inAction.load(); }

    // Creation time of the last transaction behind the present; 0 if there is none.
    std::int64_t lastTimeStampMs() const;

    // Milliseconds since the epoch, as the history stamps transactions.
    std::int64_t nowMs() const { return clock(); }
    // For tests: replaces the wall clock.
    void setClock (Clock newClock) { clock = std::move (newClock); }

    // (canUndo, canRedo), after every change of the history.
    TRQSignals::Signal<void (bool, bool)> stateChanged;

private:
    void emitState();

    std::vector<std::shared_ptr<TRQActionSet>> sets;
    std::uint32_t index = 0;
    bool newTransactionFlag = true;
    std::atomic<bool> inAction{false};
    Clock clock;
};
