// Attributes page: editors per kind, labels, frequency/visible/enabled records, read-only, reset,
// edits through the engine with undo, drags as one step, outside changes, linked attributes.

#include <gtest/gtest.h>

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QSpinBox>

#include "host/Engine.h"
#include "host/widgets/QColorButton.h"
#include "host/widgets/QDragSpinner.h"
#include "host/widgets/QNodeAttributesWidget.h"
#include "tests/host/widgets/WidgetTestSupport.h"

using namespace widgettest;

namespace {

class AttributesWidgetTest : public ::testing::Test {
protected:
    void SetUp() override {
        EnsureApplication();
        node = static_cast<KindsNode*>(engine.AddNode(std::make_unique<KindsNode>(), "kinds"));
        ASSERT_NE(node, nullptr);
    }

    template <class Editor>
    QList<Editor*> EditorsOf(const QNodeAttributesWidget& page, unsigned id) {
        QWidget* row = page.GetRowWidget(id);
        return row == nullptr ? QList<Editor*>() : row->findChildren<Editor*>();
    }

    Engine engine;
    KindsNode* node = nullptr;
};

TEST_F(AttributesWidgetTest, BuildsOneRowPerAttributeWithEditorsFittingItsKind) {
    QNodeAttributesWidget page(nullptr, node, nullptr, nullptr, false);
    EXPECT_EQ(page.GetRowCount(), static_cast<int>(kAttributeCount));
    EXPECT_EQ(EditorsOf<QDragSpinner>(page, kFrequency).size(), 1);
    EXPECT_EQ(EditorsOf<QDragSpinner>(page, kOffset).size(), 2);
    EXPECT_EQ(EditorsOf<QDragSpinner>(page, kFrame).size(), 4);
    EXPECT_EQ(EditorsOf<QCheckBox>(page, kEnabled).size(), 1);
    EXPECT_EQ(EditorsOf<QComboBox>(page, kMode).size(), 1);
    EXPECT_EQ(EditorsOf<QColorButton>(page, kColor).size(), 1);
    EXPECT_EQ(EditorsOf<QSpinBox>(page, kMesh).size(), 2);
    EXPECT_EQ(EditorsOf<QLineEdit>(page, kFile).size(), 1);
    EXPECT_EQ(page.GetRowWidget(kAttributeCount), nullptr);

    // Editors start at the attributes' values and with their ranges.
    QDragSpinner* frame = EditorsOf<QDragSpinner>(page, kFrame)[2];
    EXPECT_EQ(frame->value(), 64.0);
    EXPECT_EQ(frame->maximum(), 4096.0);
    EXPECT_EQ(EditorsOf<QDragSpinner>(page, kOffset)[1]->value(), 0.25);
    EXPECT_EQ(EditorsOf<QComboBox>(page, kMode)[0]->currentText(), "cells");
    EXPECT_EQ(EditorsOf<QLineEdit>(page, kFile)[0]->text(), "a.png");
    EXPECT_EQ(EditorsOf<QColorButton>(page, kColor)[0]->color(), QColor(255, 0, 0));
    // Only the colour combined with an opacity offers the opacity.
    EXPECT_TRUE(EditorsOf<QColorButton>(page, kColor)[0]->showAlpha());
    EXPECT_FALSE(EditorsOf<QColorButton>(page, kTint)[0]->showAlpha());
}

TEST_F(AttributesWidgetTest, RecordsGiveLabelsFrequencyDragsAndHiddenRows) {
    std::vector<QNodeAttributesWidget::AdditionalInfo> info(kAttributeCount);
    info[kFrequency].frequency = true;
    info[kSeed].label = "Random Seed";
    info[kFile].visible = false;
    info[kMode].enabled = false;
    QNodeAttributesWidget page(nullptr, node, nullptr, info.data(), false);
    page.show();

    EXPECT_EQ(page.GetRowLabel(kSeed), "Random Seed");
    EXPECT_EQ(page.GetRowLabel(kFrequency), "Frequency");  // the name, readable
    EXPECT_TRUE(EditorsOf<QDragSpinner>(page, kFrequency)[0]->isLogarithmic());
    EXPECT_FALSE(EditorsOf<QDragSpinner>(page, kSeed)[0]->isLogarithmic());
    EXPECT_FALSE(page.GetRowWidget(kFile)->isVisible());
    EXPECT_TRUE(page.GetRowWidget(kSeed)->isVisible());
    EXPECT_FALSE(page.GetRowWidget(kMode)->isEnabled());
    EXPECT_TRUE(page.GetRowWidget(kSeed)->isEnabled());
}

TEST_F(AttributesWidgetTest, ReadOnlyPageEditsNothing) {
    QNodeAttributesWidget page(nullptr, node, nullptr, nullptr, true);
    for (unsigned id = 0; id < kAttributeCount; ++id)
        EXPECT_FALSE(page.GetRowWidget(id)->isEnabled()) << "attribute " << id;
}

TEST_F(AttributesWidgetTest, EditsReachTheEngineAndUndoRestoresThemOnThePage) {
    QNodeAttributesWidget page(nullptr, node, nullptr, nullptr, false);
    QDragSpinner* seed = EditorsOf<QDragSpinner>(page, kSeed)[0];
    seed->setValue(7.0);
    EXPECT_EQ(node->GetAttribute(kSeed)->GetValue().GetNumber(), 7.0);
    EXPECT_TRUE(engine.IsDirty(node));
    ASSERT_TRUE(engine.CanUndo());
    EXPECT_EQ(engine.GetUndoLabel(), "Set seed");

    QComboBox* mode = EditorsOf<QComboBox>(page, kMode)[0];
    emit mode->activated(2);
    EXPECT_EQ(node->GetAttribute(kMode)->GetValue().GetText(), "dots");

    QDragSpinner* offsetY = EditorsOf<QDragSpinner>(page, kOffset)[1];
    offsetY->setValue(-3.0);
    EXPECT_EQ(node->GetAttribute(kOffset)->GetValue().GetPoint(), (Point{0.5, -3.0}));

    ASSERT_TRUE(engine.Undo());
    ASSERT_TRUE(engine.Undo());
    ASSERT_TRUE(engine.Undo());
    EXPECT_EQ(node->GetAttribute(kSeed)->GetValue().GetNumber(), 0.0);
    EXPECT_EQ(seed->value(), 0.0);
    EXPECT_EQ(mode->currentIndex(), 0);
    EXPECT_EQ(offsetY->value(), 0.25);
}

TEST_F(AttributesWidgetTest, ColourEditsKeepOrChangeOpacityAsTheRowAllows) {
    QNodeAttributesWidget page(nullptr, node, nullptr, nullptr, false);
    EditorsOf<QColorButton>(page, kColor)[0]->setColor(QColor::fromRgbF(0.0f, 1.0f, 0.0f, 0.5f));
    const Rgbo color = node->GetAttribute(kColor)->GetValue().GetColor();
    EXPECT_EQ(color.green, 1.0);
    EXPECT_NEAR(color.opacity, 0.5, 1e-4);

    // "tint" has no opacity row: its opacity stays what it was.
    EditorsOf<QColorButton>(page, kTint)[0]->setColor(QColor::fromRgbF(1.0f, 1.0f, 0.0f, 1.0f));
    const Rgbo tint = node->GetAttribute(kTint)->GetValue().GetColor();
    EXPECT_EQ(tint.red, 1.0);
    EXPECT_EQ(tint.opacity, 0.25);
}

TEST_F(AttributesWidgetTest, AWholeDragIsOneUndoStep) {
    QNodeAttributesWidget page(nullptr, node, nullptr, nullptr, false);
    QDragSpinner* seed = EditorsOf<QDragSpinner>(page, kSeed)[0];
    emit seed->dragStarted();
    seed->setValue(3.0);
    seed->setValue(4.0);
    seed->setValue(5.0);
    emit seed->dragFinished();
    EXPECT_EQ(node->GetAttribute(kSeed)->GetValue().GetNumber(), 5.0);
    ASSERT_TRUE(engine.Undo());
    EXPECT_EQ(node->GetAttribute(kSeed)->GetValue().GetNumber(), 0.0);
    EXPECT_FALSE(engine.CanUndo());
}

TEST_F(AttributesWidgetTest, ChangesFromElsewhereAndLinksShowOnThePage) {
    QNodeAttributesWidget page(nullptr, node, nullptr, nullptr, false);
    ASSERT_TRUE(engine.SetAttributeValue(node, kFrequency, NodeValue::Number(12.5)));
    EXPECT_EQ(EditorsOf<QDragSpinner>(page, kFrequency)[0]->value(), 12.5);
    ASSERT_TRUE(engine.SetAttributeValue(node, kFile, NodeValue::Text("b.exr")));
    EXPECT_EQ(EditorsOf<QLineEdit>(page, kFile)[0]->text(), "b.exr");

    // A linked attribute is driven by its link, not by the page.
    Node* source = engine.AddNode(std::make_unique<NumberSourceNode>(), "source");
    std::string error;
    ASSERT_TRUE(engine.Connect(source, 0, node, node->GetInplugIdFromAttributeId(kSeed), &error))
        << error;
    EXPECT_FALSE(page.GetRowWidget(kSeed)->isEnabled());
    engine.Disconnect(node, node->GetInplugIdFromAttributeId(kSeed));
    EXPECT_TRUE(page.GetRowWidget(kSeed)->isEnabled());
}

TEST_F(AttributesWidgetTest, LabelsOfferTheDefaultBackUnlessReadOnly) {
    ASSERT_TRUE(engine.SetAttributeValue(node, kSeed, NodeValue::Number(42.0)));
    {
        QNodeAttributesWidget page(nullptr, node, nullptr, nullptr, false);
        auto* label = page.findChild<QLabel*>("m_seed_qlabel");
        ASSERT_NE(label, nullptr);
        ASSERT_EQ(label->actions().size(), 1);
        label->actions()[0]->trigger();
        EXPECT_EQ(node->GetAttribute(kSeed)->GetValue().GetNumber(), 0.0);
        EXPECT_EQ(EditorsOf<QDragSpinner>(page, kSeed)[0]->value(), 0.0);
    }
    QNodeAttributesWidget readOnly(nullptr, node, nullptr, nullptr, true);
    EXPECT_TRUE(readOnly.findChild<QLabel*>("m_seed_qlabel")->actions().isEmpty());
}

TEST_F(AttributesWidgetTest, NodeOutsideAnEngineIsEditedDirectly) {
    KindsNode loose;
    QNodeAttributesWidget page(nullptr, &loose, nullptr, nullptr, false);
    EditorsOf<QDragSpinner>(page, kSeed)[0]->setValue(9.0);
    EXPECT_EQ(loose.GetAttribute(kSeed)->GetValue().GetNumber(), 9.0);
}

}  // namespace
