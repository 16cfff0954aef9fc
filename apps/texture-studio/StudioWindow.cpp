#include "apps/texture-studio/StudioWindow.h"

#include <algorithm>

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QScrollArea>
#include <QStatusBar>
#include <QTimer>
#include <QVBoxLayout>

#include "apps/texture-studio/GraphScene.h"
#include "apps/texture-studio/GraphView.h"
#include "apps/texture-studio/ImageConversion.h"
#include "apps/texture-studio/ImageViewer.h"
#include "apps/texture-studio/LinkItem.h"
#include "apps/texture-studio/NodeItem.h"
#include "apps/texture-studio/NodePalette.h"
#include "host/Document.h"
#include "host/Engine.h"
#include "host/Image.h"
#include "host/LibraryInterface.h"
#include "host/Log.h"
#include "host/NodeInterface.h"
#include "host/PluginLoader.h"
#include "host/widgets/Manager.h"
#include "host/widgets/QNodeAttributesWidget.h"

namespace {

constexpr const char* kDocumentFilter = "Texture graphs (*.texture.json);;JSON files (*.json)";
constexpr const char* kImageFilter =
    "PNG image (*.png);;OpenEXR float image (*.exr);;TIFF image (*.tif *.tiff);;All files (*)";

Delegate2<unsigned int, unsigned int> ManagerHandler(StudioWindow* window,
                                                     void (StudioWindow::*method)(unsigned int,
                                                                                  unsigned int)) {
    return {window, method};
}

}  // namespace

StudioWindow::StudioWindow(const PluginLoader& catalogue, QWidget* parent)
    : QMainWindow(parent), mCatalogue(catalogue), mEngine(Engine::Get()), mManager(Manager::Get()) {
    setObjectName("TextureStudio");
    mManager->SetMainWidget(this);

    mScene = new GraphScene(mEngine, &mCatalogue, this);
    mGraphView = new GraphView(this);
    mGraphView->setScene(mScene);
    setCentralWidget(mGraphView);
    mViewer = new ImageViewer(this);
    auto* imageDock = new QDockWidget(tr("Image"), this);
    imageDock->setObjectName("m_image_dock");
    imageDock->setWidget(mViewer);
    addDockWidget(Qt::RightDockWidgetArea, imageDock);

    mPalette = new NodePalette(mCatalogue, this);
    auto* paletteDock = new QDockWidget(tr("Nodes"), this);
    paletteDock->setObjectName("m_nodes_dock");
    paletteDock->setWidget(mPalette);
    addDockWidget(Qt::LeftDockWidgetArea, paletteDock);

    mAttributesArea = new QScrollArea(this);
    mAttributesArea->setWidgetResizable(true);
    auto* attributesDock = new QDockWidget(tr("Attributes"), this);
    attributesDock->setObjectName("m_attributes_dock");
    attributesDock->setWidget(mAttributesArea);
    attributesDock->setMinimumWidth(300);
    splitDockWidget(imageDock, attributesDock, Qt::Vertical);

    mStatus = new QLabel(this);
    statusBar()->addWidget(mStatus, 1);
    BuildMenus();

    connect(mScene, &QGraphicsScene::selectionChanged, this, &StudioWindow::OnSelectionChanged);
    connect(mScene, &GraphScene::connectRequested, this,
            [this](Node* from, unsigned outplug, Node* to, unsigned inplug) {
                QString error;
                if (!ConnectPlugs(from, outplug, to, inplug, &error))
                    Report(error);
            });
    connect(mScene, &GraphScene::disconnectRequested, this, [this](Node* to, unsigned inplug) {
        mEngine->Disconnect(to, inplug);
        AfterGraphChange();
    });
    connect(mScene, &GraphScene::nodeDoubleClicked, this,
            [this](Node* node) { mManager->SetDisplayNode(node); });
    connect(mPalette, &NodePalette::addRequested, this,
            [this](const QString& type) { AddNode(type, mGraphView->CenterPoint()); });
    connect(mGraphView, &GraphView::nodeTypeDropped, this,
            [this](const QString& type, QPointF at) { AddNode(type, at); });

    mManager->RegisterDelegateEventHandler(ManagerHandler(this, &StudioWindow::OnManagerEvent));
    AttachAll();
    mScene->Rebuild();
    ShowAttributesPage();
    FollowDisplayNode();
    SetModified(false);
    resize(1280, 800);
}

StudioWindow::~StudioWindow() {
    // The scene is a child and dies after this part of the window: its last selection change
    // must not reach a window that is no longer one.
    mScene->disconnect(this);
    if (LibraryInterface* library = mCatalogue.GetLibrary()) {
        library->RemoveMenuActions(mTextureMenu);
        library->Close();
    }
    mManager->UnregisterDelegateEventHandler(ManagerHandler(this, &StudioWindow::OnManagerEvent));
    DetachAll();
    if (mManager->GetMainWidget() == this)
        mManager->SetMainWidget(nullptr);
}

void StudioWindow::BuildMenus() {
    QMenu* file = menuBar()->addMenu(tr("&File"));
    file->addAction(tr("&New"), QKeySequence::New, this, &StudioWindow::OnNew);
    file->addAction(tr("&Open..."), QKeySequence::Open, this, &StudioWindow::OnOpen);
    file->addAction(tr("&Save"), QKeySequence::Save, this, &StudioWindow::OnSave);
    file->addAction(tr("Save &As..."), QKeySequence::SaveAs, this, &StudioWindow::OnSaveAs);
    file->addSeparator();
    file->addAction(tr("&Render Display Node to Image..."), QKeySequence(tr("Ctrl+R")), this,
                    &StudioWindow::OnRender);
    file->addSeparator();
    file->addAction(tr("&Quit"), QKeySequence::Quit, this, &QWidget::close);

    QMenu* edit = menuBar()->addMenu(tr("&Edit"));
    mUndoAction = edit->addAction(tr("&Undo"), QKeySequence::Undo, this, &StudioWindow::OnUndo);
    mRedoAction = edit->addAction(tr("&Redo"), QKeySequence::Redo, this, &StudioWindow::OnRedo);
    edit->addSeparator();
    mDeleteAction =
        edit->addAction(tr("&Delete"), QKeySequence::Delete, this, &StudioWindow::OnDeleteSelected);
    connect(edit, &QMenu::aboutToShow, this, &StudioWindow::UpdateActions);

    QMenu* node = menuBar()->addMenu(tr("&Node"));
    mDisplayAction = node->addAction(tr("&Display"), QKeySequence(tr("D")), this,
                                     &StudioWindow::OnDisplaySelected);
    mEnabledAction = node->addAction(tr("&Evaluate"), QKeySequence(tr("E")), this,
                                     &StudioWindow::OnToggleEnabled);
    mEnabledAction->setCheckable(true);
    // Single keys act on the graph only, not while typing in the catalogue or a page.
    for (QAction* action : {mDeleteAction, mDisplayAction, mEnabledAction}) {
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        mGraphView->addAction(action);
    }
    connect(node, &QMenu::aboutToShow, this, &StudioWindow::UpdateActions);

    QMenu* view = menuBar()->addMenu(tr("&View"));
    view->addAction(tr("Zoom &In"), QKeySequence::ZoomIn, mViewer, &ImageViewer::ZoomIn);
    view->addAction(tr("Zoom &Out"), QKeySequence::ZoomOut, mViewer, &ImageViewer::ZoomOut);
    view->addAction(tr("&Actual Size"), QKeySequence(tr("Ctrl+1")), mViewer,
                    &ImageViewer::ZoomActualSize);
    view->addAction(tr("&Fit"), QKeySequence(tr("Ctrl+0")), mViewer, &ImageViewer::ZoomToFit);

    mTextureMenu = menuBar()->addMenu(tr("&Texture"));
    mTextureMenu->setObjectName("m_texture_menu");
    if (LibraryInterface* library = mCatalogue.GetLibrary())
        library->AddMenuActions(mTextureMenu);
    if (mTextureMenu->actions().isEmpty())
        mTextureMenu->addAction(tr("(the plug-in adds no actions)"))->setEnabled(false);
}

bool StudioWindow::OpenDocument(const QString& path, QString* error) {
    // A trial load into an engine of its own: a bad document leaves the current graph alone.
    std::string message;
    {
        Engine trial;
        Document probe;
        if (!probe.Load(path.toStdString(), trial, mCatalogue, &message)) {
            if (error != nullptr)
                *error = QString::fromStdString(message);
            return false;
        }
    }
    DetachAll();
    Document document;
    if (!document.Load(path.toStdString(), *mEngine, mCatalogue, &message)) {
        mScene->Rebuild();
        if (error != nullptr)
            *error = QString::fromStdString(message);
        return false;
    }
    mDocumentPath = QFileInfo(path).absoluteFilePath();
    mScene->Rebuild();
    // After the window's layout has settled, so that the view's size is the real one.
    QTimer::singleShot(0, this, &StudioWindow::FitGraph);
    AttachAll();
    mManager->SetActiveNode(mEngine->FindNode(document.GetActive()));
    mManager->SetDisplayNode(mEngine->FindNode(document.GetDisplay()));
    ShowAttributesPage();
    FollowDisplayNode();
    SetModified(false);
    Report(tr("Opened %1").arg(path));
    return true;
}

bool StudioWindow::SaveDocument(const QString& path, QString* error) {
    Document document;
    if (Node* active = mManager->GetActiveNode())
        document.SetActive(mEngine->GetNodeId(active));
    if (Node* display = mManager->GetDisplayNode())
        document.SetDisplay(mEngine->GetNodeId(display));
    std::string message;
    if (!document.Save(path.toStdString(), *mEngine, &message)) {
        if (error != nullptr)
            *error = QString::fromStdString(message);
        return false;
    }
    mDocumentPath = QFileInfo(path).absoluteFilePath();
    SetModified(false);
    Report(tr("Saved %1").arg(path));
    return true;
}

void StudioWindow::NewDocument() {
    DetachAll();
    mEngine->Clear();
    mDocumentPath.clear();
    mScene->Rebuild();
    FitGraph();
    ShowAttributesPage();
    FollowDisplayNode();
    SetModified(false);
}

Node* StudioWindow::AddNode(const QString& typeName, const QPointF& position) {
    std::string error;
    std::unique_ptr<Node> created = mCatalogue.CreateNode(typeName.toStdString(), &error);
    if (created == nullptr) {
        Report(QString::fromStdString(error));
        return nullptr;
    }
    Node* node = mEngine->AddNode(std::move(created), UniqueId(typeName).toStdString(), &error);
    if (node == nullptr) {
        Report(QString::fromStdString(error));
        return nullptr;
    }
    node->AddNodeListener(this);
    mScene->AddNodeItem(node, position);
    mManager->SetActiveNode(node);
    SetModified(true);
    return node;
}

void StudioWindow::RemoveNode(Node* node) {
    if (node == nullptr)
        return;
    if (mAttributesNode == node) {
        delete mAttributesArea->takeWidget();
        mAttributesNode = nullptr;
    }
    // The manager is told first, so that whoever follows the node can still let go of it.
    mManager->ForgetNode(node);
    node->RemoveNodeListener(this);
    if (const NodeItem* item = mScene->ItemFor(node))
        mDeletedAt[node] = item->pos();
    mScene->RemoveNodeItem(node);
    mEngine->DeleteNode(node);
    AfterGraphChange();
    SetModified(true);
}

void StudioWindow::SyncDeletedNodes() {
    for (auto it = mDeletedAt.begin(); it != mDeletedAt.end();) {
        Node* node = const_cast<Node*>(it->first);
        const bool inEngine = !mEngine->GetNodeId(node).empty();
        const bool shown = mScene->ItemFor(node) != nullptr;
        if (inEngine && !shown) {
            // Undo brought it back.
            mScene->AddNodeItem(node, it->second);
            node->AddNodeListener(this);
        } else if (!inEngine && shown) {
            // Redo took it away again.
            if (mAttributesNode == node) {
                delete mAttributesArea->takeWidget();
                mAttributesNode = nullptr;
            }
            mManager->ForgetNode(node);
            node->RemoveNodeListener(this);
            it->second = mScene->ItemFor(node)->pos();
            mScene->RemoveNodeItem(node);
        }
        ++it;
    }
}

bool StudioWindow::ConnectPlugs(Node* from, unsigned outplug, Node* to, unsigned inplug,
                                QString* error) {
    std::string message;
    const bool linked = mEngine->Connect(from, outplug, to, inplug, &message);
    if (!linked && error != nullptr)
        *error = QString::fromStdString(message);
    AfterGraphChange();
    return linked;
}

int StudioWindow::ImageOutplug(const Node* node) const {
    for (const auto& output : node->GetOutplugs())
        if (output.plugType == Node::kImagePlug)
            return static_cast<int>(output.id);
    return -1;
}

void StudioWindow::EvaluateDisplay() {
    mEvaluationPending = false;
    Node* display = mManager->GetDisplayNode();
    if (display == nullptr) {
        mViewer->SetMessage(
            tr("No display node: double-click a node (or press D) to show its image"));
        mScene->SyncStates(nullptr);
        return;
    }
    const QString id = QString::fromStdString(mEngine->GetNodeId(display));
    const int outplug = ImageOutplug(display);
    if (outplug < 0) {
        mViewer->SetMessage(tr("'%1' has no image output; textures are shown by the plug-in's "
                               "preview (menu Texture)")
                                .arg(id));
        mScene->SyncStates(display);
        return;
    }
    QApplication::setOverrideCursor(Qt::WaitCursor);
    Timer timer;
    timer.StartTimer();
    mEngine->EvaluateNode(display);
    const int milliseconds = timer.StopTimer();
    QApplication::restoreOverrideCursor();

    const NodeValue value = mEngine->GetOutputValue(display, static_cast<unsigned>(outplug));
    if (value.GetImage() != nullptr) {
        const Image& image = *value.GetImage();
        mViewer->SetImage(ToQImage(image));
        Report(tr("%1: %2 x %3, %4 ms")
                   .arg(id)
                   .arg(image.GetSizeX())
                   .arg(image.GetSizeY())
                   .arg(milliseconds));
    } else {
        QString why = QString::fromStdString(display->GetStateMessage());
        if (why.isEmpty())
            why = display->IsEvaluationEnabled() ? tr("an input is missing or empty")
                                                 : tr("its evaluation is disabled");
        mViewer->SetMessage(tr("'%1' produced no image: %2").arg(id, why));
    }
    mScene->SyncStates(display);
}

bool StudioWindow::RenderDisplayTo(const QString& path, QString* error) {
    const auto fail = [error](const QString& message) {
        if (error != nullptr)
            *error = message;
        return false;
    };
    Node* display = mManager->GetDisplayNode();
    if (display == nullptr)
        return fail(tr("there is no display node to render"));
    const int outplug = ImageOutplug(display);
    const QString id = QString::fromStdString(mEngine->GetNodeId(display));
    if (outplug < 0)
        return fail(tr("node '%1' has no image output").arg(id));
    mEngine->EvaluateNode(display);
    const NodeValue value = mEngine->GetOutputValue(display, static_cast<unsigned>(outplug));
    if (value.GetImage() == nullptr)
        return fail(tr("node '%1' produced no image: %2")
                        .arg(id, QString::fromStdString(display->GetStateMessage())));
    std::string message;
    if (!value.GetImage()->WriteFile(path.toStdString(), 8, &message))
        return fail(QString::fromStdString(message));
    return true;
}

void StudioWindow::OnNodeEvent(Node* node, const NodeEvent& event) {
    if (event.type == NodeEvent::kInputsChanged || event.type == NodeEvent::kParameterChanged)
        SetModified(true);
    if (event.type == NodeEvent::kOutputChanged && node == mManager->GetDisplayNode())
        ScheduleEvaluation();
}

void StudioWindow::closeEvent(QCloseEvent* event) {
    if (MaybeSave())
        event->accept();
    else
        event->ignore();
}

void StudioWindow::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    if (mShownOnce)
        return;
    mShownOnce = true;
    resizeDocks({findChild<QDockWidget*>("m_nodes_dock"), findChild<QDockWidget*>("m_image_dock")},
                {190, 420}, Qt::Horizontal);
    resizeDocks({findChild<QDockWidget*>("m_image_dock")}, {height() / 2}, Qt::Vertical);
    FitGraph();
}

void StudioWindow::FitGraph() {
    mGraphView->resetTransform();
    const QRectF nodes = mScene->itemsBoundingRect().adjusted(-30, -30, 30, 30);
    if (nodes.isEmpty()) {
        mGraphView->centerOn(0, 0);
        return;
    }
    const QSize view = mGraphView->viewport()->size();
    if (nodes.width() > view.width() || nodes.height() > view.height()) {
        // Below 0.4 the names are unreadable: wider graphs scroll instead.
        const double zoom =
            std::max(0.4, std::min(view.width() / nodes.width(), view.height() / nodes.height()));
        mGraphView->scale(zoom, zoom);
    }
    mGraphView->centerOn(nodes.center());
}

void StudioWindow::OnOpen() {
    if (!MaybeSave())
        return;
    const QString path = QFileDialog::getOpenFileName(
        this, tr("Open Graph"), QFileInfo(mDocumentPath).path(), tr(kDocumentFilter));
    if (path.isEmpty())
        return;
    QString error;
    if (!OpenDocument(path, &error))
        QMessageBox::warning(this, tr("Open Graph"), error);
}

void StudioWindow::OnSave() {
    if (mDocumentPath.isEmpty()) {
        OnSaveAs();
        return;
    }
    QString error;
    if (!SaveDocument(mDocumentPath, &error))
        QMessageBox::warning(this, tr("Save Graph"), error);
}

void StudioWindow::OnSaveAs() {
    QString path =
        QFileDialog::getSaveFileName(this, tr("Save Graph As"), mDocumentPath, tr(kDocumentFilter));
    if (path.isEmpty())
        return;
    if (!path.endsWith(".json"))
        path += ".texture.json";
    QString error;
    if (!SaveDocument(path, &error))
        QMessageBox::warning(this, tr("Save Graph"), error);
}

void StudioWindow::OnNew() {
    if (MaybeSave())
        NewDocument();
}

void StudioWindow::OnRender() {
    const QString path =
        QFileDialog::getSaveFileName(this, tr("Render Display Node"), QString(), tr(kImageFilter));
    if (path.isEmpty())
        return;
    QString error;
    if (RenderDisplayTo(path, &error))
        Report(tr("Rendered to %1").arg(path));
    else
        QMessageBox::warning(this, tr("Render"), error);
}

void StudioWindow::OnUndo() {
    if (!mEngine->Undo())
        return;
    SyncDeletedNodes();
    AfterGraphChange();
    SetModified(true);
}

void StudioWindow::OnRedo() {
    if (!mEngine->Redo())
        return;
    SyncDeletedNodes();
    AfterGraphChange();
    SetModified(true);
}

void StudioWindow::OnDeleteSelected() {
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
    UpdateActions();
}

void StudioWindow::OnDisplaySelected() {
    if (Node* node = mScene->GetSelectedNode())
        mManager->SetDisplayNode(node);
}

void StudioWindow::OnToggleEnabled() {
    if (Node* node = mScene->GetSelectedNode()) {
        node->SetEvaluationEnabled(!node->IsEvaluationEnabled());
        SetModified(true);
        mScene->SyncStates(mManager->GetDisplayNode());
    }
}

void StudioWindow::OnSelectionChanged() {
    UpdateActions();
    if (mSyncingSelection)
        return;
    if (Node* node = mScene->GetSelectedNode())
        mManager->SetActiveNode(node);
}

void StudioWindow::OnManagerEvent(unsigned int code, unsigned int) {
    if (code == Manager::kActiveNodeChanged) {
        mSyncingSelection = true;
        mScene->SelectNode(mManager->GetActiveNode());
        mSyncingSelection = false;
        ShowAttributesPage();
    } else if (code == Manager::kDisplayNodeChanged) {
        FollowDisplayNode();
    }
}

void StudioWindow::ShowAttributesPage() {
    Node* node = mManager->GetActiveNode();
    if (node == mAttributesNode && mAttributesArea->widget() != nullptr)
        return;
    delete mAttributesArea->takeWidget();
    mAttributesNode = node;
    auto* container = new QWidget;
    auto* layout = new QVBoxLayout(container);
    if (node == nullptr) {
        layout->addWidget(new QLabel(tr("Select a node to edit its attributes."), container));
    } else {
        auto* title =
            new QLabel(QString("<b>%1</b> &nbsp; %2")
                           .arg(QString::fromStdString(node->GetTypeName()).toHtmlEscaped(),
                                QString::fromStdString(mEngine->GetNodeId(node)).toHtmlEscaped()),
                       container);
        layout->addWidget(title);
        NodeInterface* type = mCatalogue.FindType(node->GetTypeName());
        QWidget* page =
            type != nullptr ? type->CreateAttributesWidget(node, container, 0) : nullptr;
        if (page == nullptr)
            page = new QNodeAttributesWidget(container, node, type, nullptr, false);
        if (auto* generic = qobject_cast<QNodeAttributesWidget*>(page))
            connect(generic, &QNodeAttributesWidget::editRejected, this, &StudioWindow::Report);
        layout->addWidget(page);
        mAttributesPage = page;
    }
    layout->addStretch(1);
    mAttributesArea->setWidget(container);
}

void StudioWindow::FollowDisplayNode() {
    mScene->SyncStates(mManager->GetDisplayNode());
    ScheduleEvaluation();
}

void StudioWindow::AttachAll() {
    for (Node* node : mEngine->GetNodes())
        node->AddNodeListener(this);
}

void StudioWindow::DetachAll() {
    mDeletedAt.clear();
    delete mAttributesArea->takeWidget();
    mAttributesNode = nullptr;
    mManager->SetActiveNode(nullptr);
    mManager->SetDisplayNode(nullptr);
    for (Node* node : mEngine->GetNodes())
        node->RemoveNodeListener(this);
}

void StudioWindow::ScheduleEvaluation() {
    if (mEvaluationPending)
        return;
    mEvaluationPending = true;
    QTimer::singleShot(0, this, [this] {
        if (mEvaluationPending)
            EvaluateDisplay();
    });
}

void StudioWindow::AfterGraphChange() {
    mScene->SyncLinks();
    mScene->SyncStates(mManager->GetDisplayNode());
    UpdateActions();
}

void StudioWindow::UpdateActions() {
    const QString undo = QString::fromStdString(mEngine->GetUndoLabel());
    const QString redo = QString::fromStdString(mEngine->GetRedoLabel());
    mUndoAction->setText(undo.isEmpty() ? tr("&Undo") : tr("&Undo %1").arg(undo));
    mRedoAction->setText(redo.isEmpty() ? tr("&Redo") : tr("&Redo %1").arg(redo));
    Node* selected = mScene->GetSelectedNode();
    mDisplayAction->setEnabled(selected != nullptr);
    mEnabledAction->setEnabled(selected != nullptr);
    mEnabledAction->setChecked(selected != nullptr && selected->IsEvaluationEnabled());
    mDeleteAction->setEnabled(!mScene->selectedItems().isEmpty());
}

void StudioWindow::SetModified(bool modified) {
    setWindowModified(modified);
    const QString name =
        mDocumentPath.isEmpty() ? tr("Untitled") : QFileInfo(mDocumentPath).fileName();
    setWindowTitle(tr("%1[*] - Texture Studio").arg(name));
}

bool StudioWindow::MaybeSave() {
    if (!isWindowModified())
        return true;
    const auto answer = QMessageBox::question(
        this, tr("Unsaved Changes"), tr("The graph has changed. Save it first?"),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    if (answer == QMessageBox::Cancel)
        return false;
    if (answer == QMessageBox::Save) {
        OnSave();
        return !isWindowModified();
    }
    return true;
}

void StudioWindow::Report(const QString& message) {
    mStatus->setText(message);
    Log::Info("texture-studio: %s", message.toUtf8().constData());
}

QString StudioWindow::UniqueId(const QString& typeName) const {
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
