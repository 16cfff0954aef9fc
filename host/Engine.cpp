#include "host/Engine.h"

#include <algorithm>
#include <exception>
#include <map>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "host/AttributeStateContainer.h"
#include "host/LinkStateContainer.h"
#include "host/Log.h"
#include "host/NodeStateContainer.h"
#include "host/UndoHistory.h"

namespace {

/// What a node and the engine know about each other.
struct Entry {
    std::unique_ptr<Node> node;
    std::string id;
    bool dirty = true;
    std::vector<NodeValue> outputs;
};

/// An event waiting for the engine's lock to be released: a node event when `node` is set,
/// an engine event otherwise.
struct PendingEvent {
    Node* node = nullptr;
    NodeEvent nodeEvent;
    unsigned code = 0;
    unsigned parameter = 0;
};

}  // namespace

struct Engine::Impl {
    mutable std::recursive_mutex mutex;
    /// Nesting of Scope objects on the thread that holds the lock.
    int depth = 0;
    std::vector<PendingEvent> pending;

    std::vector<std::unique_ptr<Entry>> entries;
    std::unordered_map<const Node*, Entry*> byNode;
    std::map<std::string, Entry*> byId;
    std::vector<Link> links;

    std::vector<Delegate2<unsigned int, unsigned int>> handlers;
    std::vector<std::string> sceneModels;
    UndoHistory history;
    std::function<void(Node*, bool)> observer;
    unsigned long long evaluationCount = 0;

    Entry* find(const Node* node) const {
        const auto it = byNode.find(node);
        return it != byNode.end() ? it->second : nullptr;
    }

    std::string plugName(const Node* node, bool outplug, unsigned plug) const {
        const Entry* entry = find(node);
        std::string text = "'" + (entry != nullptr ? entry->id : std::string("?")) + ".";
        if (outplug && plug < node->GetOutplugs().size())
            text += node->GetOutplugs()[plug].name;
        else if (!outplug && plug < node->GetInplugs().size())
            text += node->GetInplugs()[plug].name;
        else
            text += std::to_string(plug);
        return text + "'";
    }

    std::vector<Entry*> downstreamOf(Entry* start) const {
        std::vector<Entry*> found{start};
        std::unordered_set<Entry*> seen{start};
        for (std::size_t i = 0; i < found.size(); ++i)
            for (const Link& link : links)
                if (link.from == found[i]->node.get()) {
                    Entry* next = find(link.to);
                    if (seen.insert(next).second)
                        found.push_back(next);
                }
        return found;
    }

    /// The ids along a chain of links from `start` down to `target`, empty when there is none.
    std::vector<std::string> pathDown(const Node* start, const Node* target) const {
        std::unordered_map<const Node*, const Node*> cameFrom{{start, nullptr}};
        std::vector<const Node*> queue{start};
        for (std::size_t i = 0; i < queue.size(); ++i) {
            if (queue[i] == target) {
                std::vector<std::string> path;
                for (const Node* n = target; n != nullptr; n = cameFrom[n])
                    path.push_back(find(n)->id);
                std::reverse(path.begin(), path.end());
                return path;
            }
            for (const Link& link : links)
                if (link.from == queue[i] && cameFrom.emplace(link.to, queue[i]).second)
                    queue.push_back(link.to);
        }
        return {};
    }

    /// The dirty nodes `entry` depends on, and `entry` itself, upstream first. A clean node has
    /// only clean nodes upstream (dirtiness spreads downstream), so the walk stops at them.
    std::vector<Entry*> dirtyUpstreamOrder(Entry* target) const {
        std::vector<Entry*> order;
        std::unordered_set<Entry*> entered;
        // Iterative depth-first walk (a long chain must not exhaust the stack). A node is
        // entered when it is expanded, not when it is pushed: a node pushed early may be
        // needed by one expanded later, and must then come out before it.
        std::vector<std::pair<Entry*, bool>> stack{{target, false}};
        while (!stack.empty()) {
            auto [entry, expanded] = stack.back();
            stack.pop_back();
            if (expanded) {
                order.push_back(entry);
                continue;
            }
            if (!entered.insert(entry).second)
                continue;
            stack.emplace_back(entry, true);
            for (const Link& link : links) {
                if (link.to != entry->node.get())
                    continue;
                Entry* upstream = find(link.from);
                if (upstream->dirty && entered.count(upstream) == 0)
                    stack.emplace_back(upstream, false);
            }
        }
        return order;
    }

    void queueNodeEvent(Node* node, int type, int code) {
        pending.push_back({node, NodeEvent{type, code}, 0, 0});
    }
    void queueEngineEvent(unsigned code, unsigned parameter) {
        pending.push_back({nullptr, {}, code, parameter});
    }
    void forgetNode(const Node* node) {
        std::erase_if(pending, [node](const PendingEvent& e) { return e.node == node; });
        std::erase_if(handlers, [node](const Delegate2<unsigned int, unsigned int>& h) {
            return h.GetObject() == static_cast<const void*>(node);
        });
    }
};

/// Holds the engine's lock for one operation. When the outermost operation of the thread
/// ends, the lock is released first and the events it caused are delivered after, so that a
/// listener may block on a thread that is waiting for the engine.
class Engine::Scope {
public:
    explicit Scope(const Engine& engine) : mImpl(*engine.mImpl) {
        mImpl.mutex.lock();
        ++mImpl.depth;
    }
    ~Scope() {
        if (--mImpl.depth > 0 || mImpl.pending.empty()) {
            mImpl.mutex.unlock();
            return;
        }
        std::vector<PendingEvent> events = std::move(mImpl.pending);
        mImpl.pending.clear();
        mImpl.mutex.unlock();
        for (const PendingEvent& event : events)
            Deliver(event);
    }
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

private:
    void Deliver(const PendingEvent& event) const {
        try {
            if (event.node != nullptr) {
                {
                    // A listener told earlier may have removed the node meanwhile.
                    std::lock_guard lock(mImpl.mutex);
                    if (mImpl.find(event.node) == nullptr)
                        return;
                }
                event.node->DeliverEvent(event.nodeEvent);
                return;
            }
            std::vector<Delegate2<unsigned int, unsigned int>> handlers;
            {
                std::lock_guard lock(mImpl.mutex);
                handlers = mImpl.handlers;
            }
            for (const auto& handler : handlers) {
                {
                    std::lock_guard lock(mImpl.mutex);
                    if (std::find(mImpl.handlers.begin(), mImpl.handlers.end(), handler) ==
                        mImpl.handlers.end())
                        continue;
                }
                handler(event.code, event.parameter);
            }
        } catch (const std::exception& e) {
            Log::Warning("event handler failed: %s", e.what());
        } catch (...) {
            Log::Warning("event handler failed with an unknown error");
        }
    }

    Impl& mImpl;
};

Engine::Engine() : mImpl(std::make_unique<Impl>()) {}

Engine::~Engine() {
    // Nodes kept by the undo history for a deleted node go first, while the engine is whole.
    mImpl->history.Clear();
    // Nodes go first, while the engine is whole: their destructors may unregister handlers.
    while (!mImpl->entries.empty()) {
        std::unique_ptr<Entry> entry = std::move(mImpl->entries.back());
        mImpl->entries.pop_back();
        mImpl->byNode.erase(entry->node.get());
        entry->outputs.clear();
        entry->node.reset();
    }
}

Engine* Engine::Get() {
    // Never destroyed: plug-in nodes may live in it until the process ends, after their
    // library's code is gone, so running their destructors at exit would be unsafe.
    static Engine* const engine = new Engine();
    return engine;
}

Node* Engine::AddNode(std::unique_ptr<Node> node, const std::string& id, std::string* error) {
    Scope scope(*this);
    auto fail = [error](const std::string& message) -> Node* {
        if (error != nullptr)
            *error = message;
        return nullptr;
    };
    if (node == nullptr)
        return fail("no node to add as '" + id + "'");
    if (id.empty())
        return fail("a node id must not be empty");
    if (mImpl->byId.count(id) != 0)
        return fail("node id '" + id + "' is already taken");
    if (node->mEngine != nullptr)
        return fail("node '" + id + "' belongs to another engine");
    if (node->mInplugs.size() != node->mAttributes.size() + node->mRegularInputs.size())
        return fail("node '" + id + "' (" + node->GetTypeName() +
                    ") did not declare its plugs (UpdateInplugsAndOutplugs)");

    auto entry = std::make_unique<Entry>();
    entry->id = id;
    entry->outputs.resize(node->GetOutplugs().size());
    entry->node = std::move(node);
    Node* added = entry->node.get();
    added->mEngine = this;
    mImpl->byNode[added] = entry.get();
    mImpl->byId[id] = entry.get();
    mImpl->entries.push_back(std::move(entry));
    return added;
}

void Engine::RemoveNode(Node* node) {
    Scope scope(*this);
    Entry* entry = mImpl->find(node);
    if (entry == nullptr)
        return;
    std::vector<Node*> orphaned;
    std::erase_if(mImpl->links, [&](const Link& link) {
        if (link.from == node && link.to != node)
            orphaned.push_back(link.to);
        return link.from == node || link.to == node;
    });
    for (Node* downstream : orphaned) {
        mImpl->queueNodeEvent(downstream, NodeEvent::kInputsChanged, 0);
        MarkDirty(downstream);
    }
    mImpl->history.Clear();
    mImpl->forgetNode(node);
    mImpl->byNode.erase(node);
    mImpl->byId.erase(entry->id);
    const auto it = std::find_if(mImpl->entries.begin(), mImpl->entries.end(),
                                 [entry](const auto& e) { return e.get() == entry; });
    std::unique_ptr<Entry> removed = std::move(*it);
    mImpl->entries.erase(it);
    removed->outputs.clear();
    removed->node->mEngine = nullptr;
    removed->node.reset();
}

void Engine::DeleteNode(Node* node, const std::string& label) {
    Scope scope(*this);
    if (mImpl->find(node) == nullptr)
        return;
    mImpl->history.Put(std::make_unique<NodeStateContainer>(this, node), label);
}

Engine::DetachedNode Engine::DetachNode(Node* node) {
    Scope scope(*this);
    Entry* entry = mImpl->find(node);
    DetachedNode detached;
    if (entry == nullptr)
        return detached;
    std::vector<Node*> orphaned;
    std::erase_if(mImpl->links, [&](const Link& link) {
        if (link.from != node && link.to != node)
            return false;
        detached.links.push_back(link);
        if (link.to != node)
            orphaned.push_back(link.to);
        return true;
    });
    for (Node* downstream : orphaned) {
        mImpl->queueNodeEvent(downstream, NodeEvent::kInputsChanged, 0);
        MarkDirty(downstream);
    }
    // Its handlers stay: the node is alive and comes back on undo.
    std::erase_if(mImpl->pending, [node](const PendingEvent& e) { return e.node == node; });
    mImpl->byNode.erase(node);
    mImpl->byId.erase(entry->id);
    const auto it = std::find_if(mImpl->entries.begin(), mImpl->entries.end(),
                                 [entry](const auto& e) { return e.get() == entry; });
    detached.position = static_cast<std::size_t>(it - mImpl->entries.begin());
    std::unique_ptr<Entry> removed = std::move(*it);
    mImpl->entries.erase(it);
    removed->outputs.clear();
    removed->node->mEngine = nullptr;
    detached.node = std::move(removed->node);
    detached.id = removed->id;
    return detached;
}

Node* Engine::AttachNode(DetachedNode detached) {
    Scope scope(*this);
    if (detached.node == nullptr)
        return nullptr;
    std::string id = detached.id;
    for (int suffix = 2; mImpl->byId.count(id) != 0; ++suffix)
        id = detached.id + "-" + std::to_string(suffix);
    auto entry = std::make_unique<Entry>();
    entry->id = id;
    entry->outputs.resize(detached.node->GetOutplugs().size());
    entry->node = std::move(detached.node);
    Node* node = entry->node.get();
    node->mEngine = this;
    mImpl->byNode[node] = entry.get();
    mImpl->byId[id] = entry.get();
    const std::size_t position = std::min(detached.position, mImpl->entries.size());
    mImpl->entries.insert(mImpl->entries.begin() + static_cast<std::ptrdiff_t>(position),
                          std::move(entry));
    for (const Link& link : detached.links) {
        if (mImpl->find(link.from) == nullptr || mImpl->find(link.to) == nullptr)
            continue;
        std::erase_if(mImpl->links, [&](const Link& other) {
            return other.to == link.to && other.inplug == link.inplug;
        });
        mImpl->links.push_back(link);
        mImpl->queueNodeEvent(link.to, NodeEvent::kInputsChanged, 0);
        MarkDirty(link.to);
    }
    MarkDirty(node);
    return node;
}

void Engine::ForgetNodeHandlers(const Node* node) {
    Scope scope(*this);
    mImpl->forgetNode(node);
}

void Engine::Clear() {
    Scope scope(*this);
    mImpl->links.clear();
    while (!mImpl->entries.empty()) {
        std::unique_ptr<Entry> entry = std::move(mImpl->entries.back());
        mImpl->entries.pop_back();
        mImpl->forgetNode(entry->node.get());
        mImpl->byNode.erase(entry->node.get());
        entry->outputs.clear();
        entry->node->mEngine = nullptr;
        entry->node.reset();
    }
    mImpl->byId.clear();
    mImpl->sceneModels.clear();
    mImpl->history.Clear();
    mImpl->queueEngineEvent(kSceneReplaced, 0);
}

Node* Engine::FindNode(const std::string& id) const {
    Scope scope(*this);
    const auto it = mImpl->byId.find(id);
    return it != mImpl->byId.end() ? it->second->node.get() : nullptr;
}

std::string Engine::GetNodeId(const Node* node) const {
    Scope scope(*this);
    const Entry* entry = mImpl->find(node);
    return entry != nullptr ? entry->id : std::string();
}

std::vector<Node*> Engine::GetNodes() const {
    Scope scope(*this);
    std::vector<Node*> nodes;
    for (const auto& entry : mImpl->entries)
        nodes.push_back(entry->node.get());
    return nodes;
}

bool Engine::Connect(Node* from, unsigned outplug, Node* to, unsigned inplug, std::string* error) {
    Scope scope(*this);
    auto fail = [error](const std::string& message) {
        if (error != nullptr)
            *error = message;
        return false;
    };
    const Entry* fromEntry = mImpl->find(from);
    const Entry* toEntry = mImpl->find(to);
    if (fromEntry == nullptr || toEntry == nullptr)
        return fail("cannot link nodes that are not in this engine");
    if (outplug >= from->GetOutplugs().size())
        return fail("node '" + fromEntry->id + "' (" + from->GetTypeName() + ") has no outplug " +
                    std::to_string(outplug));
    if (inplug >= to->GetInplugs().size())
        return fail("node '" + toEntry->id + "' (" + to->GetTypeName() + ") has no inplug " +
                    std::to_string(inplug));
    const std::string fromName = mImpl->plugName(from, true, outplug);
    const std::string toName = mImpl->plugName(to, false, inplug);
    const unsigned fromType = from->GetOutplugs()[outplug].plugType;
    const unsigned toType = to->GetInplugs()[inplug].plugType;
    if (fromType != toType)
        return fail("cannot link " + fromName + " to " + toName + ": " + fromName + " gives " +
                    NodeValue::GetTypeName(fromType) + " values (type " + std::to_string(fromType) +
                    ") but " + toName + " takes " + NodeValue::GetTypeName(toType) +
                    " values (type " + std::to_string(toType) + ")");
    if (from == to)
        return fail("cannot link " + fromName + " to " + toName + ": a node cannot feed itself");
    const std::vector<std::string> path = mImpl->pathDown(to, from);
    if (!path.empty()) {
        std::string cycle;
        for (const std::string& id : path)
            cycle += id + " -> ";
        return fail("cannot link " + fromName + " to " + toName + ": it would make a cycle (" +
                    cycle + toEntry->id + ")");
    }

    const Link* existing = FindLinkTo(to, inplug);
    if (existing != nullptr && existing->from == from && existing->outplug == outplug)
        return true;
    mImpl->history.Put(std::make_unique<LinkStateContainer>(this, to, inplug),
                       "Link " + fromName + " to " + toName);
    std::erase_if(mImpl->links,
                  [&](const Link& link) { return link.to == to && link.inplug == inplug; });
    mImpl->links.push_back({from, outplug, to, inplug});
    mImpl->queueNodeEvent(to, NodeEvent::kInputsChanged, 0);
    MarkDirty(to);
    return true;
}

void Engine::Disconnect(Node* to, unsigned inplug) {
    Scope scope(*this);
    if (FindLinkTo(to, inplug) == nullptr)
        return;
    mImpl->history.Put(std::make_unique<LinkStateContainer>(this, to, inplug),
                       "Unlink " + mImpl->plugName(to, false, inplug));
    std::erase_if(mImpl->links,
                  [&](const Link& link) { return link.to == to && link.inplug == inplug; });
    mImpl->queueNodeEvent(to, NodeEvent::kInputsChanged, 0);
    MarkDirty(to);
}

std::vector<Engine::Link> Engine::GetLinks() const {
    Scope scope(*this);
    return mImpl->links;
}

const Engine::Link* Engine::FindLinkTo(const Node* to, unsigned inplug) const {
    Scope scope(*this);
    for (const Link& link : mImpl->links)
        if (link.to == to && link.inplug == inplug)
            return &link;
    return nullptr;
}

bool Engine::SetAttributeValue(Node* node, unsigned attributeId, const NodeValue& value,
                               std::string* error) {
    Scope scope(*this);
    auto fail = [error](const std::string& message) {
        if (error != nullptr)
            *error = message;
        return false;
    };
    const Entry* entry = mImpl->find(node);
    if (entry == nullptr)
        return fail("cannot set an attribute of a node that is not in this engine");
    Attribute* attribute = node->GetAttribute(attributeId);
    if (attribute == nullptr)
        return fail("node '" + entry->id + "' (" + node->GetTypeName() +
                    ") has no attribute with id " + std::to_string(attributeId));
    const std::string problem = attribute->Validate(value);
    if (!problem.empty())
        return fail("attribute '" + attribute->GetName() + "' of node '" + entry->id + "' " +
                    problem);
    const NodeValue normalized = attribute->Normalize(value);
    if (normalized == attribute->GetValue())
        return true;

    mImpl->history.Put(std::make_unique<AttributeStateContainer>(node, attributeId),
                       "Set " + attribute->GetName());
    attribute->SetValue(normalized);
    mImpl->queueNodeEvent(node, NodeEvent::kInputsChanged, 0);
    MarkDirty(node);
    return true;
}

void Engine::MarkDirty(Node* node) {
    Scope scope(*this);
    Entry* entry = mImpl->find(node);
    if (entry == nullptr)
        return;
    for (Entry* affected : mImpl->downstreamOf(entry)) {
        affected->dirty = true;
        mImpl->queueNodeEvent(affected->node.get(), NodeEvent::kOutputChanged, 0);
    }
}

void Engine::MarkOutputChanged(Node* node) {
    Scope scope(*this);
    Entry* entry = mImpl->find(node);
    if (entry == nullptr)
        return;
    for (Entry* affected : mImpl->downstreamOf(entry)) {
        affected->dirty = true;
        if (affected != entry)
            mImpl->queueNodeEvent(affected->node.get(), NodeEvent::kOutputChanged, 0);
    }
}

bool Engine::IsDirty(const Node* node) const {
    Scope scope(*this);
    const Entry* entry = mImpl->find(node);
    return entry != nullptr && entry->dirty;
}

bool Engine::EvaluateNode(Node* node) {
    Scope scope(*this);
    Entry* target = mImpl->find(node);
    if (target == nullptr)
        return false;
    if (!target->dirty)
        return node->GetState() != Node::kStateError;

    for (Entry* entry : mImpl->dirtyUpstreamOrder(target)) {
        Node* current = entry->node.get();
        const std::vector<Node::Inplug>& inplugs = current->GetInplugs();
        std::vector<NodeValue> values(inplugs.size());
        for (const Link& link : mImpl->links) {
            if (link.to != current)
                continue;
            const Entry* upstream = mImpl->find(link.from);
            if (link.outplug < upstream->outputs.size())
                values[link.inplug] = upstream->outputs[link.outplug];
        }
        for (const Node::Inplug& inplug : inplugs)
            if (inplug.attributeId >= 0 && FindLinkTo(current, inplug.id) == nullptr)
                values[inplug.id] =
                    current->GetAttribute(static_cast<unsigned>(inplug.attributeId))->GetValue();
        std::vector<NodeValue*> pointers;
        for (NodeValue& value : values)
            pointers.push_back(&value);

        // Clean before the call: a node that reports its output changed while it evaluates
        // stays dirty and is evaluated again next time.
        entry->dirty = false;
        current->ClearState();
        if (mImpl->observer)
            mImpl->observer(current, false);
        ++mImpl->evaluationCount;
        std::vector<NodeValue> outputs(current->GetOutplugs().size());
        // The host must survive any plug-in: whatever escapes becomes the node's error.
        try {
            current->Evaluate(0, pointers.data());
            for (std::size_t i = 0; i < outputs.size(); ++i) {
                const unsigned type = current->GetOutplugs()[i].plugType;
                const unsigned index = static_cast<unsigned>(i);
                if (type == Node::kTexturePlug)
                    outputs[i] = NodeValue::AdoptTexture(current->GetOutputTexture(index));
                else if (type == Node::kImagePlug)
                    outputs[i] = NodeValue::FromImage(current->GetOutputImage(index));
            }
        } catch (const std::exception& e) {
            const std::string message = e.what();
            current->SetState(0, Node::kStateError, message.empty() ? "unknown error" : message);
            outputs.assign(outputs.size(), NodeValue());
        } catch (...) {
            current->SetState(0, Node::kStateError, "unknown error");
            outputs.assign(outputs.size(), NodeValue());
        }
        entry->outputs = std::move(outputs);
        if (mImpl->observer)
            mImpl->observer(current, true);
    }
    return node->GetState() != Node::kStateError;
}

void Engine::EvaluateAll() {
    Scope scope(*this);
    for (Node* node : GetNodes())
        EvaluateNode(node);
}

NodeValue Engine::GetOutputValue(const Node* node, unsigned outplug) const {
    Scope scope(*this);
    const Entry* entry = mImpl->find(node);
    if (entry == nullptr || outplug >= entry->outputs.size())
        return NodeValue();
    return entry->outputs[outplug];
}

void Engine::SetEvaluationObserver(std::function<void(Node* node, bool finished)> observer) {
    Scope scope(*this);
    mImpl->observer = std::move(observer);
}

unsigned long long Engine::GetEvaluationCount() const {
    Scope scope(*this);
    return mImpl->evaluationCount;
}

void Engine::ReleaseOutputs(Node* node) {
    Scope scope(*this);
    Entry* entry = mImpl->find(node);
    if (entry == nullptr)
        return;
    entry->outputs.assign(entry->outputs.size(), NodeValue());
    // Type and code both 11: nodes look at either to recognise the release request.
    mImpl->queueNodeEvent(node, NodeEvent::kReleaseOutputs, NodeEvent::kReleaseOutputs);
    MarkDirty(node);
}

void Engine::RegisterDelegateEventHandler(const Delegate2<unsigned int, unsigned int>& handler) {
    Scope scope(*this);
    // One handler per object: registering again replaces the earlier one.
    std::erase(mImpl->handlers, handler);
    mImpl->handlers.push_back(handler);
}

void Engine::UnregisterDelegateEventHandler(const Delegate2<unsigned int, unsigned int>& handler) {
    Scope scope(*this);
    std::erase(mImpl->handlers, handler);
}

void Engine::SendEvent(unsigned int code, unsigned int parameter) {
    Scope scope(*this);
    mImpl->queueEngineEvent(code, parameter);
}

void Engine::SendNodeEvent(Node* node, int type, int code) {
    Scope scope(*this);
    if (mImpl->find(node) != nullptr)
        mImpl->queueNodeEvent(node, type, code);
}

const std::vector<std::string>& Engine::GetSceneModels() const {
    Scope scope(*this);
    return mImpl->sceneModels;
}

void Engine::SetSceneModels(std::vector<std::string> models) {
    Scope scope(*this);
    if (models == mImpl->sceneModels)
        return;
    mImpl->sceneModels = std::move(models);
    mImpl->queueEngineEvent(kSceneModelsChanged, 0);
}

void Engine::StateRecorderBegin(Engine* engine, const void* owner, const std::string& label) {
    if (engine == nullptr)
        return;
    Scope scope(*engine);
    engine->mImpl->history.Begin(owner, label);
}

void Engine::StateRecorderPut(Engine* engine, StateContainer* container) {
    std::unique_ptr<StateContainer> owned(container);
    if (engine == nullptr)
        return;
    Scope scope(*engine);
    engine->mImpl->history.Put(std::move(owned), "Change");
}

void Engine::StateRecorderAccept(Engine* engine, const void* owner, const std::string& label) {
    if (engine == nullptr)
        return;
    Scope scope(*engine);
    engine->mImpl->history.Accept(owner, label);
}

bool Engine::CanUndo() const {
    Scope scope(*this);
    return mImpl->history.CanUndo();
}

bool Engine::CanRedo() const {
    Scope scope(*this);
    return mImpl->history.CanRedo();
}

std::string Engine::GetUndoLabel() const {
    Scope scope(*this);
    return mImpl->history.GetUndoLabel();
}

std::string Engine::GetRedoLabel() const {
    Scope scope(*this);
    return mImpl->history.GetRedoLabel();
}

bool Engine::Undo() {
    Scope scope(*this);
    return mImpl->history.Undo();
}

bool Engine::Redo() {
    Scope scope(*this);
    return mImpl->history.Redo();
}

void Engine::ClearUndoHistory() {
    Scope scope(*this);
    mImpl->history.Clear();
}

std::recursive_mutex& Engine::GetMutex() const {
    return mImpl->mutex;
}
