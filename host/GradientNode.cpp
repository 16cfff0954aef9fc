#include "host/GradientNode.h"

#include <mutex>
#include <stdexcept>
#include <utility>

#include "host/Engine.h"
#include "host/Node.h"

namespace {

// The engine evaluates on other threads while a page edits the gradient: the write takes the
// engine's lock, and the notifications go out after it is released.
void notifyGradientChanged(Node* node) {
    if (Engine* engine = node->GetEngine()) {
        engine->MarkDirty(node);
        engine->SendNodeEvent(node, NodeEvent::kParameterChanged, NodeEvent::kGradientChangedCode);
    } else {
        node->ProcessEvent(NodeEvent::kParameterChanged, NodeEvent::kGradientChangedCode);
    }
}

std::unique_lock<EngineMutex> lockEngineOf(Node* node) {
    Engine* engine = node->GetEngine();
    return engine != nullptr ? std::unique_lock<EngineMutex>(engine->GetMutex())
                             : std::unique_lock<EngineMutex>();
}

}  // namespace

GradientNode::GradientNode() : mGradient(DefaultGradient()) {}

void GradientNode::SetGradient(Node* node, const VertexGradient& gradient) {
    GradientNode* gradientNode = node != nullptr ? node->GetGradientNode() : nullptr;
    if (gradientNode == nullptr)
        throw std::invalid_argument("SetGradient: node " +
                                    (node != nullptr ? "'" + node->GetTypeName() + "'" : "null") +
                                    " has no gradient");
    {
        const auto lock = lockEngineOf(node);
        gradientNode->mGradient = gradient;
    }
    notifyGradientChanged(node);
}

VertexGradient GradientNode::DefaultGradient() {
    VertexGradient gradient;
    gradient.interpolation = VertexGradient::kLinear;
    gradient.vertices = {{0.0, Rgbo{0.0, 0.0, 0.0, 1.0}}, {1.0, Rgbo{1.0, 1.0, 1.0, 1.0}}};
    return gradient;
}

GradientNode::GradientStateContainer::GradientStateContainer(Node* node, GradientNode* gradientNode)
    : mNode(node), mGradientNode(gradientNode), mSaved(gradientNode->GetGradient()) {}

void GradientNode::GradientStateContainer::Swap() {
    {
        const auto lock = lockEngineOf(mNode);
        std::swap(mSaved, mGradientNode->mGradient);
    }
    notifyGradientChanged(mNode);
}
