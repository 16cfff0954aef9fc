#include "apps/texture-studio/GraphEditor.h"

#include "apps/texture-studio/GraphScene.h"
#include "apps/texture-studio/LinkItem.h"
#include "apps/texture-studio/NodeItem.h"
#include "host/Engine.h"
#include "host/PluginLoader.h"
#include "host/widgets/Manager.h"

GraphEditor::GraphEditor(const PluginLoader& catalogue, GraphScene* scene, QObject* parent)
    : QObject(parent),
      mCatalogue(catalogue),
      mScene(scene),
      mEngine(Engine::Get()),
      mManager(Manager::Get()) {
    connect(mScene, &QGraphicsScene::selectionChanged, this, &GraphEditor::OnSelectionChanged);
    connect(mScene, &GraphScene::connectRequested, this,
            [this](Node* from, unsigned outplug, Node* to, unsigned inplug) {
                QString error;
                if (!ConnectPlugs(from, outplug, to, inplug, &error))
                    emit report(error);
            });
    connect(mScene, &GraphScene::disconnectRequested, this, &GraphEditor::Disconnect);
    connect(mScene, &GraphScene::nodeDoubleClicked, this,
            [this](Node* node) { mManager->SetDisplayNode(node); });
}

Node* GraphEditor::CreateNode(const QString& typeName, const QPointF& position) {
    std::string error;
    std::unique_ptr<Node> created = mCatalogue.CreateNode(typeName.toStdString(), &error);
    if (created == nullptr) {
        emit report(QString::fromStdString(error));
        return nullptr;
    }
    Node* node = mEngine->AddNode(std::move(created), UniqueId(typeName).toStdString(), &error);
    if (node == nullptr) {
        emit report(QString::fromStdString(error));
        return nullptr;
    }
    node->AddNodeListener(this);
    mScene->AddNodeItem(node, position);
    return node;
}

Node* GraphEditor::AddNode(const QString& typeName, const QPointF& position) {
    Node* node = CreateNode(typeName, position);
    if (node == nullptr)
        return nullptr;
    mEngine->RecordAddition(node, "Add " + typeName.toStdString());
    mManager->SetActiveNode(node);
    emit edited();
    emit graphChanged();
    return node;
}

GraphEditor::Clipboard GraphEditor::CopyOfSelection() const {
    Clipboard copy;
    std::map<const Node*, std::size_t> index;
    for (QGraphicsItem* item : mScene->selectedItems()) {
        const auto* nodeItem = dynamic_cast<NodeItem*>(item);
        if (nodeItem == nullptr)
            continue;
        const Node* node = nodeItem->GetNode();
        Clipboard::CopiedNode copied{
            QString::fromStdString(node->GetTypeName()), nodeItem->pos(), {}};
        for (const auto& attribute : node->GetAttributes())
            copied.attributes.emplace_back(attribute->GetId(), attribute->GetValue());
        index[node] = copy.nodes.size();
        copy.nodes.push_back(std::move(copied));
    }
    for (const auto& link : mEngine->GetLinks()) {
        const auto from = index.find(link.from);
        const auto to = index.find(link.to);
        if (from != index.end() && to != index.end())
            copy.links.push_back({from->second, link.outplug, to->second, link.inplug});
    }
    return copy;
}

void GraphEditor::CopySelected() {
    Clipboard copy = CopyOfSelection();
    if (copy.nodes.empty())
        return;
    mClipboard = std::move(copy);
    mPasteCount = 0;
    emit report(tr("Copied %n node(s)", nullptr, static_cast<int>(mClipboard.nodes.size())));
}

void GraphEditor::Paste() {
    if (mClipboard.nodes.empty())
        return;
    ++mPasteCount;
    PasteCopy(mClipboard, QPointF(40, 40) * mPasteCount, tr("Paste"));
}

void GraphEditor::DuplicateSelected() {
    const Clipboard copy = CopyOfSelection();
    if (!copy.nodes.empty())
        PasteCopy(copy, QPointF(40, 40), tr("Duplicate"));
}

void GraphEditor::PasteCopy(const Clipboard& copy, const QPointF& offset, const QString& label) {
    const std::string step = label.toStdString();
    Engine::StateRecorderBegin(mEngine, this, step);
    std::vector<Node*> pasted;
    for (const Clipboard::CopiedNode& copied : copy.nodes) {
        Node* node = CreateNode(copied.typeName, copied.position + offset);
        pasted.push_back(node);
        if (node == nullptr)
            continue;
        mEngine->RecordAddition(node, step);
        for (const auto& [id, value] : copied.attributes) {
            std::string error;
            if (!mEngine->SetAttributeValue(node, id, value, &error))
                emit report(QString::fromStdString(error));
        }
    }
    for (const Clipboard::CopiedLink& link : copy.links)
        if (pasted[link.from] != nullptr && pasted[link.to] != nullptr)
            mEngine->Connect(pasted[link.from], link.outplug, pasted[link.to], link.inplug);
    Engine::StateRecorderAccept(mEngine, this, step);

    mSyncingSelection = true;
    mScene->clearSelection();
    for (Node* node : pasted)
        if (NodeItem* item = node != nullptr ? mScene->ItemFor(node) : nullptr)
            item->setSelected(true);
    mSyncingSelection = false;
    if (!pasted.empty() && pasted.back() != nullptr)
        mManager->SetActiveNode(pasted.back());
    AfterGraphChange();
    emit edited();
}

void GraphEditor::RemoveNode(Node* node) {
    if (node == nullptr)
        return;
    Hide(node);
    mEngine->DeleteNode(node);
    AfterGraphChange();
    emit edited();
}

void GraphEditor::Hide(Node* node) {
    emit nodeLeaving(node);
    // The manager is told first, so that whoever follows the node can still let go of it.
    mManager->ForgetNode(node);
    node->RemoveNodeListener(this);
    if (const NodeItem* item = mScene->ItemFor(node))
        mDeletedAt[node] = item->pos();
    mScene->RemoveNodeItem(node);
}

void GraphEditor::SyncNodeItems() {
    for (NodeItem* item : mScene->GetNodeItems())
        if (mEngine->GetNodeId(item->GetNode()).empty())
            Hide(item->GetNode());
    for (const auto& [key, position] : mDeletedAt) {
        Node* node = const_cast<Node*>(key);
        if (!mEngine->GetNodeId(node).empty() && mScene->ItemFor(node) == nullptr) {
            mScene->AddNodeItem(node, position);
            node->AddNodeListener(this);
        }
    }
}

bool GraphEditor::ConnectPlugs(Node* from, unsigned outplug, Node* to, unsigned inplug,
                               QString* error) {
    std::string message;
    const bool linked = mEngine->Connect(from, outplug, to, inplug, &message);
    if (!linked && error != nullptr)
        *error = QString::fromStdString(message);
    AfterGraphChange();
    return linked;
}

void GraphEditor::Disconnect(Node* to, unsigned inplug) {
    mEngine->Disconnect(to, inplug);
    AfterGraphChange();
}

void GraphEditor::DeleteSelected() {
    std::vector<Node*> doomed;
    std::vector<std::pair<Node*, unsigned>> unlinked;
    for (QGraphicsItem* item : mScene->selectedItems()) {
        if (auto* node = dynamic_cast<NodeItem*>(item))
            doomed.push_back(node->GetNode());
        else if (auto* link = dynamic_cast<LinkItem*>(item))
            unlinked.emplace_back(link->GetTo()->GetNode(), link->GetInplug());
    }
    // Links go first and one by one, each an undo step of its own.
    for (const auto& [to, inplug] : unlinked)
        mEngine->Disconnect(to, inplug);
    if (!unlinked.empty())
        AfterGraphChange();
    if (doomed.empty())
        return;
    // One undo step for the whole selection.
    Engine::StateRecorderBegin(mEngine, this, "Delete Node");
    for (Node* node : doomed)
        RemoveNode(node);
    Engine::StateRecorderAccept(mEngine, this, doomed.size() == 1 ? "Delete Node" : "Delete Nodes");
    emit graphChanged();
}

void GraphEditor::Undo() {
    Replay(&Engine::Undo);
}

void GraphEditor::Redo() {
    Replay(&Engine::Redo);
}

void GraphEditor::Replay(bool (Engine::*step)()) {
    if (!(mEngine->*step)())
        return;
    SyncNodeItems();
    AfterGraphChange();
    emit edited();
}

void GraphEditor::DisplaySelected() {
    if (Node* node = mScene->GetSelectedNode())
        mManager->SetDisplayNode(node);
}

void GraphEditor::ToggleSelectedEnabled() {
    if (Node* node = mScene->GetSelectedNode()) {
        node->SetEvaluationEnabled(!node->IsEvaluationEnabled());
        emit edited();
        mScene->SyncStates(mManager->GetDisplayNode());
    }
}

void GraphEditor::SelectActiveNode() {
    mSyncingSelection = true;
    mScene->SelectNode(mManager->GetActiveNode());
    mSyncingSelection = false;
}

void GraphEditor::OnSelectionChanged() {
    if (mSyncingSelection)
        return;
    if (Node* node = mScene->GetSelectedNode())
        mManager->SetActiveNode(node);
}

void GraphEditor::BeginReplace() {
    mDeletedAt.clear();
    if (Node* active = mManager->GetActiveNode())
        emit nodeLeaving(active);
    mManager->SetActiveNode(nullptr);
    mManager->SetDisplayNode(nullptr);
    for (Node* node : mEngine->GetNodes())
        node->RemoveNodeListener(this);
}

void GraphEditor::EndReplace(Node* active, Node* display) {
    mScene->Rebuild();
    for (Node* node : mEngine->GetNodes())
        node->AddNodeListener(this);
    mManager->SetActiveNode(active);
    mManager->SetDisplayNode(display);
}

void GraphEditor::OnNodeEvent(Node* node, const NodeEvent& event) {
    if (event.type == NodeEvent::kInputsChanged || event.type == NodeEvent::kParameterChanged)
        emit edited();
    if (event.type != NodeEvent::kOutputChanged)
        return;
    emit outputChanged(node);
    if (node == mManager->GetDisplayNode())
        emit displayOutputChanged();
}

void GraphEditor::AfterGraphChange() {
    mScene->SyncLinks();
    mScene->SyncStates(mManager->GetDisplayNode());
    emit graphChanged();
}

QString GraphEditor::UniqueId(const QString& typeName) const {
    // "Perlin Texture" becomes "perlin_texture", then "perlin_texture_2", ...
    QString base;
    for (const QChar c : typeName.toLower())
        base += c.isLetterOrNumber() && c.unicode() < 128 ? c : QChar('_');
    if (base.isEmpty())
        base = "node";
    QString id = base;
    for (int n = 2; mEngine->FindNode(id.toStdString()) != nullptr; ++n)
        id = QString("%1_%2").arg(base).arg(n);
    return id;
}
