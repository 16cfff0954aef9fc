#include "host/widgets/QNodeAttributesWidget.h"

#include <QAction>
#include <QGridLayout>
#include <QLabel>
#include <QMetaObject>
#include <QPointer>

#include "host/Attribute.h"
#include "host/Engine.h"
#include "host/Node.h"
#include "host/widgets/QAttributeRow.h"

namespace {

QNodeAttributesWidget::AdditionalInfo FromAttribute(const Attribute& attribute) {
    QNodeAttributesWidget::AdditionalInfo record;
    record.label = attribute.GetDisplayHint().label;
    record.frequency = attribute.GetDisplayHint().frequency;
    record.toolTip = attribute.GetDescription();
    return record;
}

}  // namespace

QNodeAttributesWidget::QNodeAttributesWidget(QWidget* parent, Node* node, NodeInterface* interface,
                                             const AdditionalInfo* info, bool readOnly)
    : QWidget(parent), mNode(node), mInterface(interface) {
    setObjectName("QNodeAttributesWidget");
    mLayout = new QGridLayout(this);
    mLayout->setColumnStretch(1, 1);
    if (mNode == nullptr) {
        mLayout->addWidget(new QLabel(tr("No node"), this), 0, 0);
        return;
    }

    const auto& attributes = mNode->GetAttributes();
    const auto& combined = mNode->GetCombinedAttributes();
    int gridRow = 0;
    for (const auto& attribute : attributes) {
        const unsigned id = attribute->GetId();
        const Node::CombinedAttribute* group = nullptr;
        for (const auto& candidate : combined)
            if (candidate.attributeId == id)
                group = &candidate;
        // The caller's array has one record per attribute id; without one the attribute's
        // own hint and description present it.
        const AdditionalInfo record =
            info != nullptr && id < attributes.size() ? info[id] : FromAttribute(*attribute);
        auto* row = new QAttributeRow(this, *attribute, group, record, readOnly);
        auto* label = new QLabel(row->GetLabel(), this);
        label->setObjectName(QString::fromStdString("m_" + attribute->GetName() + "_qlabel"));
        label->setBuddy(row);
        label->setVisible(record.visible);
        label->setToolTip(row->toolTip());
        if (row->isEnabled()) {
            // Right click on a label offers the attribute's default back.
            auto* reset = new QAction(tr("Reset to Default"), label);
            const Attribute* target = attribute.get();
            connect(reset, &QAction::triggered, this,
                    [this, target] { Apply(*target, target->GetDefault()); });
            label->addAction(reset);
            label->setContextMenuPolicy(Qt::ActionsContextMenu);
        }
        mLayout->addWidget(label, gridRow, 0);
        mLayout->addWidget(row, gridRow, 1);
        ++gridRow;
        mRows.push_back(row);
    }
    mLayout->setRowStretch(gridRow, 1);
    Refresh();
    mNode->AddNodeListener(this);
}

QNodeAttributesWidget::~QNodeAttributesWidget() {
    if (mNode != nullptr)
        mNode->RemoveNodeListener(this);
}

int QNodeAttributesWidget::GetRowCount() const {
    return static_cast<int>(mRows.size());
}

QWidget* QNodeAttributesWidget::GetRowWidget(unsigned attributeId) const {
    for (QAttributeRow* row : mRows)
        if (row->GetAttribute().GetId() == attributeId)
            return row;
    return nullptr;
}

QString QNodeAttributesWidget::GetRowLabel(unsigned attributeId) const {
    for (QAttributeRow* row : mRows)
        if (row->GetAttribute().GetId() == attributeId)
            return row->GetLabel();
    return {};
}

void QNodeAttributesWidget::Refresh() {
    Engine* engine = mNode != nullptr ? mNode->GetEngine() : nullptr;
    for (QAttributeRow* row : mRows) {
        const unsigned inplug = mNode->GetInplugIdFromAttributeId(row->GetAttribute().GetId());
        const bool linked = engine != nullptr && engine->FindLinkTo(mNode, inplug) != nullptr;
        row->Refresh(linked);
    }
}

void QNodeAttributesWidget::OnNodeEvent(Node* node, const NodeEvent& event) {
    if (node != mNode || event.type != NodeEvent::kInputsChanged)
        return;
    // Events arrive on the thread that made the change; the rows are refreshed on ours.
    QMetaObject::invokeMethod(this, &QNodeAttributesWidget::Refresh, Qt::AutoConnection);
}

bool QNodeAttributesWidget::Apply(const Attribute& attribute, const NodeValue& value) {
    std::string error;
    bool accepted = false;
    if (Engine* engine = mNode->GetEngine()) {
        // A step of its own, or part of the gesture's step when one is open.
        const std::string label = "Set " + attribute.GetName();
        Engine::StateRecorderBegin(engine, this, label);
        accepted = engine->SetAttributeValue(mNode, attribute.GetId(), value, &error);
        Engine::StateRecorderAccept(engine, this, label);
    } else {
        error = attribute.Validate(value);
        accepted = error.empty();
        if (accepted) {
            mNode->GetAttribute(attribute.GetId())->SetValue(value);
            mNode->ProcessEvent(NodeEvent::kInputsChanged, 0);
        } else {
            error = "attribute '" + attribute.GetName() + "' " + error;
        }
    }
    if (!accepted) {
        Refresh();
        emit editRejected(QString::fromStdString(error));
    }
    return accepted;
}

void QNodeAttributesWidget::BeginGesture(const Attribute& attribute) {
    if (Engine* engine = mNode->GetEngine())
        Engine::StateRecorderBegin(engine, &attribute, "Set " + attribute.GetName());
}

void QNodeAttributesWidget::EndGesture(const Attribute& attribute) {
    if (Engine* engine = mNode->GetEngine())
        Engine::StateRecorderAccept(engine, &attribute, "Set " + attribute.GetName());
}
