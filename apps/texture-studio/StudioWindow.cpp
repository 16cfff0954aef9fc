#include "apps/texture-studio/StudioWindow.h"

#include <algorithm>
#include <mutex>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QChildEvent>
#include <QCloseEvent>
#include <QDialog>
#include <QDockWidget>
#include <QDoubleSpinBox>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QProgressDialog>
#include <QScrollArea>
#include <QSplitter>
#include <QStatusBar>
#include <QTimer>
#include <QVBoxLayout>

#include "apps/common/RenderToFile.h"
#include "apps/texture-studio/BakeView.h"
#include "apps/texture-studio/DisplayController.h"
#include "apps/texture-studio/DocumentController.h"
#include "apps/texture-studio/FileRenderJob.h"
#include "apps/texture-studio/GraphEditor.h"
#include "apps/texture-studio/GraphScene.h"
#include "apps/texture-studio/GraphView.h"
#include "apps/texture-studio/ImageViewer.h"
#include "apps/texture-studio/NodeItem.h"
#include "apps/texture-studio/NodePalette.h"
#include "apps/texture-studio/NodePicture.h"
#include "apps/texture-studio/PictureRenderer.h"
#include "apps/texture-studio/ThumbnailUpdater.h"
#include "apps/texture-studio/WindowRender.h"
#include "host/Engine.h"
#include "host/LibraryInterface.h"
#include "host/Log.h"
#include "host/NodeInterface.h"
#include "host/PluginLoader.h"
#include "host/widgets/Manager.h"
#include "host/widgets/QNodeAttributesWidget.h"

namespace {

constexpr const char* kImageFilter =
    "PNG image (*.png);;OpenEXR float image (*.exr);;TIFF image (*.tif *.tiff);;All files (*)";

// A render to a file shows its progress dialog once it has taken this long.
constexpr int kProgressDialogDelayMs = 400;
constexpr int kProgressPollMs = 50;

Delegate2<unsigned int, unsigned int> ManagerHandler(StudioWindow* window,
                                                     void (StudioWindow::*method)(unsigned int,
                                                                                  unsigned int)) {
    return {window, method};
}

/// Runs the event loop until `done` holds or `timeoutMs` passed; returns `done()`.
template <class Condition>
bool SpinUntil(Condition done, int timeoutMs) {
    QElapsedTimer clock;
    clock.start();
    while (!done() && clock.elapsed() < timeoutMs)
        QApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 20);
    return done();
}

}  // namespace

StudioWindow::StudioWindow(const PluginLoader& catalogue, QWidget* parent)
    : QMainWindow(parent), mCatalogue(catalogue), mEngine(Engine::Get()), mManager(Manager::Get()) {
    setObjectName("TextureStudio");
    mManager->SetMainWidget(this);
    WindowRender::HookInto(*mEngine);

    mScene = new GraphScene(mEngine, &mCatalogue, this);
    mGraphView = new GraphView(this);
    mGraphView->setScene(mScene);
    setCentralWidget(mGraphView);
    mEditor = new GraphEditor(mCatalogue, mScene, this);
    mDocument = new DocumentController(mCatalogue, mEditor, this);
    mThumbnails = new ThumbnailUpdater(mEngine, mScene, this);
    BuildDocks();
    mStatus = new QLabel(this);
    statusBar()->addWidget(mStatus, 1);
    mDisplay = new DisplayController(
        mEngine, mViewer, mBakeView, statusBar(), [this] { return CurrentPlane(); },
        [this](const Node* node) { return mScene->IdOf(node); }, this);
    BuildMenus();

    connect(mDisplay, &DisplayController::report, this, &StudioWindow::Report);
    connect(mDisplay, &DisplayController::shown, this, [this] {
        mScene->SyncStates(mManager->GetDisplayNode());
        ReportErrors();
    });
    connect(mThumbnails->GetRenderer(), &PictureRenderer::pictureReady, this,
            [this](Node*, const NodePicture& picture) {
                if (picture.failed)
                    ReportErrors();
            });
    connect(mEditor, &GraphEditor::outputChanged, mThumbnails, &ThumbnailUpdater::OutputChanged);
    connect(mEditor, &GraphEditor::graphChanged, mThumbnails, &ThumbnailUpdater::Sync);
    connect(mEditor, &GraphEditor::nodeLeaving, this, [this](Node* node) {
        if (mDisplay == nullptr)  // the window is closing
            return;
        mThumbnails->Forget(node);
        mDisplay->Forget(node);
    });

    connect(mScene, &QGraphicsScene::selectionChanged, this, &StudioWindow::UpdateActions);
    connect(mEditor, &GraphEditor::graphChanged, this, &StudioWindow::UpdateActions);
    // Reading the labels waits for the engine, which a render may hold for long: they are
    // read after edits (which waited for it anyway) and when the Edit menu opens, never on a
    // mere change of selection.
    connect(mEditor, &GraphEditor::graphChanged, this, &StudioWindow::UpdateUndoLabels);
    connect(mEditor, &GraphEditor::nodeLeaving, this, &StudioWindow::DropAttributesPageOf);
    connect(mEditor, &GraphEditor::displayOutputChanged, mDisplay,
            &DisplayController::OutputChanged);
    connect(mEditor, &GraphEditor::report, this, &StudioWindow::Report);
    connect(mDocument, &DocumentController::report, this, &StudioWindow::Report);
    connect(mDocument, &DocumentController::stateChanged, this, &StudioWindow::UpdateTitle);
    connect(mDocument, &DocumentController::replaced, this, [this] {
        // After the window's layout has settled, so that the view's size is the real one.
        QTimer::singleShot(0, this, &StudioWindow::FitGraph);
        ShowAttributesPage();
        FollowDisplayNode();
        mThumbnails->Sync();
    });
    connect(mPalette, &NodePalette::addRequested, this, [this](const QString& type) {
        mEditor->AddNode(type, mGraphView->TakePlacementPoint());
    });
    connect(mGraphView, &GraphView::nodeTypeDropped, this,
            [this](const QString& type, QPointF at) { mEditor->AddNode(type, at); });

    mManager->RegisterDelegateEventHandler(ManagerHandler(this, &StudioWindow::OnManagerEvent));
    mEditor->EndReplace(mManager->GetActiveNode(), mManager->GetDisplayNode());
    ShowAttributesPage();
    FollowDisplayNode();
    mThumbnails->Sync();
    UpdateTitle();
    resize(1280, 800);
}

StudioWindow::~StudioWindow() {
    // The workers first: no render may outlive the graph it reads.
    delete mThumbnails;
    mThumbnails = nullptr;
    delete mDisplay;
    mDisplay = nullptr;
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
    mBakeView = new BakeView(this);
    mBakeView->hide();
    auto* pictures = new QSplitter(Qt::Horizontal, this);
    pictures->addWidget(mViewer);
    pictures->addWidget(mBakeView);
    auto* imageDock = new QDockWidget(tr("Image"), this);
    imageDock->setObjectName("m_image_dock");
    imageDock->setWidget(pictures);
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
    mRecentMenu = file->addMenu(tr("Open &Recent"));
    connect(mRecentMenu, &QMenu::aboutToShow, this, &StudioWindow::FillRecentMenu);
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
    mCopyAction =
        edit->addAction(tr("&Copy"), QKeySequence::Copy, mEditor, &GraphEditor::CopySelected);
    mPasteAction = edit->addAction(tr("&Paste"), QKeySequence::Paste, mEditor, &GraphEditor::Paste);
    mDuplicateAction = edit->addAction(tr("D&uplicate"), QKeySequence(tr("Ctrl+D")), mEditor,
                                       &GraphEditor::DuplicateSelected);
    mDeleteAction =
        edit->addAction(tr("&Delete"), QKeySequence::Delete, mEditor, &GraphEditor::DeleteSelected);
    connect(edit, &QMenu::aboutToShow, this, &StudioWindow::UpdateActions);
    connect(edit, &QMenu::aboutToShow, this, &StudioWindow::UpdateUndoLabels);

    QMenu* node = menuBar()->addMenu(tr("&Node"));
    mDisplayAction = node->addAction(tr("&Display"), QKeySequence(tr("D")), mEditor,
                                     &GraphEditor::DisplaySelected);
    mEnabledAction = node->addAction(tr("&Evaluate"), QKeySequence(tr("E")), mEditor,
                                     &GraphEditor::ToggleSelectedEnabled);
    mEnabledAction->setCheckable(true);
    mThumbnailAction = node->addAction(tr("Show &Thumbnail"), QKeySequence(tr("T")), this, [this] {
        for (QGraphicsItem* item : mScene->selectedItems())
            if (auto* nodeItem = dynamic_cast<NodeItem*>(item))
                mThumbnails->SetWanted(nodeItem->GetNode(), mThumbnailAction->isChecked());
    });
    mThumbnailAction->setCheckable(true);
    node->addSeparator();
    node->addAction(tr("&Arrange Graph"), QKeySequence(tr("Ctrl+L")), this, [this] {
        mScene->Arrange();
        FitGraph();
    });
    // Single keys and the clipboard keys act on the graph only, not while typing in the
    // catalogue or a page.
    for (QAction* action : {mDeleteAction, mDisplayAction, mEnabledAction, mThumbnailAction,
                            mCopyAction, mPasteAction, mDuplicateAction}) {
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
    view->addSeparator();
    QAction* thumbnails = view->addAction(tr("Node &Thumbnails"));
    thumbnails->setCheckable(true);
    thumbnails->setChecked(mScene->AreThumbnailsShown());
    connect(thumbnails, &QAction::toggled, mThumbnails, &ThumbnailUpdater::SetEnabled);
    mTileableAction = view->addAction(tr("Ti&leable Textures"));
    mTileableAction->setObjectName("m_tileable_action");
    mTileableAction->setCheckable(true);
    mTileableAction->setToolTip(
        tr("Textures on view and on thumbnails repeat with the previewed "
           "rectangle as their period"));
    connect(mTileableAction, &QAction::toggled, this, &StudioWindow::PlaneChanged);
    view->addAction(tr("Fit &Graph"), QKeySequence(tr("Ctrl+Shift+0")), this,
                    &StudioWindow::FitGraph);

    mTextureMenu = menuBar()->addMenu(tr("&Texture"));
    mTextureMenu->setObjectName("m_texture_menu");
    if (LibraryInterface* library = mCatalogue.GetLibrary())
        library->AddMenuActions(mTextureMenu);
    if (mTextureMenu->actions().isEmpty())
        mTextureMenu->addAction(tr("(the plug-in adds no actions)"))->setEnabled(false);
}

bool StudioWindow::EvaluateDisplay(int timeoutMs) {
    FollowDisplayNode();
    return SpinUntil([this] { return !mDisplay->IsBusy(); }, timeoutMs);
}

bool StudioWindow::WaitForThumbnails(int timeoutMs) {
    return SpinUntil([this] { return mThumbnails->GetPendingCount() == 0; }, timeoutMs);
}

PlaneSettings StudioWindow::CurrentPlane() const {
    PlaneSettings plane;
    plane.tileable = mTileableAction != nullptr && mTileableAction->isChecked();
    // The plug-in's preview dialog is the one place where an artist chooses the part of the
    // plane to look at; its widgets are read by name, as the plug-in's classes are its own.
    const auto* dialog = findChild<QDialog*>("QTextureDialog");
    if (dialog == nullptr)
        return plane;
    const auto number = [dialog](const char* name, float fallback) {
        const auto* spinner = dialog->findChild<QDoubleSpinBox*>(name);
        return spinner != nullptr ? static_cast<float>(spinner->value()) : fallback;
    };
    const auto flag = [dialog](const char* name, bool fallback) {
        const auto* check = dialog->findChild<QCheckBox*>(name);
        return check != nullptr ? check->isChecked() : fallback;
    };
    plane.startX = number("m_start_x_qspin", plane.startX);
    plane.startY = number("m_start_y_qspin", plane.startY);
    plane.rangeX = number("m_range_x_qspin", plane.rangeX);
    plane.rangeY = number("m_range_y_qspin", plane.rangeY);
    plane.fixedZ = number("m_fixed_z_qspin", plane.fixedZ);
    plane.keepAspect = flag("m_keep_aspect_qcheck", plane.keepAspect);
    plane.seamless = flag("m_seamless_qcheck", plane.seamless);
    return plane;
}

void StudioWindow::ReportErrors() {
    // A node's state changes while it evaluates on a render thread.
    std::lock_guard lock(mEngine->GetMutex());
    for (const NodeItem* item : mScene->GetNodeItems()) {
        const Node* node = item->GetNode();
        if (node->GetState() != Node::kStateError)
            continue;
        Report(tr("'%1' (%2) failed: %3")
                   .arg(item->GetId(), QString::fromStdString(node->GetTypeName()),
                        QString::fromStdString(node->GetStateMessage())));
        return;
    }
}

void StudioWindow::FillRecentMenu() {
    mRecentMenu->clear();
    const QStringList recent = mDocument->GetRecentFiles();
    for (const QString& path : recent)
        mRecentMenu
            ->addAction(QFileInfo(path).fileName(), this,
                        [this, path] { mDocument->OpenRecentAfterAsking(path); })
            ->setToolTip(path);
    if (recent.isEmpty())
        mRecentMenu->addAction(tr("(no documents yet)"))->setEnabled(false);
}

QString StudioWindow::GetStatusText() const {
    return mStatus->text();
}

bool StudioWindow::RenderDisplayTo(const QString& path, QString* error) {
    Node* display = mManager->GetDisplayNode();
    std::string message = "there is no display node to render";
    if (display != nullptr) {
        // On a thread of its own, so that the window keeps painting; a render that takes long
        // shows a progress dialog whose Cancel stops it.
        FileRenderJob job(*mEngine, *display, path.toStdString());
        QProgressDialog progress(
            tr("Rendering '%1' to %2...").arg(mScene->IdOf(display), QFileInfo(path).fileName()),
            tr("Cancel"), 0, 0, this);  // busy until the render counts its lines
        progress.setWindowModality(Qt::WindowModal);
        progress.setMinimumDuration(kProgressDialogDelayMs);
        connect(&progress, &QProgressDialog::canceled, this, [&job] { job.Stop(); });
        QEventLoop loop;
        QTimer poll;
        connect(&poll, &QTimer::timeout, this, [&] {
            if (job.IsDone()) {
                loop.quit();
            } else if (const int percent = job.GetPercent();
                       percent > 0 && !progress.wasCanceled()) {
                progress.setMaximum(100);
                progress.setValue(percent);
            }
        });
        poll.start(kProgressPollMs);
        if (!job.IsDone())
            loop.exec();
        if (job.Succeeded(&message))
            return true;
    }
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

void StudioWindow::childEvent(QChildEvent* event) {
    QMainWindow::childEvent(event);
    if (event->type() != QEvent::ChildAdded)
        return;
    // The dialog is still being made when it joins the window: its widgets are looked at
    // once it is done.
    QPointer<QObject> child = event->child();
    QTimer::singleShot(0, this, [this, child] {
        if (child != nullptr && child->objectName() == "QTextureDialog")
            FollowPreviewSettings(qobject_cast<QWidget*>(child.data()));
    });
}

void StudioWindow::FollowPreviewSettings(QWidget* dialog) {
    if (dialog == nullptr)
        return;
    for (auto* spinner : dialog->findChildren<QDoubleSpinBox*>())
        connect(spinner, &QDoubleSpinBox::valueChanged, this, &StudioWindow::PlaneChanged);
    for (auto* check : dialog->findChildren<QCheckBox*>())
        connect(check, &QCheckBox::toggled, this, &StudioWindow::PlaneChanged);
}

void StudioWindow::PlaneChanged() {
    mThumbnails->SetPlane(CurrentPlane());
    Node* display = mManager->GetDisplayNode();
    if (display != nullptr && RenderToFile::FindImageOutplug(*display) < 0)
        mDisplay->OutputChanged();
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
    // Never enlarged beyond 1:1, and never shrunk below a zoom where titles stay readable:
    // larger graphs pan instead, the view starting at their top-left corner.
    const QSize view = mGraphView->viewport()->size();
    const double fit = std::min(view.width() / nodes.width(), view.height() / nodes.height());
    const double zoom = std::clamp(fit, GraphView::kMinimumReadableZoom, 1.0);
    mGraphView->scale(zoom, zoom);
    const QSizeF shown(view.width() / zoom, view.height() / zoom);
    const auto centre = [](double low, double length, double shownLength) {
        return shownLength >= length ? low + length / 2 : low + shownLength / 2;
    };
    mGraphView->centerOn(centre(nodes.left(), nodes.width(), shown.width()),
                         centre(nodes.top(), nodes.height(), shown.height()));
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
                                mScene->IdOf(node).toHtmlEscaped()),
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
    mThumbnails->SetPlane(CurrentPlane());
    mDisplay->Follow();
}

void StudioWindow::DropAttributesPageOf(Node* node) {
    if (mAttributesNode != node)
        return;
    delete mAttributesArea->takeWidget();
    mAttributesNode = nullptr;
}

void StudioWindow::UpdateUndoLabels() {
    const QString undo = QString::fromStdString(mEngine->GetUndoLabel());
    const QString redo = QString::fromStdString(mEngine->GetRedoLabel());
    mUndoAction->setText(undo.isEmpty() ? tr("&Undo") : tr("&Undo %1").arg(undo));
    mRedoAction->setText(redo.isEmpty() ? tr("&Redo") : tr("&Redo %1").arg(redo));
}

void StudioWindow::UpdateActions() {
    Node* selected = mScene->GetSelectedNode();
    const bool anySelected = !mScene->selectedItems().isEmpty();
    mCopyAction->setEnabled(anySelected);
    mDuplicateAction->setEnabled(anySelected);
    mPasteAction->setEnabled(mEditor->CanPaste());
    const NodeItem* selectedItem = selected != nullptr ? mScene->ItemFor(selected) : nullptr;
    mThumbnailAction->setEnabled(selectedItem != nullptr && selectedItem->CanShowThumbnail());
    mThumbnailAction->setChecked(selectedItem != nullptr && selectedItem->IsThumbnailWanted());
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
