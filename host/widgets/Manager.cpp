#include "host/widgets/Manager.h"

#include <algorithm>
#include <vector>

#include <QPointer>
#include <QWidget>

#include "host/Engine.h"

struct Manager::Impl {
    Node* active = nullptr;
    Node* display = nullptr;
    QPointer<QWidget> mainWidget;
    std::vector<Delegate2<unsigned int, unsigned int>> handlers;
};

Manager* Manager::Get() {
    // Deliberately leaked: plug-ins may still reach the manager while the process ends.
    static Manager* manager = new Manager;
    return manager;
}

Manager::Manager() : mImpl(std::make_unique<Impl>()) {
    // A cleared engine holds none of the nodes the manager points at any more.
    Engine::Get()->RegisterDelegateEventHandler(
        Delegate2<unsigned int, unsigned int>(this, &Manager::OnEngineEvent));
}

Manager::~Manager() {
    Engine::Get()->UnregisterDelegateEventHandler(
        Delegate2<unsigned int, unsigned int>(this, &Manager::OnEngineEvent));
}

Engine* Manager::GetEngine() const {
    return Engine::Get();
}

Node* Manager::GetActiveNode() const {
    return mImpl->active;
}

void Manager::SetActiveNode(Node* node) {
    if (mImpl->active == node)
        return;
    mImpl->active = node;
    SendEvent(kActiveNodeChanged);
}

Node* Manager::GetDisplayNode() const {
    return mImpl->display;
}

void Manager::SetDisplayNode(Node* node) {
    if (mImpl->display == node)
        return;
    mImpl->display = node;
    SendEvent(kDisplayNodeChanged);
}

void Manager::ForgetNode(Node* node) {
    if (node == nullptr)
        return;
    if (mImpl->active == node)
        SetActiveNode(nullptr);
    if (mImpl->display == node)
        SetDisplayNode(nullptr);
}

QWidget* Manager::GetMainWidget() const {
    return mImpl->mainWidget.data();
}

void Manager::SetMainWidget(QWidget* widget) {
    mImpl->mainWidget = widget;
}

void Manager::RegisterDelegateEventHandler(const Delegate2<unsigned int, unsigned int>& handler) {
    auto& handlers = mImpl->handlers;
    const auto found = std::find(handlers.begin(), handlers.end(), handler);
    if (found != handlers.end())
        *found = handler;
    else
        handlers.push_back(handler);
}

void Manager::UnregisterDelegateEventHandler(const Delegate2<unsigned int, unsigned int>& handler) {
    auto& handlers = mImpl->handlers;
    handlers.erase(std::remove(handlers.begin(), handlers.end(), handler), handlers.end());
}

void Manager::SendEvent(unsigned int code, unsigned int parameter) {
    // A copy: handlers commonly unregister themselves (a dialog closing) while being told. One
    // that another handler unregistered meanwhile may belong to a deleted object: skip it.
    const auto handlers = mImpl->handlers;
    for (const auto& handler : handlers) {
        const auto& current = mImpl->handlers;
        if (std::find(current.begin(), current.end(), handler) != current.end())
            handler(code, parameter);
    }
}

void Manager::OnEngineEvent(unsigned int code, unsigned int) {
    if (code == Engine::kSceneReplaced) {
        SetActiveNode(nullptr);
        SetDisplayNode(nullptr);
    }
}
