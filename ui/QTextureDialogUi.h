#pragma once

class QCheckBox;
class QColorButton;
class QComboBox;
class QDialog;
class QDragSpinner;
class QGridLayout;
class QGroupBox;
class QHBoxLayout;
class QLabel;
class QVBoxLayout;

/// The widgets of the texture preview dialog and their layout, made in one step by SetupUi.
/// Every widget carries an object name so that hosts, style sheets and tests can find it.
class QTextureDialogUi {
public:
    /// Builds the widgets as children of `dialog` with their ranges and defaults, sets the
    /// dialog's title and initial size. The preview area is left empty for the caller.
    void SetupUi(QDialog* dialog);

    QVBoxLayout* m_qvlayout = nullptr;
    QVBoxLayout* m_preview_widget_qvlyaout = nullptr;
    QGroupBox* m_settings_qgroupbox = nullptr;
    QGridLayout* m_qglayout = nullptr;

    QLabel* m_target_qlable = nullptr;
    QHBoxLayout* m_target_qhlayout = nullptr;
    QComboBox* m_target_qcombo = nullptr;

    QLabel* m_start_qlabel = nullptr;
    QHBoxLayout* m_range_x_qhlayout = nullptr;
    QDragSpinner* m_start_x_qspin = nullptr;
    QDragSpinner* m_start_y_qspin = nullptr;

    QLabel* m_range_qlabel = nullptr;
    QHBoxLayout* m_range_y_qhlayout = nullptr;
    QDragSpinner* m_range_x_qspin = nullptr;
    QDragSpinner* m_range_y_qspin = nullptr;
    QCheckBox* m_keep_aspect_qcheck = nullptr;

    QLabel* m_fixed_z_qlabel = nullptr;
    QHBoxLayout* m_fixed_z_qhlayout = nullptr;
    QDragSpinner* m_fixed_z_qspin = nullptr;
    QCheckBox* m_seamless_qcheck = nullptr;
    QLabel* m_seamless_qlabel = nullptr;

    QLabel* m_range_qlabel_2 = nullptr;
    QHBoxLayout* m_range_y_qhlayout_2 = nullptr;
    QColorButton* m_background_a_qcolor = nullptr;
    QColorButton* m_background_b_qcolor = nullptr;
    QDragSpinner* m_background_size_qspin = nullptr;
};
