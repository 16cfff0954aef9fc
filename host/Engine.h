#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "host/GraphStore.h"
#include "host/HostTypes.h"
#include "host/Node.h"
#include "host/NodeHost.h"
#include "host/RenderOptions.h"
#include "host/StateContainer.h"

/// The host's node graph: nodes, links between their plugs, evaluation, events and undo. It is
/// the facade over the graph store, the event queue, the evaluator and the undo history, and
/// the NodeHost its nodes call back into.
///
/// Evaluation is pull-based with dirty propagation. A node is dirty after it is added, when
/// one of its attributes changes, when a link into it changes, and whenever a node upstream
/// becomes dirty: a re-evaluated texture node deletes the module that downstream module trees
/// point to, so everything downstream must be evaluated again before it is used. Evaluating a
/// node first evaluates its dirty upstream nodes in dependency order. An exception escaping a
/// node's Evaluate is caught here and becomes that node's error state (3) with the exception's
/// message; the host keeps running.
///
/// All operations lock the engine's recursive mutex (EngineMutex), so a preview thread may evaluate
/// (the free function Evaluate) while the user edits on the GUI thread. Node and engine events that
/// an operation causes are delivered on the calling thread once its outermost engine operation
/// has released the lock, so a listener may wait for another thread that needs the engine.
class Engine : public NodeHost {
public:
    /// Engine-wide event codes sent to delegate handlers (see docs/host.md).
    enum EventCode : unsigned {
        kSceneModelsChanged = 6,
        kSceneModelReloaded = 8,
        kSceneReplaced = 13,
        kSceneViewChanged = 14,
    };

    using Link = GraphLink;

    Engine();
    virtual ~Engine();
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    /// The process-wide engine that hosts and plug-ins share.
    static Engine* Get();

    // Graph.
    /// Adds `node` under `id` (unique in this engine) and takes ownership. Returns the node,
    /// or null with `error` set when the id is taken or empty, or the node did not declare its
    /// plugs (the node is then deleted).
    Node* AddNode(std::unique_ptr<Node> node, const std::string& id, std::string* error = nullptr);
    /// Removes the node and its links, and deletes it. Forgets the undo history (its steps may
    /// refer to the node).
    void RemoveNode(Node* node);
    /// Removes the node and its links as an undo step labelled `label` (or as part of the open
    /// step): undo puts the same node object back in its place among the nodes, under its id
    /// (with "-2", "-3" ... appended should another node have taken it meanwhile), with its
    /// links; redo removes it again. The history keeps the removed node until the step is
    /// forgotten, which deletes it.
    void DeleteNode(Node* node, const std::string& label = "Delete Node");
    /// Records `node`, just added, as an undo step labelled `label` (or as part of the open
    /// step): undo takes it out again with any links made to it since, redo puts it back.
    void RecordAddition(Node* node, const std::string& label);
    /// Removes every node and link, empties the scene's model list, forgets the undo history
    /// and sends kSceneReplaced. Hosts clear the engine before unloading a plug-in.
    void Clear();
    Node* FindNode(const std::string& id) const;
    /// The id the node was added under; empty for a node of another engine.
    std::string GetNodeId(const Node* node) const;
    /// Every node, in the order they were added.
    std::vector<Node*> GetNodes() const;

    /// Links outplug `outplug` of `from` to inplug `inplug` of `to`, replacing the link that
    /// inplug had. Fails (false, `error` set) when a plug does not exist, the plug types
    /// differ, or the link would close a cycle.
    bool Connect(Node* from, unsigned outplug, Node* to, unsigned inplug,
                 std::string* error = nullptr);
    /// Removes the link into inplug `inplug` of `to`, if any.
    void Disconnect(Node* to, unsigned inplug);
    std::vector<Link> GetLinks() const;
    /// The link into that inplug, or null; valid until the links change.
    const Link* FindLinkTo(const Node* to, unsigned inplug) const;

    // Attributes.
    /// Sets an attribute after checking its kind and range (false and `error` otherwise),
    /// records the change for undo, marks the node dirty and sends it event type 3.
    bool SetAttributeValue(Node* node, unsigned attributeId, const NodeValue& value,
                           std::string* error = nullptr);

    // Evaluation.
    /// Marks `node` and everything downstream of it for re-evaluation and sends each of them
    /// node event 5 (output changed).
    void MarkDirty(Node* node) override;
    bool IsDirty(const Node* node) const;
    /// Evaluates the node's dirty upstream nodes and then the node itself if dirty.
    /// Returns false when the node ended in the error state, or when the render options'
    /// `cancelled` stopped the evaluation (the node is then dirty and in no error state).
    bool EvaluateNode(Node* node);
    /// Evaluates every dirty node.
    void EvaluateAll();
    /// The value on an outplug as of the node's last evaluation (type kNone before).
    NodeValue GetOutputValue(const Node* node, unsigned outplug) const;
    /// Called before and after each node's Evaluate (for progress displays); may be empty.
    void SetEvaluationObserver(std::function<void(Node* node, bool finished)> observer);
    /// How many node evaluations ran since the engine was made (for summaries and tests).
    unsigned long long GetEvaluationCount() const;
    /// Drops the outputs the engine holds for `node`, sends it node event 11 (release cached
    /// outputs) and marks it for re-evaluation: frees the memory of a rendered image that is no
    /// longer shown.
    void ReleaseOutputs(Node* node);

    // Events.
    void RegisterDelegateEventHandler(const Delegate2<unsigned int, unsigned int>& handler);
    void UnregisterDelegateEventHandler(const Delegate2<unsigned int, unsigned int>& handler);
    /// Sends an engine event to every registered handler.
    void SendEvent(unsigned int code, unsigned int parameter = 0);
    /// Sends a node event to `node` (OnProcessEvent, then its listeners) when this thread
    /// leaves the engine, at once when it is in no engine operation.
    void SendNodeEvent(Node* node, int type, int code) override;

    // Scene.
    /// The model files of the document's scene (absolute paths), in document order.
    const std::vector<std::string>& GetSceneModels() const;
    /// Replaces the scene's model list and sends kSceneModelsChanged.
    void SetSceneModels(std::vector<std::string> models);

    // Undo. Changes made between StateRecorderBegin and StateRecorderAccept by the same owner
    // form one undo step with the label given at Accept. Changes made outside a step (such as
    // SetAttributeValue) are recorded as steps of their own.
    static void StateRecorderBegin(Engine* engine, const void* owner, const std::string& label);
    /// Adds a container (taking ownership) to the open step, or as a step of its own.
    static void StateRecorderPut(Engine* engine, StateContainer* container);
    static void StateRecorderAccept(Engine* engine, const void* owner, const std::string& label);
    bool CanUndo() const;
    bool CanRedo() const;
    /// Label of the step Undo would revert; empty when there is none.
    std::string GetUndoLabel() const;
    std::string GetRedoLabel() const;
    /// Reverts the last step (its containers swapped in reverse order). False when there is
    /// none or a step is still open.
    bool Undo();
    /// Re-applies the last undone step (containers in order). A new step clears the redo list.
    bool Redo();
    /// Forgets every undo and redo step (for example after loading a document).
    void ClearUndoHistory();

    // Render options (an SDK extension: see host/RenderOptions.h).
    const RenderOptions& GetRenderOptions() const override { return mRenderOptions; }
    /// Takes the engine's lock: renders read the options while they run.
    void SetRenderOptions(const RenderOptions& options);

    /// The engine's lock; held during every operation above.
    EngineMutex& GetMutex() const override;

private:
    friend class NodeStateContainer;
    struct Impl;

    /// A node taken out of the engine with what it needs to come back.
    struct DetachedNode {
        std::unique_ptr<Node> node;
        std::string id;
        std::size_t position = 0;
        std::vector<Link> links;
    };
    /// Takes `node` and its links out without deleting it; downstream nodes lose their inputs.
    DetachedNode DetachNode(Node* node);
    /// Puts a detached node back with its links; returns it.
    Node* AttachNode(DetachedNode detached);
    /// Drops the engine event handlers `node` registered (it is about to be deleted).
    void ForgetNodeHandlers(const Node* node);

    // NodeHost: what nodes call back into.
    Engine* GetEngine() override { return this; }
    void MarkOutputChanged(Node* node) override;
    NodeValue EvaluateOutput(Node* node, unsigned outplug) override;

    void Dirty(Node* node, bool tellNode);

    std::unique_ptr<Impl> mImpl;
    RenderOptions mRenderOptions;
};
