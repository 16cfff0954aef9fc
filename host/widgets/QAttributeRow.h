#pragma once

#include <vector>

#include <QWidget>

#include "host/Node.h"
#include "host/widgets/QNodeAttributesWidget.h"

class Attribute;
class QDragSpinner;
class QSlider;

// Internal to the attributes page: the editors of one attribute, laid out in a row. Reads the
// attribute on Refresh and hands every user edit to the page.
class QAttributeRow : public QWidget {
    Q_OBJECT

public:
    QAttributeRow(QNodeAttributesWidget* page, const Attribute& attribute,
                  const Node::CombinedAttribute* combined,
                  const QNodeAttributesWidget::AdditionalInfo& info, bool readOnly);

    const Attribute& GetAttribute() const { return mAttribute; }
    /// The text shown in the row's label.
    QString GetLabel() const { return mLabel; }
    /// Shows the attribute's value; a row whose inplug is linked is shown disabled.
    void Refresh(bool linked);

private:
    void BuildNumber(const QNodeAttributesWidget::AdditionalInfo& info);
    void BuildSpinners(const std::vector<QString>& names,
                       const QNodeAttributesWidget::AdditionalInfo& info);
    void BuildColor(bool withOpacity);
    void BuildMesh();
    QDragSpinner* MakeSpinner(const QNodeAttributesWidget::AdditionalInfo& info);
    /// Sends the spinners' values (a number, point or frame) to the page.
    void ApplySpinners();
    void Apply(const NodeValue& value);

    QNodeAttributesWidget* mPage;
    const Attribute& mAttribute;
    QString mLabel;
    QString mToolTip;
    bool mEditable;
    bool mTracking;
    std::vector<QDragSpinner*> mSpinners;
    QWidget* mEditor = nullptr;  // the single editor of the other kinds
    std::vector<QWidget*> mMeshFields;
    QSlider* mSlider = nullptr;
    double mSliderMinimum = 0.0;
    double mSliderMaximum = 1.0;
};
