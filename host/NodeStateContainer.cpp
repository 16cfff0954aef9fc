#include "host/NodeStateContainer.h"

#include "host/Node.h"

NodeStateContainer::NodeStateContainer(Engine* engine, Node* node)
    : mEngine(engine), mNode(node), mDetached(engine->DetachNode(node)) {}

NodeStateContainer::~NodeStateContainer() {
    if (mDetached.node == nullptr)
        return;
    // Handlers the node forgot to unregister must not outlive it.
    mEngine->ForgetNodeHandlers(mNode);
    mDetached.node.reset();
}

void NodeStateContainer::Swap() {
    if (mDetached.node != nullptr)
        mNode = mEngine->AttachNode(std::move(mDetached));
    else
        mDetached = mEngine->DetachNode(mNode);
}
