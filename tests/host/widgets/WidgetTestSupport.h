#pragma once

// Helpers for the host widget tests: the application object, a node with one attribute of
// every kind, and synthetic mouse events.

#include <memory>

#include <QApplication>
#include <QMouseEvent>

#include "host/Attribute.h"
#include "host/Node.h"

namespace widgettest {

/// The widgets need an application; one is made for the whole runner on first use.
inline void EnsureApplication() {
    if (QApplication::instance() != nullptr)
        return;
    static int argc = 1;
    static char name[] = "host_widget_tests";
    static char* argv[] = {name, nullptr};
    // Never destroyed: at exit Qt's own globals may already be gone.
    new QApplication(argc, argv);
}

/// Attribute ids of KindsNode.
enum : unsigned {
    kFrequency = 0,
    kSeed = 1,
    kColor = 2,
    kTint = 3,
    kEnabled = 4,
    kMode = 5,
    kOffset = 6,
    kFrame = 7,
    kMesh = 8,
    kFile = 9,
    kAttributeCount = 10
};

/// One attribute of every kind; the colour "color" is combined with an opacity, "tint" is not;
/// the point is combined with component names.
class KindsNode : public Node {
public:
    KindsNode() {
        mAttributes.push_back(
            std::make_unique<Attribute>(this, kFrequency, "frequency", 1.0, 0.0, 1000.0, 0.5, 2));
        mAttributes.push_back(
            std::make_unique<Attribute>(this, kSeed, "seed", 0.0, 0.0, 100.0, 1.0, 0));
        mAttributes.push_back(
            std::make_unique<Attribute>(this, kColor, "color", Rgbo{1.0, 0.0, 0.0, 1.0}));
        mAttributes.push_back(
            std::make_unique<Attribute>(this, kTint, "tint", Rgbo{0.0, 0.0, 1.0, 0.25}));
        mAttributes.push_back(std::make_unique<Attribute>(this, kEnabled, "enabled", true));
        mAttributes.push_back(
            std::make_unique<Attribute>(this, kMode, "mode", 0, "cells,lines,dots"));
        mAttributes.push_back(std::make_unique<Attribute>(this, kOffset, "offset", Point{0.5, 0.25},
                                                          -10.0, 10.0, 0.1, 2));
        mAttributes.push_back(std::make_unique<Attribute>(
            this, kFrame, "frame", Frame{0, 0, 64, 32}, 0.0, 4096.0, 1.0, 0));
        mAttributes.push_back(std::make_unique<Attribute>(this, kMesh, "mesh", MeshReference{}));
        mAttributes.push_back(std::make_unique<Attribute>(this, kFile, "file", "a.png"));
        AddCombinedRgboAttribute(kColor, "color", "opacity");
        AddCombinedPointAttribute(kOffset, "offset_x", "offset_y");
        mOutputs.push_back({0, kTexturePlug, "texture", 0});
        UpdateInplugsAndOutplugs();
    }
    NodeType GetNodeType() const override { return {99, 9, 1}; }
    std::string GetTypeName() const override { return "Kinds"; }
    void Evaluate(unsigned, Value**) override {}
};

/// A node whose only output carries a number, to drive an attribute through a link.
class NumberSourceNode : public Node {
public:
    NumberSourceNode() {
        mOutputs.push_back({0, NodeValue::kNumber, "value", 0});
        UpdateInplugsAndOutplugs();
    }
    NodeType GetNodeType() const override { return {99, 9, 2}; }
    std::string GetTypeName() const override { return "Number Source"; }
    void Evaluate(unsigned, Value**) override {}
};

/// Sends a mouse event at `local` (widget coordinates) with the matching global position.
inline void SendMouse(QWidget* widget, QEvent::Type type, QPoint local, Qt::MouseButton button,
                      Qt::MouseButtons buttons) {
    QMouseEvent event(type, QPointF(local), QPointF(widget->mapToGlobal(local)), button, buttons,
                      Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
}

}  // namespace widgettest
