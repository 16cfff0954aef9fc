#include "host/Evaluator.h"

#include <exception>
#include <string>
#include <vector>

#include "host/Node.h"

bool Evaluator::Evaluate(GraphStore::Entry& target, const std::function<bool()>& cancelled) {
    if (!target.dirty)
        return target.node->GetState() != Node::kStateError;
    const std::vector<GraphStore::Entry*> order = mGraph.DirtyUpstreamOrder(&target);
    for (auto next = order.begin(); next != order.end(); ++next) {
        EvaluateOne(**next);
        if (cancelled && cancelled()) {
            // What this node made may be cut short. The nodes after it were never run, and
            // their old outputs may point into modules that the nodes before have just
            // replaced: none of them may be read.
            (*next)->node->ClearState();
            for (auto unfinished = next; unfinished != order.end(); ++unfinished) {
                (*unfinished)->dirty = true;
                (*unfinished)->outputs.assign((*unfinished)->outputs.size(), NodeValue());
            }
            return false;
        }
    }
    return target.node->GetState() != Node::kStateError;
}

void Evaluator::EvaluateOne(GraphStore::Entry& entry) {
    Node* node = entry.node.get();
    const std::vector<Node::Inplug>& inplugs = node->GetInplugs();
    std::vector<NodeValue> values(inplugs.size());
    for (const GraphLink& link : mGraph.GetLinks()) {
        if (link.to != node)
            continue;
        const GraphStore::Entry* upstream = mGraph.Find(link.from);
        if (link.outplug < upstream->outputs.size())
            values[link.inplug] = upstream->outputs[link.outplug];
    }
    for (const Node::Inplug& inplug : inplugs)
        if (inplug.attributeId >= 0 && mGraph.FindLinkTo(node, inplug.id) == nullptr)
            values[inplug.id] =
                node->GetAttribute(static_cast<unsigned>(inplug.attributeId))->GetValue();
    std::vector<NodeValue*> pointers;
    for (NodeValue& value : values)
        pointers.push_back(&value);

    // Clean before the call: a node that reports its output changed while it evaluates stays
    // dirty and is evaluated again next time.
    entry.dirty = false;
    node->ClearState();
    if (mObserver)
        mObserver(node, false);
    ++mCount;
    std::vector<NodeValue> outputs(node->GetOutplugs().size());
    // The host must survive any plug-in: whatever escapes becomes the node's error.
    try {
        node->Evaluate(0, pointers.data());
        for (std::size_t i = 0; i < outputs.size(); ++i) {
            const unsigned type = node->GetOutplugs()[i].plugType;
            const unsigned index = static_cast<unsigned>(i);
            if (type == Node::kTexturePlug)
                outputs[i] = NodeValue::AdoptTexture(node->GetOutputTexture(index));
            else if (type == Node::kImagePlug)
                outputs[i] = NodeValue::FromImage(node->GetOutputImage(index));
        }
    } catch (const std::exception& e) {
        const std::string message = e.what();
        node->SetState(0, Node::kStateError, message.empty() ? "unknown error" : message);
        outputs.assign(outputs.size(), NodeValue());
    } catch (...) {
        node->SetState(0, Node::kStateError, "unknown error");
        outputs.assign(outputs.size(), NodeValue());
    }
    entry.outputs = std::move(outputs);
    if (mObserver)
        mObserver(node, true);
}
