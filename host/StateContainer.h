#pragma once

/// One recorded piece of document state for undo. A container captures the state when it is
/// made; Swap exchanges the captured state with the live one, so the same call undoes and
/// then redoes the change.
class StateContainer {
public:
    virtual ~StateContainer() = default;
    virtual void Swap() = 0;
};
