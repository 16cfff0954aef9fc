#pragma once

// Internal to the host library: the engine's undo and redo lists.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/StateContainer.h"

/// Steps of recorded state containers. A step is open between Begin and the matching Accept;
/// containers put meanwhile join it, containers put outside a step form a step of their own.
/// Undo swaps a step's containers in reverse order, Redo in order; while they run, containers
/// put by the code they trigger are dropped, so replaying never records anything.
class UndoHistory {
public:
    /// Opens a step, or nests in the open one (the outermost Accept closes it).
    void Begin(const void* owner, const std::string& label);
    /// Closes the innermost Begin of `owner` with `label` (the Begin's label when empty). An
    /// Accept without a matching Begin is ignored; a step that recorded nothing is dropped.
    void Accept(const void* owner, const std::string& label);
    /// Adds a container to the open step, or records it as the step `label`.
    void Put(std::unique_ptr<StateContainer> container, const std::string& label);

    bool IsStepOpen() const { return mOpen.has_value(); }
    bool CanUndo() const { return !mOpen && !mUndo.empty(); }
    bool CanRedo() const { return !mOpen && !mRedo.empty(); }
    std::string GetUndoLabel() const { return mUndo.empty() ? std::string() : mUndo.back().label; }
    std::string GetRedoLabel() const { return mRedo.empty() ? std::string() : mRedo.back().label; }
    /// False when there is nothing to undo or a step is open.
    bool Undo();
    bool Redo();
    /// Forgets every step and whatever the open step recorded so far (the step stays open).
    void Clear();

private:
    struct Step {
        std::string label;
        std::vector<std::unique_ptr<StateContainer>> containers;
    };
    void Commit(Step step);

    std::vector<Step> mUndo;
    std::vector<Step> mRedo;
    std::optional<Step> mOpen;
    std::vector<const void*> mOwners;
    bool mReplaying = false;
};
