// Covers: dialog widgets and defaults, keep aspect, compositing, node following, events, resizing.

#include <memory>
#include <mutex>

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QImage>
#include <QLayout>
#include <QPixmap>

#include <gtest/gtest.h>

#include "host/Engine.h"
#include "host/widgets/Manager.h"
#include "host/widgets/QColorButton.h"
#include "host/widgets/QDragSpinner.h"
#include "noisepp/modules/ConstantModule.h"
#include "tests/ui/UiTestSupport.h"
#include "ui/QPreviewWidget.h"
#include "ui/QTextureDialog.h"

namespace {

using uitest::SpinUntil;

/// Nodes live in the process-wide engine, which the host manager follows.
class TextureDialogTest : public ::testing::Test {
protected:
    void TearDown() override {
        Manager::Get()->SetActiveNode(nullptr);
        Manager::Get()->SetDisplayNode(nullptr);
        Engine::Get()->Clear();
    }

    /// A node publishing one colour everywhere; `module` (optional) receives its module.
    Node* AddConstant(const std::string& id, const noisepp::TextureColor& color,
                      noisepp::ConstantModule** module = nullptr) {
        auto constant = std::make_unique<noisepp::ConstantModule>();
        constant->setColor(color);
        if (module != nullptr)
            *module = constant.get();
        return Engine::Get()->AddNode(
            std::make_unique<uitest::ProbeTextureNode>(std::move(constant)), id);
    }

    template <class Widget>
    static Widget* Find(const QTextureDialog& dialog, const char* name) {
        auto* widget = dialog.findChild<Widget*>(name);
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }

    /// Waits until the preview shows an image of its own size whose pixel (x, y) is `expected`.
    static bool WaitForPixel(QPreviewWidget* preview, int x, int y, QRgb expected) {
        return SpinUntil([&] {
            const QPixmap& pixmap = preview->GetPixmap();
            if (pixmap.isNull() || pixmap.size() != preview->size())
                return false;
            return pixmap.toImage().pixel(x, y) == expected;
        });
    }
};

TEST_F(TextureDialogTest, SettingsHaveTheirNamesRangesAndDefaults) {
    QTextureDialog dialog;
    EXPECT_EQ(dialog.windowTitle(), "Texture Preview");
    EXPECT_EQ(dialog.size(), QSize(396, 450));

    auto* combo = Find<QComboBox>(dialog, "m_target_qcombo");
    ASSERT_EQ(combo->count(), 2);
    EXPECT_EQ(combo->itemText(0), "Active Texture");
    EXPECT_EQ(combo->itemText(1), "Display Texture");
    EXPECT_EQ(combo->currentIndex(), 0);

    struct SpinnerRow {
        const char* name;
        double minimum, maximum, step, value;
        int decimals;
    };
    for (const SpinnerRow& row : {SpinnerRow{"m_start_x_qspin", -1000, 1000, 0.1, 0, 1},
                                  SpinnerRow{"m_start_y_qspin", -1000, 1000, 0.1, 0, 1},
                                  SpinnerRow{"m_range_x_qspin", 0, 1000, 0.1, 1, 1},
                                  SpinnerRow{"m_range_y_qspin", 0, 1000, 0.1, 1, 1},
                                  SpinnerRow{"m_fixed_z_qspin", -1000, 1000, 0.1, 0, 1},
                                  SpinnerRow{"m_background_size_qspin", 1, 256, 1, 5, 0}}) {
        SCOPED_TRACE(row.name);
        auto* spinner = Find<QDragSpinner>(dialog, row.name);
        ASSERT_NE(spinner, nullptr);
        EXPECT_DOUBLE_EQ(spinner->minimum(), row.minimum);
        EXPECT_DOUBLE_EQ(spinner->maximum(), row.maximum);
        EXPECT_DOUBLE_EQ(spinner->singleStep(), row.step);
        EXPECT_DOUBLE_EQ(spinner->value(), row.value);
        EXPECT_EQ(spinner->decimals(), row.decimals);
        EXPECT_GE(spinner->minimumWidth(), 60);
    }
    EXPECT_TRUE(Find<QCheckBox>(dialog, "m_keep_aspect_qcheck")->isChecked());
    EXPECT_FALSE(Find<QCheckBox>(dialog, "m_seamless_qcheck")->isChecked());
    EXPECT_EQ(Find<QColorButton>(dialog, "m_background_a_qcolor")->color(),
              QColor(255, 255, 255, 255));
    EXPECT_EQ(Find<QColorButton>(dialog, "m_background_b_qcolor")->color(),
              QColor(192, 192, 192, 255));
    for (const char* name :
         {"m_qvlayout", "m_preview_widget_qvlyaout", "m_qglayout", "m_target_qhlayout",
          "m_fixed_z_qhlayout", "m_range_x_qhlayout", "m_range_y_qhlayout", "m_range_y_qhlayout_2"})
        EXPECT_NE(dialog.findChild<QLayout*>(name), nullptr) << name;
    EXPECT_EQ(dialog.findChild<QGroupBox*>("m_settings_qgroupbox")->title(), "Settings");
}

TEST_F(TextureDialogTest, KeepAspectDisablesRangeYAndSettingsReachTheThread) {
    QTextureDialog dialog;
    auto* keepAspect = Find<QCheckBox>(dialog, "m_keep_aspect_qcheck");
    auto* rangeY = Find<QDragSpinner>(dialog, "m_range_y_qspin");
    QRenderTextureThread& thread = dialog.GetPreviewWidget()->GetThread();
    EXPECT_FALSE(rangeY->isEnabled());
    EXPECT_TRUE(thread.GetParameters().keepAspect);

    keepAspect->setChecked(false);
    EXPECT_TRUE(rangeY->isEnabled());
    EXPECT_FALSE(thread.GetParameters().keepAspect);

    Find<QDragSpinner>(dialog, "m_start_x_qspin")->setValue(-2.5);
    rangeY->setValue(3.0);
    Find<QDragSpinner>(dialog, "m_fixed_z_qspin")->setValue(7.0);
    Find<QDragSpinner>(dialog, "m_background_size_qspin")->setValue(9.0);
    Find<QCheckBox>(dialog, "m_seamless_qcheck")->setChecked(true);
    Find<QColorButton>(dialog, "m_background_b_qcolor")->setColor(QColor(0, 51, 255, 102));
    const QRenderTextureThread::Parameters parameters = thread.GetParameters();
    EXPECT_FLOAT_EQ(parameters.startX, -2.5f);
    EXPECT_FLOAT_EQ(parameters.rangeY, 3.0f);
    EXPECT_FLOAT_EQ(parameters.fixedZ, 7.0f);
    EXPECT_EQ(parameters.checkerSize, 9);
    EXPECT_TRUE(parameters.seamless);
    EXPECT_FLOAT_EQ(parameters.backgroundB.green, 0.2f);
    EXPECT_FLOAT_EQ(parameters.backgroundB.opacity, 0.4f);

    keepAspect->setChecked(true);
    EXPECT_FALSE(rangeY->isEnabled());
}

TEST_F(TextureDialogTest, TransparentTextureShowsTheCheckerAndAnOpaqueOneHidesIt) {
    Node* clear = AddConstant("clear", {1.0f, 0.0f, 0.0f, 0.0f});
    Node* opaque = AddConstant("opaque", {0.0f, 0.0f, 1.0f, 1.0f});
    Manager::Get()->SetActiveNode(clear);
    QTextureDialog dialog;
    dialog.show();
    QPreviewWidget* preview = dialog.GetPreviewWidget();
    const int bottom = preview->height() - 1;  // buffer row 0

    ASSERT_TRUE(WaitForPixel(preview, 4, bottom, qRgb(192, 192, 192)));
    EXPECT_EQ(preview->GetPixmap().toImage().pixel(5, bottom), qRgb(255, 255, 255));
    EXPECT_EQ(preview->GetPixmap().toImage().pixel(5, bottom - 5), qRgb(192, 192, 192));

    Manager::Get()->SetActiveNode(opaque);
    ASSERT_TRUE(WaitForPixel(preview, 4, bottom, qRgb(0, 0, 255)));
    EXPECT_EQ(preview->GetPixmap().toImage().pixel(5, bottom), qRgb(0, 0, 255));
}

TEST_F(TextureDialogTest, FollowsTheActiveOrTheDisplayNodeAsChosen) {
    Node* a = AddConstant("a", {1.0f, 0.0f, 0.0f, 1.0f});
    Node* b = AddConstant("b", {0.0f, 1.0f, 0.0f, 1.0f});
    Manager::Get()->SetActiveNode(a);
    Manager::Get()->SetDisplayNode(b);
    QTextureDialog dialog;
    EXPECT_EQ(dialog.GetTargetNode(), a);

    // Host events are followed while the dialog is shown; showing it catches up with them.
    Manager::Get()->SetActiveNode(b);
    EXPECT_EQ(dialog.GetTargetNode(), a);
    dialog.show();
    EXPECT_EQ(dialog.GetTargetNode(), b);
    Manager::Get()->SetActiveNode(a);
    EXPECT_EQ(dialog.GetTargetNode(), a);
    Manager::Get()->SetActiveNode(b);
    EXPECT_EQ(dialog.GetTargetNode(), b);

    Manager::Get()->SetDisplayNode(a);
    Find<QComboBox>(dialog, "m_target_qcombo")->setCurrentIndex(1);
    EXPECT_EQ(dialog.GetTargetMode(), QTextureDialog::kDisplayNode);
    EXPECT_EQ(dialog.GetTargetNode(), a);
    EXPECT_TRUE(SpinUntil(
        [&] { return dialog.GetPreviewWidget()->GetThread().GetParameters().node == a; }));

    // Active-node changes no longer move the display-mode preview; display changes do.
    Manager::Get()->SetActiveNode(nullptr);
    EXPECT_EQ(dialog.GetTargetNode(), a);
    Manager::Get()->SetDisplayNode(b);
    EXPECT_EQ(dialog.GetTargetNode(), b);
    ASSERT_TRUE(WaitForPixel(dialog.GetPreviewWidget(), 0, 0, qRgb(0, 255, 0)));

    // The host forgets a node it removes: the preview loses its target and turns black.
    Manager::Get()->ForgetNode(b);
    Engine::Get()->RemoveNode(b);
    EXPECT_EQ(dialog.GetTargetNode(), nullptr);
    ASSERT_TRUE(WaitForPixel(dialog.GetPreviewWidget(), 0, 0, qRgb(0, 0, 0)));

    dialog.close();
    Manager::Get()->SetDisplayNode(a);
    EXPECT_EQ(dialog.GetTargetNode(), nullptr);
    dialog.show();
    EXPECT_EQ(dialog.GetTargetNode(), a);
}

TEST_F(TextureDialogTest, ChangesOfTheTargetNodeRenderAgain) {
    noisepp::ConstantModule* module = nullptr;
    Node* node = AddConstant("node", {1.0f, 0.0f, 0.0f, 1.0f}, &module);
    Manager::Get()->SetActiveNode(node);
    QTextureDialog dialog;
    dialog.show();
    ASSERT_TRUE(WaitForPixel(dialog.GetPreviewWidget(), 0, 0, qRgb(255, 0, 0)));

    {
        // The module is read under the engine's lock by the render thread.
        std::lock_guard lock(Engine::Get()->GetMutex());
        module->setColor({0.0f, 1.0f, 1.0f, 1.0f});
    }
    ASSERT_TRUE(Engine::Get()->SetAttributeValue(node, 0, NodeValue::Number(1.0)));
    EXPECT_TRUE(WaitForPixel(dialog.GetPreviewWidget(), 0, 0, qRgb(0, 255, 255)));
}

TEST_F(TextureDialogTest, DestroyedDialogNoLongerListensToItsNode) {
    Node* node = AddConstant("node", {1.0f, 0.0f, 0.0f, 1.0f});
    Manager::Get()->SetActiveNode(node);
    auto dialog = std::make_unique<QTextureDialog>();
    dialog->show();
    dialog.reset();
    // A listener left behind would be called here, inside freed memory.
    EXPECT_TRUE(Engine::Get()->SetAttributeValue(node, 0, NodeValue::Number(2.0)));
    Manager::Get()->SetActiveNode(nullptr);
}

TEST_F(TextureDialogTest, PreviewShowsWaitingTextUntilTheFirstImageThenKeepsItWhileResizing) {
    QPreviewWidget preview;
    preview.resize(300, 60);
    preview.show();  // a hidden widget gets its resize event, and so its first render, on show
    EXPECT_TRUE(preview.GetPixmap().isNull());
    const QImage waiting = preview.grab().toImage();
    EXPECT_EQ(waiting.pixel(0, 0), qRgb(0, 0, 0));
    bool whiteText = false;
    for (int x = 0; x < waiting.width() && !whiteText; ++x)
        whiteText = waiting.pixel(x, waiting.height() / 2) == qRgb(255, 255, 255);
    EXPECT_TRUE(whiteText);

    ASSERT_TRUE(SpinUntil([&] { return preview.GetPixmap().size() == QSize(300, 60); }));
    preview.resize(400, 90);
    // Until the new render arrives the old image stays, unscaled, at the top-left corner.
    EXPECT_EQ(preview.GetPixmap().size(), QSize(300, 60));
    EXPECT_TRUE(SpinUntil([&] { return preview.GetPixmap().size() == QSize(400, 90); }));
}

}  // namespace
