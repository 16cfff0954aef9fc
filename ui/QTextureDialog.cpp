#include "ui/QTextureDialog.h"

#include <algorithm>
#include <vector>

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QShowEvent>
#include <QSignalBlocker>
#include <QThread>
#include <QVBoxLayout>

#include "host/Engine.h"
#include "host/Node.h"
#include "host/widgets/Manager.h"
#include "host/widgets/QColorButton.h"
#include "host/widgets/QDragSpinner.h"
#include "ui/QPreviewWidget.h"
#include "ui/QRenderTextureThread.h"
#include "ui/QTextureDialogUi.h"

namespace {

noisepp::TextureColor toTextureColor(const QColor& color) {
    return {static_cast<float>(color.redF()), static_cast<float>(color.greenF()),
            static_cast<float>(color.blueF()), static_cast<float>(color.alphaF())};
}

}  // namespace

QTextureDialog::QTextureDialog(QWidget* parent)
    : QDialog(parent), mUi(std::make_unique<QTextureDialogUi>()) {
    mUi->SetupUi(this);
    mPreviewWidget = new QPreviewWidget(this);
    mPreviewWidget->setObjectName("m_preview_widget");
    mPreviewWidget->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    mUi->m_preview_widget_qvlyaout->addWidget(mPreviewWidget, 0);

    mUi->m_keep_aspect_qcheck->setChecked(true);
    mUi->m_range_y_qspin->setEnabled(false);

    connect(mUi->m_target_qcombo, SIGNAL(currentIndexChanged(int)), this,
            SLOT(OnFocusNodeChanged(int)));
    for (QCheckBox* check : {mUi->m_keep_aspect_qcheck, mUi->m_seamless_qcheck})
        connect(check, SIGNAL(stateChanged(int)), this, SLOT(OnTextureInputChanged()));
    for (QDragSpinner* spinner :
         {mUi->m_start_x_qspin, mUi->m_start_y_qspin, mUi->m_range_x_qspin, mUi->m_range_y_qspin,
          mUi->m_fixed_z_qspin, mUi->m_background_size_qspin})
        connect(spinner, SIGNAL(valueChanged(double)), this, SLOT(OnTextureInputChanged()));
    for (QColorButton* button : {mUi->m_background_a_qcolor, mUi->m_background_b_qcolor})
        connect(button, SIGNAL(colorChanged(QColor)), this, SLOT(OnTextureInputChanged()));

    {
        const QSignalBlocker comboBlocker(mUi->m_target_qcombo);
        const QSignalBlocker colorABlocker(mUi->m_background_a_qcolor);
        const QSignalBlocker colorBBlocker(mUi->m_background_b_qcolor);
        mUi->m_target_qcombo->setCurrentIndex(mTargetMode);
        mUi->m_background_a_qcolor->setColor(QColor(255, 255, 255, 255));
        mUi->m_background_b_qcolor->setColor(QColor(192, 192, 192, 255));
    }
    Attach(FocusNode());
    RequestRender();
}

QTextureDialog::~QTextureDialog() {
    UnregisterManagerHandler();
    if (mTargetNode != nullptr && IsTargetAlive())
        mTargetNode->RemoveNodeListener(this);
}

void QTextureDialog::OnFocusNodeChanged(int index) {
    mTargetMode = index;
    Retarget(FocusNode());
}

void QTextureDialog::OnTextureInputChanged() {
    RequestRender();
}

void QTextureDialog::OnNodeEvent(Node* /*node*/, const NodeEvent& event) {
    // Only the target is listened to; an event still queued from a former target costs one
    // render at most.
    if (event.type == NodeEvent::kInputsChanged || event.type == NodeEvent::kOutputChanged)
        ScheduleRender();
}

void QTextureDialog::OnManagerEvent(unsigned int code, unsigned int /*parameter*/) {
    if (QThread::currentThread() != thread()) {
        QMetaObject::invokeMethod(
            this, [this, code] { OnManagerEvent(code, 0); }, Qt::QueuedConnection);
        return;
    }
    const bool followed = (code == Manager::kActiveNodeChanged && mTargetMode == kActiveNode) ||
                          (code == Manager::kDisplayNodeChanged && mTargetMode == kDisplayNode);
    if (followed)
        Retarget(FocusNode());
}

void QTextureDialog::showEvent(QShowEvent* event) {
    RegisterManagerHandler();
    // The host's focus may have moved while the dialog was closed and deaf to its events.
    if (Node* focus = FocusNode(); focus != mTargetNode)
        Retarget(focus);
    QDialog::showEvent(event);
}

void QTextureDialog::closeEvent(QCloseEvent* event) {
    UnregisterManagerHandler();
    // Closing only hides the dialog: the library keeps this instance for the next opening.
    QDialog::closeEvent(event);
}

void QTextureDialog::Attach(Node* node) {
    if (mTargetNode != nullptr && IsTargetAlive())
        mTargetNode->RemoveNodeListener(this);
    mTargetNode = node;
    mTargetEngine = node != nullptr ? node->GetEngine() : nullptr;
    if (mTargetNode != nullptr)
        mTargetNode->AddNodeListener(this);
}

void QTextureDialog::Retarget(Node* node) {
    Attach(node);
    // Deferred: a host may report a focus change while it holds its engine, which the render
    // thread may be waiting for while it holds the lock a render request needs.
    ScheduleRender();
}

Node* QTextureDialog::FocusNode() const {
    switch (mTargetMode) {
        case kActiveNode:
            return Manager::Get()->GetActiveNode();
        case kDisplayNode:
            return Manager::Get()->GetDisplayNode();
        default:
            return nullptr;
    }
}

void QTextureDialog::RequestRender() {
    QRenderTextureThread::Parameters parameters;
    QColor colorA;
    QColor colorB;
    {
        const QSignalBlocker blockers[] = {
            QSignalBlocker(mUi->m_keep_aspect_qcheck),
            QSignalBlocker(mUi->m_seamless_qcheck),
            QSignalBlocker(mUi->m_start_x_qspin),
            QSignalBlocker(mUi->m_start_y_qspin),
            QSignalBlocker(mUi->m_range_x_qspin),
            QSignalBlocker(mUi->m_range_y_qspin),
            QSignalBlocker(mUi->m_fixed_z_qspin),
            QSignalBlocker(mUi->m_background_a_qcolor),
            QSignalBlocker(mUi->m_background_b_qcolor),
            QSignalBlocker(mUi->m_background_size_qspin),
        };
        parameters.plane.keepAspect = mUi->m_keep_aspect_qcheck->isChecked();
        parameters.plane.seamless = mUi->m_seamless_qcheck->isChecked();
        parameters.plane.startX = static_cast<float>(mUi->m_start_x_qspin->value());
        parameters.plane.startY = static_cast<float>(mUi->m_start_y_qspin->value());
        parameters.plane.rangeX = static_cast<float>(mUi->m_range_x_qspin->value());
        parameters.plane.rangeY = static_cast<float>(mUi->m_range_y_qspin->value());
        parameters.plane.fixedZ = static_cast<float>(mUi->m_fixed_z_qspin->value());
        colorA = mUi->m_background_a_qcolor->color();
        colorB = mUi->m_background_b_qcolor->color();
        parameters.checkerSize = static_cast<int>(mUi->m_background_size_qspin->value());
        mUi->m_range_y_qspin->setEnabled(!parameters.plane.keepAspect);
    }
    parameters.backgroundA = toTextureColor(colorA);
    parameters.backgroundB = toTextureColor(colorB);
    // A target that left its engine is not rendered: its pointer may no longer be valid.
    parameters.node = IsTargetAlive() ? mTargetNode : nullptr;
    parameters.engine = mTargetEngine;
    mPreviewWidget->GetThread().Render(parameters, mPreviewWidget->size());
}

void QTextureDialog::ScheduleRender() {
    if (mRenderScheduled.exchange(true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            mRenderScheduled = false;
            RequestRender();
        },
        Qt::QueuedConnection);
}

bool QTextureDialog::IsTargetAlive() const {
    if (mTargetEngine == nullptr)
        return mTargetNode != nullptr;
    const std::vector<Node*> nodes = mTargetEngine->GetNodes();
    return std::find(nodes.begin(), nodes.end(), mTargetNode) != nodes.end();
}

void QTextureDialog::RegisterManagerHandler() {
    if (mManagerHandlerRegistered)
        return;
    Manager::Get()->RegisterDelegateEventHandler(
        Delegate2<unsigned int, unsigned int>(this, &QTextureDialog::OnManagerEvent));
    mManagerHandlerRegistered = true;
}

void QTextureDialog::UnregisterManagerHandler() {
    if (!mManagerHandlerRegistered)
        return;
    Manager::Get()->UnregisterDelegateEventHandler(
        Delegate2<unsigned int, unsigned int>(this, &QTextureDialog::OnManagerEvent));
    mManagerHandlerRegistered = false;
}
