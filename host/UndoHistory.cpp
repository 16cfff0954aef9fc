#include "host/UndoHistory.h"

#include <algorithm>
#include <utility>

namespace {

class ReplayGuard {
public:
    explicit ReplayGuard(bool& flag) : mFlag(flag) { mFlag = true; }
    ~ReplayGuard() { mFlag = false; }
    ReplayGuard(const ReplayGuard&) = delete;
    ReplayGuard& operator=(const ReplayGuard&) = delete;

private:
    bool& mFlag;
};

}  // namespace

void UndoHistory::Begin(const void* owner, const std::string& label) {
    if (mReplaying)
        return;
    if (!mOpen)
        mOpen = Step{label, {}};
    mOwners.push_back(owner);
}

void UndoHistory::Accept(const void* owner, const std::string& label) {
    if (mOwners.empty() || mOwners.back() != owner)
        return;
    mOwners.pop_back();
    if (!mOwners.empty())
        return;
    Step step = std::move(*mOpen);
    mOpen.reset();
    if (!label.empty())
        step.label = label;
    if (!step.containers.empty())
        Commit(std::move(step));
}

void UndoHistory::Put(std::unique_ptr<StateContainer> container, const std::string& label) {
    if (mReplaying || container == nullptr)
        return;
    if (mOpen) {
        mOpen->containers.push_back(std::move(container));
        return;
    }
    Step step{label, {}};
    step.containers.push_back(std::move(container));
    Commit(std::move(step));
}

bool UndoHistory::Undo() {
    if (!CanUndo())
        return false;
    Step step = std::move(mUndo.back());
    mUndo.pop_back();
    {
        ReplayGuard guard(mReplaying);
        for (auto it = step.containers.rbegin(); it != step.containers.rend(); ++it)
            (*it)->Swap();
    }
    mRedo.push_back(std::move(step));
    return true;
}

bool UndoHistory::Redo() {
    if (!CanRedo())
        return false;
    Step step = std::move(mRedo.back());
    mRedo.pop_back();
    {
        ReplayGuard guard(mReplaying);
        for (const auto& container : step.containers)
            container->Swap();
    }
    mUndo.push_back(std::move(step));
    return true;
}

void UndoHistory::Clear() {
    mUndo.clear();
    mRedo.clear();
    if (mOpen)
        mOpen->containers.clear();
}

void UndoHistory::Commit(Step step) {
    mUndo.push_back(std::move(step));
    mRedo.clear();
}
