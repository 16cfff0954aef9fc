#pragma once

#include "host/EngineMutex.h"

#include "host/NodeValue.h"
#include "host/RenderOptions.h"

class Engine;
class Node;

/// What a node needs from the engine that holds it, and nothing more: the lock that guards
/// its listeners, re-evaluation marking, its own events, evaluation on behalf of the free
/// function Evaluate, and the host's render options. Engine is the one implementation.
class NodeHost {
public:
    /// The SDK's engine object, for plug-in code that records undo steps or reads options.
    virtual Engine* GetEngine() = 0;
    virtual EngineMutex& GetMutex() const = 0;
    /// Marks `node` and everything downstream of it for re-evaluation (node event 5 to each).
    virtual void MarkDirty(Node* node) = 0;
    /// `node` reported its own output changed: as MarkDirty, without telling `node` again.
    virtual void MarkOutputChanged(Node* node) = 0;
    /// Sends a node event once the engine is free.
    virtual void SendNodeEvent(Node* node, int type, int code) = 0;
    /// Evaluates `node` as needed and returns the value on its outplug.
    virtual NodeValue EvaluateOutput(Node* node, unsigned outplug) = 0;
    virtual const RenderOptions& GetRenderOptions() const = 0;

protected:
    ~NodeHost() = default;
};
