#include "ui/QTextureGradientWidget.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "host/Engine.h"
#include "host/GradientNode.h"
#include "host/Node.h"
#include "host/widgets/QGradientEditor.h"

namespace {

constexpr int kPageWidth = 305;
constexpr int kPageHeight = 170;
const char* const kUndoLabel = "Gradient Set Color";

}  // namespace

QTextureGradientWidget::QTextureGradientWidget(QWidget* parent, Node* node,
                                               NodeInterface* interface)
    : QWidget(parent),
      mNode(node),
      mGradientNode(node != nullptr ? node->GetGradientNode() : nullptr),
      mInterface(interface) {
    setObjectName("QTextureGradientWidget");
    resize(kPageWidth, kPageHeight);
    setMinimumWidth(kPageWidth);
    setMaximumWidth(kPageWidth);
    // On its own the page floats as a tool window; given a parent it is embedded (a tool flag
    // would survive the host adding it to a layout of that parent and tear it out as a window).
    if (parent == nullptr)
        setWindowFlags(Qt::Tool);

    auto* verticalLayout = new QVBoxLayout(this);
    verticalLayout->setObjectName("verticalLayout_1");
    auto* titleRow = new QHBoxLayout();
    titleRow->setObjectName("horlay_title");
    auto* title = new QLabel(tr("Gradient"), this);
    title->setObjectName("m_title_0");
    title->setStyleSheet("background-color: rgba(0, 0, 0, 10);");
    titleRow->addWidget(title);
    verticalLayout->addLayout(titleRow);
    auto* gradientLayout = new QVBoxLayout();
    gradientLayout->setObjectName("m_gradient_layout");
    gradientLayout->setContentsMargins(0, 0, 0, 0);
    verticalLayout->addLayout(gradientLayout);

    mEditor = new QGradientEditor(this, QGradientEditor::kShowInterpolation);
    mEditor->setObjectName("m_gradient_editor");
    gradientLayout->addWidget(mEditor);

    connect(mEditor, SIGNAL(gradientChanged()), this, SLOT(OnGradientChanged()));
    connect(mEditor, SIGNAL(colorPressed()), this, SLOT(OnDragWidgetPressed()));
    connect(mEditor, SIGNAL(colorReleased()), this, SLOT(OnDragWidgetReleased()));
    connect(this, &QTextureGradientWidget::ProcessEventSignal, this,
            &QTextureGradientWidget::OnProcessEventSignal);
    connect(this, &QTextureGradientWidget::ProcessUpdateGradientSignal, this,
            &QTextureGradientWidget::OnProcessUpdateGradientSignal);

    if (mGradientNode == nullptr) {
        mEditor->setEnabled(false);
        return;
    }
    ReloadEditor();
    mNode->AddNodeListener(this);
}

QTextureGradientWidget::~QTextureGradientWidget() {
    if (mGradientNode == nullptr)
        return;
    if (mGestureOpen)
        OnDragWidgetReleased();
    mNode->RemoveNodeListener(this);
}

void QTextureGradientWidget::OnNodeEvent(Node* /*node*/, const NodeEvent& event) {
    if (event.type == NodeEvent::kParameterChanged && event.code == NodeEvent::kGradientChangedCode)
        emit ProcessUpdateGradientSignal();
    else
        emit ProcessEventSignal();
}

void QTextureGradientWidget::OnProcessEventSignal() {
    ReloadEditor();
}

void QTextureGradientWidget::OnProcessUpdateGradientSignal() {
    ReloadEditor();
}

void QTextureGradientWidget::OnGradientChanged() {
    if (mGradientNode == nullptr)
        return;
    GradientNode::SetGradient(mNode, mEditor->getVertexGradient());
}

void QTextureGradientWidget::OnDragWidgetPressed() {
    if (mGradientNode == nullptr)
        return;
    Engine* engine = mNode->GetEngine();
    Engine::StateRecorderBegin(engine, this, "QTextureGradientWidget::OnDragWidgetPressed");
    Engine::StateRecorderPut(engine,
                             new GradientNode::GradientStateContainer(mNode, mGradientNode));
    mGestureOpen = true;
}

void QTextureGradientWidget::OnDragWidgetReleased() {
    if (mGradientNode == nullptr)
        return;
    Engine::StateRecorderAccept(mNode->GetEngine(), this, kUndoLabel);
    mGestureOpen = false;
}

void QTextureGradientWidget::ReloadEditor() {
    if (mGradientNode == nullptr)
        return;
    const VertexGradient gradient = mGradientNode->GetCopyGradient();
    // The node echoes every edit made here; reloading an equal gradient would only disturb a
    // drag in progress.
    if (mEditor->getVertexGradient() == gradient)
        return;
    const QSignalBlocker blocker(mEditor);
    mEditor->setVertexGradient(gradient);
}
