#include "apps/texture-studio/StudioWindow.h"

#include <algorithm>

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QFileDialog>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QScrollArea>
#include <QStatusBar>
#include <QTimer>
#include <QVBoxLayout>

#include "apps/common/RenderToFile.h"
#include "apps/texture-studio/DocumentController.h"
#include "apps/texture-studio/GraphEditor.h"
#include "apps/texture-studio/GraphScene.h"
#include "apps/texture-studio/GraphView.h"
#include "apps/texture-studio/ImageConversion.h"
#include "apps/texture-studio/ImageViewer.h"
#include "apps/texture-studio/NodePalette.h"
#include "host/Engine.h"
#include "host/Image.h"
#include "host/LibraryInterface.h"
#include "host/Log.h"
#include "host/NodeInterface.h"
#include "host/PluginLoader.h"
#include "host/widgets/Manager.h"
#include "host/widgets/QNodeAttributesWidget.h"

namespace {

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
    mEditor = new GraphEditor(mCatalogue, mScene, this);
    mDocument = new DocumentController(mCatalogue, mEditor, this);
    BuildDocks();
    mStatus = new QLabel(this);
    statusBar()->addWidget(mStatus, 1);
    BuildMenus();

    connect(mScene, &QGraphicsScene::selectionChanged, this, &StudioWindow::UpdateActions);
    connect(mEditor, &GraphEditor::graphChanged, this, &StudioWindow::UpdateActions);
    connect(mEditor, &GraphEditor::nodeLeaving, this, &StudioWindow::DropAttributesPageOf);
    connect(mEditor, &GraphEditor::displayOutputChanged, this, &StudioWindow::ScheduleEvaluation);
    connect(mEditor, &GraphEditor::report, this, &StudioWindow::Report);
    connect(mDocument, &DocumentController::report, this, &StudioWindow::Report);
    connect(mDocument, &DocumentController::stateChanged, this, &StudioWindow::UpdateTitle);
    connect(mDocument, &DocumentController::replaced, this, [this] {
        // After the window's layout has settled, so that the view's size is the real one.
        QTimer::singleShot(0, this, &StudioWindow::FitGraph);
        ShowAttributesPage();
        FollowDisplayNode();
    });
    connect(mPalette, &NodePalette::addRequested, this,
            [this](const QString& type) { mEditor->AddNode(type, mGraphView->CenterPoint()); });
    connect(mGraphView, &GraphView::nodeTypeDropped, this,
            [this](const QString& type, QPointF at) { mEditor->AddNode(type, at); });

    mManager->RegisterDelegateEventHandler(ManagerHandler(this, &StudioWindow::OnManagerEvent));
    mEditor->EndReplace(mManager->GetActiveNode(), mManager->GetDisplayNode());
    ShowAttributesPage();
    FollowDisplayNode();
    UpdateTitle();
    resize(1280, 800);
}

StudioWindow::~StudioWindow() {
    // The scene is a child and dies after this part of the window: its last selection change
    // must reach neither the window nor the editor.
    mScene->disconnect();
    if (LibraryInterface* library = mCatalogue.GetLibrary()) {
        library->RemoveMenuActions(mTextureMenu);
        library->Close();
    }
    mManager->UnregisterDelegateEventHandler(ManagerHandler(this, &StudioWindow::OnManagerEvent));
    mEditor->BeginReplace();
    if (mManager->GetMainWidget() == this)
        mManager->SetMainWidget(nullptr);
}

void StudioWindow::BuildDocks() {
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
}

void StudioWindow::BuildMenus() {
    QMenu* file = menuBar()->addMenu(tr("&File"));
    file->addAction(tr("&New"), QKeySequence::New, mDocument, &DocumentController::NewAfterAsking);
    file->addAction(tr("&Open..."), QKeySequence::Open, mDocument,
                    &DocumentController::OpenAfterAsking);
    file->addAction(tr("&Save"), QKeySequence::Save, mDocument, &DocumentController::SaveOrAsk);
    file->addAction(tr("Save &As..."), QKeySequence::SaveAs, mDocument,
                    &DocumentController::SaveAsAfterAsking);
    file->addSeparator();
    file->addAction(tr("&Render Display Node to Image..."), QKeySequence(tr("Ctrl+R")), this,
                    &StudioWindow::OnRender);
    file->addSeparator();
    file->addAction(tr("&Quit"), QKeySequence::Quit, this, &QWidget::close);

    QMenu* edit = menuBar()->addMenu(tr("&Edit"));
    mUndoAction = edit->addAction(tr("&Undo"), QKeySequence::Undo, mEditor, &GraphEditor::Undo);
    mRedoAction = edit->addAction(tr("&Redo"), QKeySequence::Redo, mEditor, &GraphEditor::Redo);
    edit->addSeparator();
    mDeleteAction =
        edit->addAction(tr("&Delete"), QKeySequence::Delete, mEditor, &GraphEditor::DeleteSelected);
    connect(edit, &QMenu::aboutToShow, this, &StudioWindow::UpdateActions);

    QMenu* node = menuBar()->addMenu(tr("&Node"));
    mDisplayAction = node->addAction(tr("&Display"), QKeySequence(tr("D")), mEditor,
                                     &GraphEditor::DisplaySelected);
    mEnabledAction = node->addAction(tr("&Evaluate"), QKeySequence(tr("E")), mEditor,
                                     &GraphEditor::ToggleSelectedEnabled);
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
    const int outplug = RenderToFile::FindImageOutplug(*display);
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
    Node* display = mManager->GetDisplayNode();
    std::string message = "there is no display node to render";
    if (display != nullptr &&
        RenderToFile(*mEngine).Render(*display, path.toStdString(), FileLayout(), &message))
        return true;
    if (error != nullptr)
        *error = QString::fromStdString(message);
    return false;
}

void StudioWindow::closeEvent(QCloseEvent* event) {
    if (mDocument->MaybeSave())
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

void StudioWindow::OnManagerEvent(unsigned int code, unsigned int) {
    if (code == Manager::kActiveNodeChanged) {
        mEditor->SelectActiveNode();
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

void StudioWindow::DropAttributesPageOf(Node* node) {
    if (mAttributesNode != node)
        return;
    delete mAttributesArea->takeWidget();
    mAttributesNode = nullptr;
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

void StudioWindow::UpdateTitle() {
    setWindowModified(mDocument->IsModified());
    setWindowTitle(tr("%1[*] - Texture Studio").arg(mDocument->GetName()));
}

void StudioWindow::Report(const QString& message) {
    mStatus->setText(message);
    Log::Info("texture-studio: %s", message.toUtf8().constData());
}
