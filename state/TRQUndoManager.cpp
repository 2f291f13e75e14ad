#include "state/TRQUndoManager.h"

#include <juce_core/juce_core.h>

TRQUndoableAction::~TRQUndoableAction() = default;

TRQUndoManager::TRQUndoManager()
    : clock ([] { return static_cast<std::int64_t> (juce::Time::currentTimeMillis()); })
{
    sets.reserve (1000);
}

TRQUndoManager::~TRQUndoManager()
{
    sets.clear();
    index = 0;
    newTransactionFlag = true;
    emitState();
}

bool TRQUndoManager::perform (TRQUndoableAction* action)
{
    inAction = true;
    std::shared_ptr<TRQUndoableAction> owned (action);

    // With exactly one transaction ahead, that one is kept: it comes back into the
    // history behind the new action, as if it had never been undone.
    if (!sets.empty() && index + 1 < sets.size())
        sets.erase (sets.begin() + index, sets.end());

    if (sets.empty() || newTransactionFlag)
        sets.push_back (std::make_shared<TRQActionSet> (clock()));
    newTransactionFlag = false;

    sets.back()->actions.push_back (std::move (owned));
    index = static_cast<std::uint32_t> (sets.size());

    emitState();
    inAction = false;
    return true;
}

void TRQUndoManager::undo()
{
    if (sets.empty() || index == 0)
        return;
    inAction = true;

    const auto& actions = sets[index - 1]->actions;
    bool all = true;
    for (auto it = actions.rbegin(); it != actions.rend() && all; ++it)
        all = (*it)->undo();
    if (all)
        --index;

    newTransactionFlag = true;
    emitState();
    inAction = false;
}

void TRQUndoManager::redo()
{
    if (sets.empty() || index >= sets.size())
        return;
    inAction = true;

    const auto& actions = sets[index]->actions;
    bool all = true;
    for (auto it = actions.begin(); it != actions.end() && all; ++it)
        all = (*it)->perform();
    if (all)
        ++index;

    newTransactionFlag = true;
    emitState();
    inAction = false;
}

std::int64_t TRQUndoManager::lastTimeStampMs() const
{
    return index > 0 && index <= sets.size() ? sets[index - 1]->timeStampMs : 0;
}

void TRQUndoManager::emitState()
{
    stateChanged.emit (canUndo(), canRedo());
}
