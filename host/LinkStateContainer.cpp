#include "host/LinkStateContainer.h"

namespace {

std::optional<Engine::Link> linkInto(const Engine& engine, const Node* to, unsigned inplug) {
    const Engine::Link* link = engine.FindLinkTo(to, inplug);
    return link != nullptr ? std::optional<Engine::Link>(*link) : std::nullopt;
}

}  // namespace

LinkStateContainer::LinkStateContainer(Engine* engine, Node* to, unsigned inplug)
    : mEngine(engine), mTo(to), mInplug(inplug), mSaved(linkInto(*engine, to, inplug)) {}

void LinkStateContainer::Swap() {
    std::optional<Engine::Link> live = linkInto(*mEngine, mTo, mInplug);
    // Restoring a state the graph was in before cannot close a cycle or mismatch types.
    if (mSaved)
        mEngine->Connect(mSaved->from, mSaved->outplug, mTo, mInplug);
    else
        mEngine->Disconnect(mTo, mInplug);
    mSaved = live;
}
