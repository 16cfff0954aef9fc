#include "host/EventQueue.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "host/Log.h"
#include "host/Node.h"

EventQueue::EventQueue(std::function<bool(const Node*)> holds) : mHolds(std::move(holds)) {}

EventQueue::Scope::Scope(EventQueue& queue) : mQueue(queue) {
    mQueue.mMutex.lock();
    ++mQueue.mDepth;
}

EventQueue::Scope::~Scope() {
    if (--mQueue.mDepth > 0 || mQueue.mPending.empty()) {
        mQueue.mMutex.unlock();
        return;
    }
    std::vector<Pending> events = std::move(mQueue.mPending);
    mQueue.mPending.clear();
    mQueue.mMutex.unlock();
    for (const Pending& event : events)
        mQueue.Deliver(event);
}

void EventQueue::QueueNodeEvent(Node* node, int type, int code) {
    mPending.push_back({node, NodeEvent{type, code}, 0, 0});
}

void EventQueue::QueueEngineEvent(unsigned code, unsigned parameter) {
    mPending.push_back({nullptr, {}, code, parameter});
}

void EventQueue::DropNodeEvents(const Node* node) {
    std::erase_if(mPending, [node](const Pending& event) { return event.node == node; });
}

void EventQueue::ForgetNode(const Node* node) {
    DropNodeEvents(node);
    std::erase_if(mHandlers, [node](const Handler& handler) {
        return handler.GetObject() == static_cast<const void*>(node);
    });
}

void EventQueue::Register(const Handler& handler) {
    std::erase(mHandlers, handler);
    mHandlers.push_back(handler);
}

void EventQueue::Unregister(const Handler& handler) {
    std::erase(mHandlers, handler);
}

bool EventQueue::IsRegistered(const Handler& handler) const {
    std::lock_guard lock(mMutex);
    return std::find(mHandlers.begin(), mHandlers.end(), handler) != mHandlers.end();
}

void EventQueue::Deliver(const Pending& event) {
    try {
        if (event.node != nullptr) {
            {
                // A listener told earlier may have removed the node meanwhile.
                std::lock_guard lock(mMutex);
                if (!mHolds(event.node))
                    return;
            }
            event.node->DeliverEvent(event.nodeEvent);
            return;
        }
        std::vector<Handler> handlers;
        {
            std::lock_guard lock(mMutex);
            handlers = mHandlers;
        }
        for (const Handler& handler : handlers)
            if (IsRegistered(handler))
                handler(event.code, event.parameter);
    } catch (const std::exception& e) {
        Log::Warning("event handler failed: %s", e.what());
    } catch (...) {
        Log::Warning("event handler failed with an unknown error");
    }
}
