#pragma once

#include <functional>

#include "host/GraphStore.h"

class Node;

/// Pull evaluation of a graph: brings a node up to date by evaluating its dirty upstream
/// nodes in dependency order and then the node itself. An exception escaping a node's
/// Evaluate becomes that node's error state with the exception's message.
class Evaluator {
public:
    explicit Evaluator(GraphStore& graph) : mGraph(graph) {}

    /// Evaluates what `target` needs; false when the node ended in the error state. After
    /// each node, `cancelled` (when set) may stop the evaluation: that node (in no error state)
    /// and the ones not reached stay dirty with no outputs, and the result is false.
    bool Evaluate(GraphStore::Entry& target, const std::function<bool()>& cancelled = {});

    /// Called before and after each node's Evaluate; may be empty.
    void SetObserver(std::function<void(Node* node, bool finished)> observer) {
        mObserver = std::move(observer);
    }
    unsigned long long GetCount() const { return mCount; }

private:
    void EvaluateOne(GraphStore::Entry& entry);

    GraphStore& mGraph;
    std::function<void(Node*, bool)> mObserver;
    unsigned long long mCount = 0;
};
