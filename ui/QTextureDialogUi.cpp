#include "ui/QTextureDialogUi.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "host/widgets/QColorButton.h"
#include "host/widgets/QDragSpinner.h"

namespace {

constexpr int kSpinnerMinimumWidth = 60;

QDragSpinner* makeSpinner(QWidget* parent, const char* name, double minimum, double maximum,
                          double step, int decimals, double value, const QString& toolTip) {
    auto* spinner = new QDragSpinner(parent);
    spinner->setObjectName(name);
    spinner->setMinimumWidth(kSpinnerMinimumWidth);
    // Decimals first: QDoubleSpinBox rounds the range and the value to them.
    spinner->setDecimals(decimals);
    spinner->setRange(minimum, maximum);
    spinner->setSingleStep(step);
    spinner->setValue(value);
    spinner->setToolTip(toolTip);
    return spinner;
}

QLabel* makeLabel(QWidget* parent, const char* name, const QString& text) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(name);
    return label;
}

QHBoxLayout* makeRow(const char* name) {
    auto* row = new QHBoxLayout();
    row->setObjectName(name);
    return row;
}

QColorButton* makeColorButton(QWidget* parent, const char* name, const QColor& color,
                              const QString& toolTip) {
    auto* button = new QColorButton(parent);
    button->setObjectName(name);
    button->setMinimumSize(60, 20);
    button->setColor(color);
    button->setToolTip(toolTip);
    return button;
}

}  // namespace

void QTextureDialogUi::SetupUi(QDialog* dialog) {
    dialog->setObjectName("QTextureDialog");
    dialog->setWindowTitle(QDialog::tr("Texture Preview"));
    dialog->resize(396, 450);

    m_qvlayout = new QVBoxLayout(dialog);
    m_qvlayout->setObjectName("m_qvlayout");
    m_preview_widget_qvlyaout = new QVBoxLayout();
    m_preview_widget_qvlyaout->setObjectName("m_preview_widget_qvlyaout");
    m_qvlayout->addLayout(m_preview_widget_qvlyaout);

    m_settings_qgroupbox = new QGroupBox(QDialog::tr("Settings"), dialog);
    m_settings_qgroupbox->setObjectName("m_settings_qgroupbox");
    m_qvlayout->addWidget(m_settings_qgroupbox);
    QWidget* box = m_settings_qgroupbox;
    m_qglayout = new QGridLayout(box);
    m_qglayout->setObjectName("m_qglayout");

    m_target_qlable = makeLabel(box, "m_target_qlable", QDialog::tr("Target"));
    m_target_qhlayout = makeRow("m_target_qhlayout");
    m_target_qcombo = new QComboBox(box);
    m_target_qcombo->setObjectName("m_target_qcombo");
    m_target_qcombo->addItem(QDialog::tr("Active Texture"));
    m_target_qcombo->addItem(QDialog::tr("Display Texture"));
    m_target_qcombo->setToolTip(
        QDialog::tr("Preview the node in focus or the node whose result is displayed"));
    m_target_qhlayout->addWidget(m_target_qcombo);
    m_qglayout->addWidget(m_target_qlable, 0, 0);
    m_qglayout->addLayout(m_target_qhlayout, 0, 1);

    m_start_qlabel = makeLabel(box, "m_start_qlabel", QDialog::tr("Start"));
    m_range_x_qhlayout = makeRow("m_range_x_qhlayout");
    m_start_x_qspin = makeSpinner(box, "m_start_x_qspin", -1000.0, 1000.0, 0.1, 1, 0.0,
                                  QDialog::tr("Texture x at the left edge"));
    m_start_y_qspin = makeSpinner(box, "m_start_y_qspin", -1000.0, 1000.0, 0.1, 1, 0.0,
                                  QDialog::tr("Texture y at the bottom edge"));
    m_range_x_qhlayout->addWidget(m_start_x_qspin);
    m_range_x_qhlayout->addWidget(m_start_y_qspin);
    m_qglayout->addWidget(m_start_qlabel, 1, 0);
    m_qglayout->addLayout(m_range_x_qhlayout, 1, 1);

    m_range_qlabel = makeLabel(box, "m_range_qlabel", QDialog::tr("Range"));
    m_range_y_qhlayout = makeRow("m_range_y_qhlayout");
    m_range_x_qspin = makeSpinner(box, "m_range_x_qspin", 0.0, 1000.0, 0.1, 1, 1.0,
                                  QDialog::tr("Width of the shown part of the texture"));
    m_range_y_qspin = makeSpinner(box, "m_range_y_qspin", 0.0, 1000.0, 0.1, 1, 1.0,
                                  QDialog::tr("Height of the shown part of the texture"));
    m_keep_aspect_qcheck = new QCheckBox(QDialog::tr("Keep Aspect"), box);
    m_keep_aspect_qcheck->setObjectName("m_keep_aspect_qcheck");
    m_keep_aspect_qcheck->setChecked(true);
    m_keep_aspect_qcheck->setToolTip(
        QDialog::tr("Derive the height from the width and the preview's proportions"));
    m_range_y_qhlayout->addWidget(m_range_x_qspin);
    m_range_y_qhlayout->addWidget(m_range_y_qspin);
    m_range_y_qhlayout->addWidget(m_keep_aspect_qcheck);
    m_qglayout->addWidget(m_range_qlabel, 2, 0);
    m_qglayout->addLayout(m_range_y_qhlayout, 2, 1);

    m_fixed_z_qlabel = makeLabel(box, "m_fixed_z_qlabel", QDialog::tr("Fixed Z"));
    m_fixed_z_qhlayout = makeRow("m_fixed_z_qhlayout");
    m_fixed_z_qspin = makeSpinner(box, "m_fixed_z_qspin", -1000.0, 1000.0, 0.1, 1, 0.0,
                                  QDialog::tr("Texture z of the shown plane"));
    m_seamless_qcheck = new QCheckBox(box);
    m_seamless_qcheck->setObjectName("m_seamless_qcheck");
    m_seamless_qcheck->setToolTip(QDialog::tr("Blend the edges so that the image tiles"));
    m_seamless_qlabel = makeLabel(box, "m_seamless_qlabel", QDialog::tr("Seamless"));
    m_seamless_qlabel->setBuddy(m_seamless_qcheck);
    m_fixed_z_qhlayout->addWidget(m_fixed_z_qspin);
    m_fixed_z_qhlayout->addWidget(m_seamless_qcheck);
    m_fixed_z_qhlayout->addWidget(m_seamless_qlabel);
    m_fixed_z_qhlayout->addStretch();
    m_qglayout->addWidget(m_fixed_z_qlabel, 3, 0);
    m_qglayout->addLayout(m_fixed_z_qhlayout, 3, 1);

    m_range_qlabel_2 = makeLabel(box, "m_range_qlabel_2", QDialog::tr("Background"));
    m_range_y_qhlayout_2 = makeRow("m_range_y_qhlayout_2");
    m_background_a_qcolor =
        makeColorButton(box, "m_background_a_qcolor", QColor(255, 255, 255, 255),
                        QDialog::tr("Color of the odd checker cells"));
    m_background_b_qcolor =
        makeColorButton(box, "m_background_b_qcolor", QColor(192, 192, 192, 255),
                        QDialog::tr("Color of the even checker cells"));
    m_background_size_qspin = makeSpinner(box, "m_background_size_qspin", 1.0, 256.0, 1.0, 0, 5.0,
                                          QDialog::tr("Checker cell size in pixels"));
    m_range_y_qhlayout_2->addWidget(m_background_a_qcolor);
    m_range_y_qhlayout_2->addWidget(m_background_b_qcolor);
    m_range_y_qhlayout_2->addWidget(m_background_size_qspin);
    m_qglayout->addWidget(m_range_qlabel_2, 4, 0);
    m_qglayout->addLayout(m_range_y_qhlayout_2, 4, 1);
}
