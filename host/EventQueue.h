#pragma once

#include <functional>
#include <mutex>
#include <vector>

#include "host/EngineMutex.h"
#include "host/HostTypes.h"
#include "host/NodeEvent.h"

class Node;

/// The engine's lock and the events its operations cause. Events wait until the thread's
/// outermost operation has released the lock and are then delivered on that thread, so that a
/// listener may block on another thread that is waiting for the engine.
class EventQueue {
public:
    using Handler = Delegate2<unsigned int, unsigned int>;

    /// `holds(node)` tells whether a node is still in the engine when its event is due.
    explicit EventQueue(std::function<bool(const Node*)> holds);
    EventQueue(const EventQueue&) = delete;
    EventQueue& operator=(const EventQueue&) = delete;

    /// Holds the lock for one operation; the outermost scope of a thread delivers on exit.
    class Scope {
    public:
        explicit Scope(EventQueue& queue);
        ~Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        EventQueue& mQueue;
    };

    EngineMutex& GetMutex() const { return mMutex; }

    void QueueNodeEvent(Node* node, int type, int code);
    void QueueEngineEvent(unsigned code, unsigned parameter);
    /// Drops the events waiting for `node` (it leaves the engine for now).
    void DropNodeEvents(const Node* node);
    /// Drops the events waiting for `node` and the handlers it registered (it is deleted).
    void ForgetNode(const Node* node);

    /// One handler per object: registering again replaces the earlier one.
    void Register(const Handler& handler);
    void Unregister(const Handler& handler);

private:
    /// A node event when `node` is set, an engine event otherwise.
    struct Pending {
        Node* node = nullptr;
        NodeEvent nodeEvent;
        unsigned code = 0;
        unsigned parameter = 0;
    };

    void Deliver(const Pending& event);
    bool IsRegistered(const Handler& handler) const;

    mutable EngineMutex mMutex;
    /// Nesting of scopes on the thread that holds the lock.
    int mDepth = 0;
    std::vector<Pending> mPending;
    std::vector<Handler> mHandlers;
    std::function<bool(const Node*)> mHolds;
};
