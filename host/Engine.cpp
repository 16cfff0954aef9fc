#include "host/Engine.h"

#include <utility>

#include "host/AttributeStateContainer.h"
#include "host/Evaluator.h"
#include "host/EventQueue.h"
#include "host/GraphDepth.h"
#include "host/LinkStateContainer.h"
#include "host/NodeStateContainer.h"
#include "host/UndoHistory.h"

struct Engine::Impl {
    GraphStore graph;
    EventQueue events{[this](const Node* node) { return graph.Find(node) != nullptr; }};
    Evaluator evaluator{graph};
    UndoHistory history;
    std::vector<std::string> sceneModels;

    /// Takes the entry out of the graph and deletes its node, its outputs first (they may
    /// hold what the node made).
    void DeleteEntry(std::unique_ptr<GraphStore::Entry> entry, bool detach) {
        entry->outputs.clear();
        if (detach)
            entry->node->SetHost(nullptr);
        entry->node.reset();
    }
};

namespace {

/// Stores `message` in `error` when given and returns `result`.
template <class Result>
Result Fail(std::string* error, const std::string& message, Result result) {
    if (error != nullptr)
        *error = message;
    return result;
}

}  // namespace

using Scope = EventQueue::Scope;

Engine::Engine() : mImpl(std::make_unique<Impl>()) {}

Engine::~Engine() {
    // Nodes kept by the undo history for a deleted node go first, while the engine is whole.
    mImpl->history.Clear();
    // Nodes go next, while the engine is whole: their destructors may unregister handlers.
    GraphStore& graph = mImpl->graph;
    while (!graph.GetEntries().empty())
        mImpl->DeleteEntry(graph.Take(graph.GetEntries().back()->node.get()), false);
}

Engine* Engine::Get() {
    // Never destroyed: plug-in nodes may live in it until the process ends, after their
    // library's code is gone, so running their destructors at exit would be unsafe.
    static Engine* const engine = new Engine();
    return engine;
}

Node* Engine::AddNode(std::unique_ptr<Node> node, const std::string& id, std::string* error) {
    Scope scope(mImpl->events);
    Node* none = nullptr;
    if (node == nullptr)
        return Fail(error, "no node to add as '" + id + "'", none);
    if (id.empty())
        return Fail(error, "a node id must not be empty", none);
    if (mImpl->graph.Find(id) != nullptr)
        return Fail(error, "node id '" + id + "' is already taken", none);
    if (node->GetEngine() != nullptr)
        return Fail(error, "node '" + id + "' belongs to another engine", none);
    if (node->GetInplugs().size() != node->GetAttributes().size() + node->GetRegularInputs().size())
        return Fail(error,
                    "node '" + id + "' (" + node->GetTypeName() +
                        ") did not declare its plugs (UpdateInplugsAndOutplugs)",
                    none);
    Node* added = mImpl->graph.Insert(std::move(node), id, mImpl->graph.GetEntries().size());
    added->SetHost(this);
    return added;
}

void Engine::RemoveNode(Node* node) {
    Scope scope(mImpl->events);
    if (mImpl->graph.Find(node) == nullptr)
        return;
    for (const Link& link : mImpl->graph.RemoveLinksOf(node))
        if (link.from == node && link.to != node) {
            mImpl->events.QueueNodeEvent(link.to, NodeEvent::kInputsChanged, 0);
            MarkDirty(link.to);
        }
    mImpl->history.Clear();
    mImpl->events.ForgetNode(node);
    mImpl->DeleteEntry(mImpl->graph.Take(node), true);
}

void Engine::DeleteNode(Node* node, const std::string& label) {
    Scope scope(mImpl->events);
    if (mImpl->graph.Find(node) == nullptr)
        return;
    mImpl->history.Put(std::make_unique<NodeStateContainer>(this, node), label);
}

void Engine::RecordAddition(Node* node, const std::string& label) {
    Scope scope(mImpl->events);
    if (mImpl->graph.Find(node) == nullptr)
        return;
    // The record of a presence takes the node out when made; putting it straight back leaves
    // a record whose first swap (the undo) takes it out again.
    auto presence = std::make_unique<NodeStateContainer>(this, node);
    presence->Swap();
    mImpl->history.Put(std::move(presence), label);
}

Engine::DetachedNode Engine::DetachNode(Node* node) {
    Scope scope(mImpl->events);
    DetachedNode detached;
    if (mImpl->graph.Find(node) == nullptr)
        return detached;
    detached.links = mImpl->graph.RemoveLinksOf(node);
    for (const Link& link : detached.links)
        if (link.to != node) {
            mImpl->events.QueueNodeEvent(link.to, NodeEvent::kInputsChanged, 0);
            MarkDirty(link.to);
        }
    // Its handlers stay: the node is alive and comes back on undo.
    mImpl->events.DropNodeEvents(node);
    std::unique_ptr<GraphStore::Entry> entry = mImpl->graph.Take(node, &detached.position);
    entry->outputs.clear();
    entry->node->SetHost(nullptr);
    detached.node = std::move(entry->node);
    detached.id = entry->id;
    return detached;
}

Node* Engine::AttachNode(DetachedNode detached) {
    Scope scope(mImpl->events);
    if (detached.node == nullptr)
        return nullptr;
    std::string id = detached.id;
    for (int suffix = 2; mImpl->graph.Find(id) != nullptr; ++suffix)
        id = detached.id + "-" + std::to_string(suffix);
    Node* node = mImpl->graph.Insert(std::move(detached.node), id, detached.position);
    node->SetHost(this);
    for (const Link& link : detached.links) {
        if (mImpl->graph.Find(link.from) == nullptr || mImpl->graph.Find(link.to) == nullptr)
            continue;
        mImpl->graph.SetLink(link);
        mImpl->events.QueueNodeEvent(link.to, NodeEvent::kInputsChanged, 0);
        MarkDirty(link.to);
    }
    MarkDirty(node);
    return node;
}

void Engine::ForgetNodeHandlers(const Node* node) {
    Scope scope(mImpl->events);
    mImpl->events.ForgetNode(node);
}

void Engine::Clear() {
    Scope scope(mImpl->events);
    GraphStore& graph = mImpl->graph;
    graph.ClearLinks();
    while (!graph.GetEntries().empty()) {
        Node* node = graph.GetEntries().back()->node.get();
        mImpl->events.ForgetNode(node);
        mImpl->DeleteEntry(graph.Take(node), true);
    }
    mImpl->sceneModels.clear();
    mImpl->history.Clear();
    mImpl->events.QueueEngineEvent(kSceneReplaced, 0);
}

Node* Engine::FindNode(const std::string& id) const {
    Scope scope(mImpl->events);
    const GraphStore::Entry* entry = mImpl->graph.Find(id);
    return entry != nullptr ? entry->node.get() : nullptr;
}

std::string Engine::GetNodeId(const Node* node) const {
    Scope scope(mImpl->events);
    const GraphStore::Entry* entry = mImpl->graph.Find(node);
    return entry != nullptr ? entry->id : std::string();
}

std::vector<Node*> Engine::GetNodes() const {
    Scope scope(mImpl->events);
    std::vector<Node*> nodes;
    for (const auto& entry : mImpl->graph.GetEntries())
        nodes.push_back(entry->node.get());
    return nodes;
}

bool Engine::Connect(Node* from, unsigned outplug, Node* to, unsigned inplug, std::string* error) {
    Scope scope(mImpl->events);
    const GraphStore& graph = mImpl->graph;
    const GraphStore::Entry* fromEntry = graph.Find(from);
    const GraphStore::Entry* toEntry = graph.Find(to);
    if (fromEntry == nullptr || toEntry == nullptr)
        return Fail(error, "cannot link nodes that are not in this engine", false);
    if (outplug >= from->GetOutplugs().size())
        return Fail(error,
                    "node '" + fromEntry->id + "' (" + from->GetTypeName() + ") has no outplug " +
                        std::to_string(outplug),
                    false);
    if (inplug >= to->GetInplugs().size())
        return Fail(error,
                    "node '" + toEntry->id + "' (" + to->GetTypeName() + ") has no inplug " +
                        std::to_string(inplug),
                    false);
    const std::string fromName = graph.PlugName(from, true, outplug);
    const std::string toName = graph.PlugName(to, false, inplug);
    const std::string what = "cannot link " + fromName + " to " + toName + ": ";
    const unsigned fromType = from->GetOutplugs()[outplug].plugType;
    const unsigned toType = to->GetInplugs()[inplug].plugType;
    if (fromType != toType)
        return Fail(error,
                    what + fromName + " gives " + NodeValue::GetTypeName(fromType) +
                        " values (type " + std::to_string(fromType) + ") but " + toName +
                        " takes " + NodeValue::GetTypeName(toType) + " values (type " +
                        std::to_string(toType) + ")",
                    false);
    if (from == to)
        return Fail(error, what + "a node cannot feed itself", false);
    if (const std::vector<std::string> path = graph.PathDown(to, from); !path.empty()) {
        std::string cycle;
        for (const std::string& id : path)
            cycle += id + " -> ";
        return Fail(error, what + "it would make a cycle (" + cycle + toEntry->id + ")", false);
    }
    if (const std::string tooDeep = GraphDepth::CheckLink(*this, from, to, inplug);
        !tooDeep.empty())
        return Fail(error, what + tooDeep, false);

    const Link* existing = graph.FindLinkTo(to, inplug);
    if (existing != nullptr && existing->from == from && existing->outplug == outplug)
        return true;
    mImpl->history.Put(std::make_unique<LinkStateContainer>(this, to, inplug),
                       "Link " + fromName + " to " + toName);
    mImpl->graph.SetLink({from, outplug, to, inplug});
    mImpl->events.QueueNodeEvent(to, NodeEvent::kInputsChanged, 0);
    MarkDirty(to);
    return true;
}

void Engine::Disconnect(Node* to, unsigned inplug) {
    Scope scope(mImpl->events);
    if (mImpl->graph.FindLinkTo(to, inplug) == nullptr)
        return;
    mImpl->history.Put(std::make_unique<LinkStateContainer>(this, to, inplug),
                       "Unlink " + mImpl->graph.PlugName(to, false, inplug));
    mImpl->graph.RemoveLinkTo(to, inplug);
    mImpl->events.QueueNodeEvent(to, NodeEvent::kInputsChanged, 0);
    MarkDirty(to);
}

std::vector<Engine::Link> Engine::GetLinks() const {
    Scope scope(mImpl->events);
    return mImpl->graph.GetLinks();
}

const Engine::Link* Engine::FindLinkTo(const Node* to, unsigned inplug) const {
    Scope scope(mImpl->events);
    return mImpl->graph.FindLinkTo(to, inplug);
}

bool Engine::SetAttributeValue(Node* node, unsigned attributeId, const NodeValue& value,
                               std::string* error) {
    Scope scope(mImpl->events);
    const GraphStore::Entry* entry = mImpl->graph.Find(node);
    if (entry == nullptr)
        return Fail(error, "cannot set an attribute of a node that is not in this engine", false);
    Attribute* attribute = node->GetAttribute(attributeId);
    if (attribute == nullptr)
        return Fail(error,
                    "node '" + entry->id + "' (" + node->GetTypeName() +
                        ") has no attribute with id " + std::to_string(attributeId),
                    false);
    if (const std::string problem = attribute->Validate(value); !problem.empty())
        return Fail(
            error,
            "attribute '" + attribute->GetName() + "' of node '" + entry->id + "' " + problem,
            false);
    const NodeValue normalized = attribute->Normalize(value);
    if (normalized == attribute->GetValue())
        return true;

    mImpl->history.Put(std::make_unique<AttributeStateContainer>(node, attributeId),
                       "Set " + attribute->GetName());
    attribute->SetValue(normalized);
    mImpl->events.QueueNodeEvent(node, NodeEvent::kInputsChanged, 0);
    MarkDirty(node);
    return true;
}

void Engine::MarkDirty(Node* node) {
    Dirty(node, true);
}

void Engine::MarkOutputChanged(Node* node) {
    // The node is being told already.
    Dirty(node, false);
}

void Engine::Dirty(Node* node, bool tellNode) {
    Scope scope(mImpl->events);
    GraphStore::Entry* entry = mImpl->graph.Find(node);
    if (entry == nullptr)
        return;
    for (GraphStore::Entry* affected : mImpl->graph.Downstream(entry)) {
        affected->dirty = true;
        if (tellNode || affected != entry)
            mImpl->events.QueueNodeEvent(affected->node.get(), NodeEvent::kOutputChanged, 0);
    }
}

bool Engine::IsDirty(const Node* node) const {
    Scope scope(mImpl->events);
    const GraphStore::Entry* entry = mImpl->graph.Find(node);
    return entry != nullptr && entry->dirty;
}

bool Engine::EvaluateNode(Node* node) {
    Scope scope(mImpl->events);
    GraphStore::Entry* entry = mImpl->graph.Find(node);
    return entry != nullptr && mImpl->evaluator.Evaluate(*entry, mRenderOptions.cancelled);
}

void Engine::EvaluateAll() {
    Scope scope(mImpl->events);
    for (Node* node : GetNodes())
        EvaluateNode(node);
}

NodeValue Engine::GetOutputValue(const Node* node, unsigned outplug) const {
    Scope scope(mImpl->events);
    const GraphStore::Entry* entry = mImpl->graph.Find(node);
    if (entry == nullptr || outplug >= entry->outputs.size())
        return NodeValue();
    return entry->outputs[outplug];
}

NodeValue Engine::EvaluateOutput(Node* node, unsigned outplug) {
    Scope scope(mImpl->events);
    EvaluateNode(node);
    return GetOutputValue(node, outplug);
}

void Engine::SetEvaluationObserver(std::function<void(Node* node, bool finished)> observer) {
    Scope scope(mImpl->events);
    mImpl->evaluator.SetObserver(std::move(observer));
}

unsigned long long Engine::GetEvaluationCount() const {
    Scope scope(mImpl->events);
    return mImpl->evaluator.GetCount();
}

void Engine::ReleaseOutputs(Node* node) {
    Scope scope(mImpl->events);
    GraphStore::Entry* entry = mImpl->graph.Find(node);
    if (entry == nullptr)
        return;
    entry->outputs.assign(entry->outputs.size(), NodeValue());
    // Type and code both 11: nodes look at either to recognise the release request.
    mImpl->events.QueueNodeEvent(node, NodeEvent::kReleaseOutputs, NodeEvent::kReleaseOutputs);
    MarkDirty(node);
}

void Engine::RegisterDelegateEventHandler(const Delegate2<unsigned int, unsigned int>& handler) {
    Scope scope(mImpl->events);
    mImpl->events.Register(handler);
}

void Engine::UnregisterDelegateEventHandler(const Delegate2<unsigned int, unsigned int>& handler) {
    Scope scope(mImpl->events);
    mImpl->events.Unregister(handler);
}

void Engine::SendEvent(unsigned int code, unsigned int parameter) {
    Scope scope(mImpl->events);
    mImpl->events.QueueEngineEvent(code, parameter);
}

void Engine::SendNodeEvent(Node* node, int type, int code) {
    Scope scope(mImpl->events);
    if (mImpl->graph.Find(node) != nullptr)
        mImpl->events.QueueNodeEvent(node, type, code);
}

const std::vector<std::string>& Engine::GetSceneModels() const {
    Scope scope(mImpl->events);
    return mImpl->sceneModels;
}

void Engine::SetSceneModels(std::vector<std::string> models) {
    Scope scope(mImpl->events);
    if (models == mImpl->sceneModels)
        return;
    mImpl->sceneModels = std::move(models);
    mImpl->events.QueueEngineEvent(kSceneModelsChanged, 0);
}

void Engine::StateRecorderBegin(Engine* engine, const void* owner, const std::string& label) {
    if (engine == nullptr)
        return;
    Scope scope(engine->mImpl->events);
    engine->mImpl->history.Begin(owner, label);
}

void Engine::StateRecorderPut(Engine* engine, StateContainer* container) {
    std::unique_ptr<StateContainer> owned(container);
    if (engine == nullptr)
        return;
    Scope scope(engine->mImpl->events);
    engine->mImpl->history.Put(std::move(owned), "Change");
}

void Engine::StateRecorderAccept(Engine* engine, const void* owner, const std::string& label) {
    if (engine == nullptr)
        return;
    Scope scope(engine->mImpl->events);
    engine->mImpl->history.Accept(owner, label);
}

bool Engine::CanUndo() const {
    Scope scope(mImpl->events);
    return mImpl->history.CanUndo();
}

bool Engine::CanRedo() const {
    Scope scope(mImpl->events);
    return mImpl->history.CanRedo();
}

std::string Engine::GetUndoLabel() const {
    Scope scope(mImpl->events);
    return mImpl->history.GetUndoLabel();
}

std::string Engine::GetRedoLabel() const {
    Scope scope(mImpl->events);
    return mImpl->history.GetRedoLabel();
}

bool Engine::Undo() {
    Scope scope(mImpl->events);
    return mImpl->history.Undo();
}

bool Engine::Redo() {
    Scope scope(mImpl->events);
    return mImpl->history.Redo();
}

void Engine::ClearUndoHistory() {
    Scope scope(mImpl->events);
    mImpl->history.Clear();
}

void Engine::SetRenderOptions(const RenderOptions& options) {
    Scope scope(mImpl->events);
    mRenderOptions = options;
}

EngineMutex& Engine::GetMutex() const {
    return mImpl->events.GetMutex();
}
