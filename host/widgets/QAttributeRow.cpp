#include "host/widgets/QAttributeRow.h"

#include <algorithm>
#include <cmath>

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QSlider>
#include <QSpinBox>

#include "host/Attribute.h"
#include "host/widgets/QColorButton.h"
#include "host/widgets/QDragSpinner.h"

namespace {

constexpr int kSliderResolution = 1000;

/// "range_low" reads as "Range low".
QString Readable(const std::string& name) {
    QString text = QString::fromStdString(name);
    text.replace('_', ' ');
    if (!text.isEmpty())
        text[0] = text[0].toUpper();
    return text;
}

QColor ToQColor(const Rgbo& c) {
    return QColor::fromRgbF(static_cast<float>(c.red), static_cast<float>(c.green),
                            static_cast<float>(c.blue), static_cast<float>(c.opacity));
}

}  // namespace

QAttributeRow::QAttributeRow(QNodeAttributesWidget* page, const Attribute& attribute,
                             const Node::CombinedAttribute* combined,
                             const QNodeAttributesWidget::AdditionalInfo& info, bool readOnly)
    : QWidget(page),
      mPage(page),
      mAttribute(attribute),
      mLabel(info.label.empty() ? Readable(attribute.GetName())
                                : QString::fromStdString(info.label)),
      mEditable(info.enabled && !readOnly),
      mTracking(info.tracking) {
    setObjectName(QString::fromStdString("m_" + attribute.GetName() + "_row"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    mToolTip = QString::fromStdString(info.toolTip);
    setToolTip(mToolTip);

    std::vector<QString> names;
    if (combined != nullptr)
        for (const auto& name : combined->componentNames)
            names.push_back(Readable(name));
    switch (attribute.GetKind()) {
        case Attribute::kNumber:
            BuildNumber(info);
            break;
        case Attribute::kPoint:
            if (names.size() != 2)
                names = {"X", "Y"};
            BuildSpinners(names, info);
            break;
        case Attribute::kFrame:
            if (names.size() != 4)
                names = {tr("Position X"), tr("Position Y"), tr("Size X"), tr("Size Y")};
            BuildSpinners(names, info);
            break;
        case Attribute::kBool: {
            auto* check = new QCheckBox(this);
            connect(check, &QCheckBox::toggled, this,
                    [this](bool on) { Apply(NodeValue::Bool(on)); });
            mEditor = check;
            break;
        }
        case Attribute::kChoice: {
            auto* combo = new QComboBox(this);
            for (const auto& item : attribute.GetItems())
                combo->addItem(QString::fromStdString(item));
            connect(combo, &QComboBox::activated, this, [this](int index) {
                const auto& items = mAttribute.GetItems();
                if (index >= 0 && index < static_cast<int>(items.size()))
                    Apply(NodeValue::Choice(index, items[index]));
            });
            mEditor = combo;
            break;
        }
        case Attribute::kColor:
            BuildColor(combined != nullptr && combined->kind == Node::CombinedAttribute::kRgbo);
            break;
        case Attribute::kMesh:
            BuildMesh();
            break;
        case Attribute::kText:
        case Attribute::kFile: {
            auto* line = new QLineEdit(this);
            connect(line, &QLineEdit::editingFinished, this, [this, line] {
                if (line->text().toStdString() != mAttribute.GetValue().GetText())
                    Apply(NodeValue::Text(line->text().toStdString()));
            });
            mEditor = line;
            break;
        }
    }
    if (mEditor != nullptr)
        layout->addWidget(mEditor, 1);
    for (QWidget* field : mMeshFields)
        layout->addWidget(field);
    setEnabled(mEditable);
    setVisible(info.visible);
}

QDragSpinner* QAttributeRow::MakeSpinner(const QNodeAttributesWidget::AdditionalInfo& info) {
    auto* spinner = new QDragSpinner(this);
    spinner->setDecimals(std::max(0, mAttribute.GetDecimals() + info.extraDecimals));
    spinner->setRange(mAttribute.GetMinimum(), mAttribute.GetMaximum());
    spinner->setSingleStep(mAttribute.GetStep() > 0.0 ? mAttribute.GetStep() : 1.0);
    spinner->setLogarithmic(info.frequency);
    spinner->setSuffix(QString::fromStdString(info.suffix));
    spinner->setMinimumWidth(60);
    // Typing reaches the node once, when the user confirms, not with every key.
    spinner->setKeyboardTracking(false);
    connect(spinner, &QDragSpinner::dragStarted, this, [this] { mPage->BeginGesture(mAttribute); });
    connect(spinner, &QDragSpinner::dragFinished, this, [this] {
        if (!mTracking)
            ApplySpinners();
        mPage->EndGesture(mAttribute);
    });
    connect(spinner, &QDragSpinner::valueChanged, this, [this, spinner] {
        if (mTracking || !spinner->isDragging())
            ApplySpinners();
    });
    mSpinners.push_back(spinner);
    return spinner;
}

void QAttributeRow::BuildNumber(const QNodeAttributesWidget::AdditionalInfo& info) {
    auto* layout = static_cast<QHBoxLayout*>(this->layout());
    QDragSpinner* spinner = MakeSpinner(info);
    layout->addWidget(spinner, 1);
    if (!info.slider || !(info.sliderMaximum > info.sliderMinimum))
        return;
    mSliderMinimum = info.sliderMinimum;
    mSliderMaximum = info.sliderMaximum;
    mSlider = new QSlider(Qt::Horizontal, this);
    mSlider->setRange(0, kSliderResolution);
    layout->addWidget(mSlider, 2);
    connect(mSlider, &QSlider::sliderPressed, this, [this] { mPage->BeginGesture(mAttribute); });
    connect(mSlider, &QSlider::sliderReleased, this, [this] {
        if (!mTracking)
            ApplySpinners();
        mPage->EndGesture(mAttribute);
    });
    connect(mSlider, &QSlider::valueChanged, this, [this, spinner](int position) {
        const double t = static_cast<double>(position) / kSliderResolution;
        const QSignalBlocker block(spinner);
        spinner->setValue(mSliderMinimum + t * (mSliderMaximum - mSliderMinimum));
        if (mTracking || !mSlider->isSliderDown())
            ApplySpinners();
    });
}

void QAttributeRow::BuildSpinners(const std::vector<QString>& names,
                                  const QNodeAttributesWidget::AdditionalInfo& info) {
    auto* layout = static_cast<QHBoxLayout*>(this->layout());
    for (const QString& name : names) {
        QDragSpinner* spinner = MakeSpinner(info);
        spinner->setToolTip(name);
        spinner->setAccessibleName(name);
        layout->addWidget(spinner, 1);
    }
}

void QAttributeRow::BuildColor(bool withOpacity) {
    auto* button = new QColorButton(this);
    button->setShowAlpha(withOpacity);
    button->setMinimumSize(60, 20);
    connect(button, &QColorButton::colorPressed, this, [this] { mPage->BeginGesture(mAttribute); });
    connect(button, &QColorButton::colorReleased, this, [this] { mPage->EndGesture(mAttribute); });
    connect(button, &QColorButton::colorChanged, this, [this, withOpacity](const QColor& color) {
        Rgbo value{color.redF(), color.greenF(), color.blueF(), color.alphaF()};
        if (!withOpacity)
            value.opacity = mAttribute.GetValue().GetColor().opacity;
        Apply(NodeValue::Color(value));
    });
    mEditor = button;
}

void QAttributeRow::BuildMesh() {
    auto* model = new QSpinBox(this);
    model->setRange(-1, 9999);
    model->setSpecialValueText(tr("none"));
    model->setToolTip(tr("Model index (none: no mesh)"));
    auto* submesh = new QSpinBox(this);
    submesh->setRange(-1, 9999);
    submesh->setSpecialValueText(tr("all"));
    submesh->setToolTip(tr("Sub-mesh index (all: every sub-mesh of the model)"));
    for (QSpinBox* field : {model, submesh})
        field->setKeyboardTracking(false);
    auto* flag = new QCheckBox(this);
    flag->setToolTip(tr("Mesh flag"));
    const auto apply = [this, model, submesh, flag] {
        Apply(NodeValue::Mesh({model->value(), submesh->value(), flag->isChecked()}));
    };
    connect(model, &QSpinBox::valueChanged, this, apply);
    connect(submesh, &QSpinBox::valueChanged, this, apply);
    connect(flag, &QCheckBox::toggled, this, apply);
    mMeshFields = {model, submesh, flag};
}

void QAttributeRow::ApplySpinners() {
    switch (mAttribute.GetKind()) {
        case Attribute::kNumber:
            Apply(NodeValue::Number(mSpinners[0]->value()));
            break;
        case Attribute::kPoint:
            Apply(NodeValue::FromPoint({mSpinners[0]->value(), mSpinners[1]->value()}));
            break;
        case Attribute::kFrame:
            Apply(NodeValue::FromFrame({mSpinners[0]->value(), mSpinners[1]->value(),
                                        mSpinners[2]->value(), mSpinners[3]->value()}));
            break;
        default:
            break;
    }
}

void QAttributeRow::Apply(const NodeValue& value) {
    // A refused value is put back by the page, which knows whether the row is linked.
    mPage->Apply(mAttribute, value);
}

void QAttributeRow::Refresh(bool linked) {
    const NodeValue& value = mAttribute.GetValue();
    const auto setSpinners = [this](std::initializer_list<double> values) {
        std::size_t i = 0;
        for (double v : values) {
            if (i >= mSpinners.size())
                break;
            const QSignalBlocker block(mSpinners[i]);
            mSpinners[i++]->setValue(v);
        }
    };
    switch (mAttribute.GetKind()) {
        case Attribute::kNumber:
            setSpinners({value.GetNumber()});
            if (mSlider != nullptr) {
                const QSignalBlocker block(mSlider);
                const double t =
                    (value.GetNumber() - mSliderMinimum) / (mSliderMaximum - mSliderMinimum);
                mSlider->setValue(
                    static_cast<int>(std::lround(std::clamp(t, 0.0, 1.0) * kSliderResolution)));
            }
            break;
        case Attribute::kPoint:
            setSpinners({value.GetPoint().x, value.GetPoint().y});
            break;
        case Attribute::kFrame: {
            const Frame& f = value.GetFrame();
            setSpinners({f.positionX, f.positionY, f.sizeX, f.sizeY});
            break;
        }
        case Attribute::kBool: {
            auto* check = static_cast<QCheckBox*>(mEditor);
            const QSignalBlocker block(check);
            check->setChecked(value.GetBool());
            break;
        }
        case Attribute::kChoice: {
            auto* combo = static_cast<QComboBox*>(mEditor);
            const QSignalBlocker block(combo);
            combo->setCurrentIndex(value.GetChoiceIndex());
            break;
        }
        case Attribute::kColor: {
            auto* button = static_cast<QColorButton*>(mEditor);
            const QSignalBlocker block(button);
            button->setColor(ToQColor(value.GetColor()));
            break;
        }
        case Attribute::kMesh: {
            const MeshReference& mesh = value.GetMesh();
            for (QWidget* field : mMeshFields)
                field->blockSignals(true);
            static_cast<QSpinBox*>(mMeshFields[0])->setValue(mesh.model);
            static_cast<QSpinBox*>(mMeshFields[1])->setValue(mesh.submesh);
            static_cast<QCheckBox*>(mMeshFields[2])->setChecked(mesh.flag);
            for (QWidget* field : mMeshFields)
                field->blockSignals(false);
            break;
        }
        case Attribute::kText:
        case Attribute::kFile: {
            auto* line = static_cast<QLineEdit*>(mEditor);
            const QSignalBlocker block(line);
            line->setText(QString::fromStdString(value.GetText()));
            break;
        }
    }
    setEnabled(mEditable && !linked);
    setToolTip(linked ? tr("Driven by a link into this attribute") : mToolTip);
}
