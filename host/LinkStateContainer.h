#pragma once

#include <optional>

#include "host/Engine.h"
#include "host/StateContainer.h"

/// Undo record of the link into one inplug (or of its absence). Swapping relinks or unlinks
/// through the engine, which re-evaluates and notifies the node as for any link change.
class LinkStateContainer : public StateContainer {
public:
    /// Captures the link currently into inplug `inplug` of `to`.
    LinkStateContainer(Engine* engine, Node* to, unsigned inplug);
    void Swap() override;

private:
    Engine* mEngine;
    Node* mTo;
    unsigned mInplug;
    std::optional<Engine::Link> mSaved;
};
