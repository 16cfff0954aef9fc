// Covers: dialog and gradient page widgets and defaults (recorded), keep aspect, compositing, node
// following, events, resizing.

#include <algorithm>
#include <memory>
#include <mutex>

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QGroupBox>
#include <QImage>
#include <QLabel>
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
#include "ui/QTextureGradientWidget.h"

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

/// Every named widget and layout under `root`, in name order, with what a user sees of it.
QString WidgetListing(const QWidget& root) {
    QStringList lines{
        QString("%1 %2 '%3' %4x%5 %6-%7 %8")
            .arg(root.metaObject()->className(), root.objectName(), root.windowTitle())
            .arg(root.width())
            .arg(root.height())
            .arg(root.minimumWidth())
            .arg(root.maximumWidth())
            .arg(root.isWindow() ? "window" : "embedded")};
    for (const QObject* child : root.findChildren<QObject*>()) {
        if (child->objectName().isEmpty() || child->objectName().startsWith("qt_"))
            continue;
        QString line = child->objectName() + " " + child->metaObject()->className();
        if (const auto* spinner = qobject_cast<const QDoubleSpinBox*>(child))
            line += QString(" %1..%2 step %3 value %4 decimals %5 width>=%6")
                        .arg(spinner->minimum())
                        .arg(spinner->maximum())
                        .arg(spinner->singleStep())
                        .arg(spinner->value())
                        .arg(spinner->decimals())
                        .arg(spinner->minimumWidth());
        if (const auto* check = qobject_cast<const QCheckBox*>(child))
            line += check->isChecked() ? " checked" : " unchecked";
        if (const auto* combo = qobject_cast<const QComboBox*>(child))
            for (int i = 0; i < combo->count(); ++i)
                line += (i == combo->currentIndex() ? " [" : " ") + combo->itemText(i) +
                        (i == combo->currentIndex() ? "]" : "");
        if (const auto* button = qobject_cast<const QColorButton*>(child))
            line += " " + button->color().name(QColor::HexArgb);
        if (const auto* box = qobject_cast<const QGroupBox*>(child))
            line += " " + box->title();
        if (const auto* label = qobject_cast<const QLabel*>(child))
            line += " " + label->text();
        lines << line;
    }
    std::sort(lines.begin() + 1, lines.end());
    return lines.join("\n") + "\n";
}

// The names, ranges, defaults and sizes of the preview dialog and the gradient page are
// recorded in tests/golden/ui-widgets.txt. Run with TEXTURE_UPDATE_GOLDEN=1 to record them anew
// after a deliberate change, and review the diff.
TEST_F(TextureDialogTest, DialogAndGradientPageShowTheRecordedWidgets) {
    const QTextureDialog dialog;
    Engine engine;
    Node* gradient = engine.AddNode(std::make_unique<uitest::ProbeGradientNode>(), "gradient");
    const QTextureGradientWidget page(nullptr, gradient, nullptr);
    QWidget host;
    const QTextureGradientWidget embedded(&host, gradient, nullptr);
    const QString listing = WidgetListing(dialog) + WidgetListing(page) + WidgetListing(embedded);
    QFile golden(TEXTURE_SOURCE_DIR "/tests/golden/ui-widgets.txt");
    if (qEnvironmentVariableIsSet("TEXTURE_UPDATE_GOLDEN")) {
        ASSERT_TRUE(golden.open(QIODevice::WriteOnly));
        golden.write(listing.toUtf8());
        GTEST_SKIP() << "recorded " << golden.fileName().toStdString();
    }
    ASSERT_TRUE(golden.open(QIODevice::ReadOnly)) << golden.fileName().toStdString();
    EXPECT_EQ(listing.toStdString(), QString::fromUtf8(golden.readAll()).toStdString());
}

TEST_F(TextureDialogTest, KeepAspectDisablesRangeYAndSettingsReachTheThread) {
    QTextureDialog dialog;
    auto* keepAspect = Find<QCheckBox>(dialog, "m_keep_aspect_qcheck");
    auto* rangeY = Find<QDragSpinner>(dialog, "m_range_y_qspin");
    QRenderTextureThread& thread = dialog.GetPreviewWidget()->GetThread();
    EXPECT_FALSE(rangeY->isEnabled());
    EXPECT_TRUE(thread.GetParameters().plane.keepAspect);

    keepAspect->setChecked(false);
    EXPECT_TRUE(rangeY->isEnabled());
    EXPECT_FALSE(thread.GetParameters().plane.keepAspect);

    Find<QDragSpinner>(dialog, "m_start_x_qspin")->setValue(-2.5);
    rangeY->setValue(3.0);
    Find<QDragSpinner>(dialog, "m_fixed_z_qspin")->setValue(7.0);
    Find<QDragSpinner>(dialog, "m_background_size_qspin")->setValue(9.0);
    Find<QCheckBox>(dialog, "m_seamless_qcheck")->setChecked(true);
    Find<QColorButton>(dialog, "m_background_b_qcolor")->setColor(QColor(0, 51, 255, 102));
    const QRenderTextureThread::Parameters parameters = thread.GetParameters();
    EXPECT_FLOAT_EQ(parameters.plane.startX, -2.5f);
    EXPECT_FLOAT_EQ(parameters.plane.rangeY, 3.0f);
    EXPECT_FLOAT_EQ(parameters.plane.fixedZ, 7.0f);
    EXPECT_EQ(parameters.checkerSize, 9);
    EXPECT_TRUE(parameters.plane.seamless);
    EXPECT_FLOAT_EQ(parameters.backgroundB.green, 0.2f);
    EXPECT_FLOAT_EQ(parameters.backgroundB.opacity, 0.4f);

    keepAspect->setChecked(true);
    EXPECT_FALSE(rangeY->isEnabled());
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

TEST_F(TextureDialogTest, ChangesOfTheTargetNodeRenderAgainOverTheCheckerUntilTheDialogGoes) {
    noisepp::ConstantModule* module = nullptr;
    Node* node = AddConstant("node", {1.0f, 0.0f, 0.0f, 0.0f}, &module);
    Manager::Get()->SetActiveNode(node);
    auto dialog = std::make_unique<QTextureDialog>();
    dialog->show();
    QPreviewWidget* preview = dialog->GetPreviewWidget();
    const int bottom = preview->height() - 1;  // buffer row 0

    // A transparent texture shows the checker; an opaque one hides it.
    ASSERT_TRUE(WaitForPixel(preview, 4, bottom, qRgb(192, 192, 192)));
    EXPECT_EQ(preview->GetPixmap().toImage().pixel(5, bottom), qRgb(255, 255, 255));
    EXPECT_EQ(preview->GetPixmap().toImage().pixel(5, bottom - 5), qRgb(192, 192, 192));
    {
        // The module is read under the engine's lock by the render thread.
        std::lock_guard lock(Engine::Get()->GetMutex());
        module->setColor({0.0f, 1.0f, 1.0f, 1.0f});
    }
    ASSERT_TRUE(Engine::Get()->SetAttributeValue(node, 0, NodeValue::Number(1.0)));
    EXPECT_TRUE(WaitForPixel(preview, 4, bottom, qRgb(0, 255, 255)));
    EXPECT_EQ(preview->GetPixmap().toImage().pixel(5, bottom), qRgb(0, 255, 255));

    dialog.reset();
    // A listener left behind would be called here, inside freed memory.
    EXPECT_TRUE(Engine::Get()->SetAttributeValue(node, 0, NodeValue::Number(2.0)));
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
