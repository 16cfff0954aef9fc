// Undo and redo: attribute changes as steps of their own, Begin/Put/Accept grouping into one
// step, link changes, the redo list, re-evaluation after undo, gradient records, node
// deletion as a step (same node, id, place and links back; the node freed with its step).

#include <gtest/gtest.h>

#include "host/Engine.h"
#include "host/GradientNode.h"
#include "host/Image.h"
#include "tests/host/TestNodes.h"

using namespace hosttest;

namespace {

class UndoTest : public ::testing::Test {
protected:
    double Value(const Node* node) const { return node->GetAttribute(0)->GetValue().GetNumber(); }
    void Set(Node* node, double value) {
        ASSERT_TRUE(engine.SetAttributeValue(node, 0, NodeValue::Number(value)));
    }

    Engine engine;
    SourceNode* source =
        static_cast<SourceNode*>(engine.AddNode(std::make_unique<SourceNode>(), "source"));
    PassNode* pass = static_cast<PassNode*>(engine.AddNode(std::make_unique<PassNode>(), "pass"));
};

TEST_F(UndoTest, EachAttributeChangeIsAStepOfItsOwn) {
    EXPECT_FALSE(engine.CanUndo());
    EXPECT_FALSE(engine.Undo());
    Set(source, 2);
    Set(source, 3);
    Set(pass, 4);
    EXPECT_EQ(engine.GetUndoLabel(), "Set gain");

    ASSERT_TRUE(engine.Undo());
    EXPECT_EQ(Value(pass), 1.0);
    EXPECT_EQ(engine.GetUndoLabel(), "Set value");
    EXPECT_EQ(engine.GetRedoLabel(), "Set gain");
    ASSERT_TRUE(engine.Undo());
    EXPECT_EQ(Value(source), 2.0);
    ASSERT_TRUE(engine.Undo());
    EXPECT_EQ(Value(source), 1.0);
    EXPECT_FALSE(engine.Undo());

    ASSERT_TRUE(engine.Redo());
    EXPECT_EQ(Value(source), 2.0);
    ASSERT_TRUE(engine.Redo());
    EXPECT_EQ(Value(source), 3.0);

    // A new change forgets what could have been redone.
    Set(source, 9);
    EXPECT_FALSE(engine.CanRedo());
    EXPECT_FALSE(engine.Redo());
    ASSERT_TRUE(engine.Undo());
    EXPECT_EQ(Value(source), 3.0);
}

TEST_F(UndoTest, UndoReevaluatesAndNotifiesTheNode) {
    ASSERT_TRUE(engine.Connect(source, 0, pass, 1));
    Set(source, 5);
    engine.EvaluateNode(pass);
    ASSERT_EQ(OutputRed(engine, pass), 5.0f);

    EventRecorder recorder;
    source->AddNodeListener(&recorder);
    ASSERT_TRUE(engine.Undo());
    EXPECT_TRUE(engine.IsDirty(source));
    EXPECT_TRUE(engine.IsDirty(pass));
    EXPECT_EQ(recorder.Count(source, NodeEvent::kInputsChanged), 1);
    engine.EvaluateNode(pass);
    EXPECT_EQ(OutputRed(engine, pass), 1.0f);
    source->RemoveNodeListener(&recorder);
}

TEST_F(UndoTest, BeginPutAcceptMakesExactlyOneStep) {
    auto* node = static_cast<GradientTestNode*>(
        engine.AddNode(std::make_unique<GradientTestNode>(), "gradient"));
    const VertexGradient original = node->GetCopyGradient();
    VertexGradient edited = original;
    edited.vertices.push_back({0.5, Rgbo{1, 0, 0, 1}});
    VertexGradient final = edited;
    final.interpolation = VertexGradient::kSmooth;

    const int owner = 0;
    Engine::StateRecorderBegin(&engine, &owner, "QTextureGradientWidget::OnDragWidgetPressed");
    Engine::StateRecorderPut(&engine, new GradientNode::GradientStateContainer(node, node));
    GradientNode::SetGradient(node, edited);
    // An attribute change while the step is open joins it.
    ASSERT_TRUE(engine.SetAttributeValue(node, 0, NodeValue::Number(0.5)));
    GradientNode::SetGradient(node, final);
    EXPECT_FALSE(engine.CanUndo());  // still open
    Engine::StateRecorderAccept(&engine, &owner, "Gradient Set Color");

    EXPECT_EQ(engine.GetUndoLabel(), "Gradient Set Color");
    ASSERT_TRUE(engine.Undo());
    EXPECT_FALSE(engine.CanUndo());
    EXPECT_EQ(node->GetGradient(), original);
    EXPECT_EQ(node->GetAttribute(0)->GetValue().GetNumber(), 0.0);
    ASSERT_TRUE(engine.Redo());
    EXPECT_EQ(node->GetGradient(), final);
    EXPECT_EQ(node->GetAttribute(0)->GetValue().GetNumber(), 0.5);

    // Press and release without a change still records the step.
    Engine::StateRecorderBegin(&engine, &owner, "press");
    Engine::StateRecorderPut(&engine, new GradientNode::GradientStateContainer(node, node));
    Engine::StateRecorderAccept(&engine, &owner, "Gradient Set Color");
    ASSERT_TRUE(engine.Undo());
    EXPECT_EQ(node->GetGradient(), final);
    EXPECT_EQ(engine.GetRedoLabel(), "Gradient Set Color");
}

TEST_F(UndoTest, StrayAndEmptyStepsAreIgnored) {
    const int owner = 0, stranger = 0;
    Engine::StateRecorderAccept(&engine, &owner, "nothing open");
    EXPECT_FALSE(engine.CanUndo());

    Engine::StateRecorderBegin(&engine, &owner, "empty");
    Engine::StateRecorderAccept(&engine, &owner, "empty");
    EXPECT_FALSE(engine.CanUndo());

    // Only the owner closes its step; another owner's Accept leaves it open.
    Engine::StateRecorderBegin(&engine, &owner, "drag");
    Set(source, 2);
    Engine::StateRecorderAccept(&engine, &stranger, "not mine");
    EXPECT_FALSE(engine.Undo());
    Set(source, 3);
    Engine::StateRecorderAccept(&engine, &owner, "");
    EXPECT_EQ(engine.GetUndoLabel(), "drag");
    ASSERT_TRUE(engine.Undo());
    EXPECT_EQ(Value(source), 1.0);
    EXPECT_FALSE(engine.CanUndo());

    struct Nothing : StateContainer {
        void Swap() override {}
    };
    Engine::StateRecorderPut(nullptr, new Nothing);  // no engine: dropped, not leaked
}

TEST_F(UndoTest, LinkChangesUndoAndRedo) {
    auto* other = static_cast<SourceNode*>(engine.AddNode(std::make_unique<SourceNode>(), "other"));
    ASSERT_TRUE(engine.Connect(source, 0, pass, 1));
    ASSERT_TRUE(engine.Connect(other, 0, pass, 1));  // replaces
    engine.Disconnect(pass, 1);
    EXPECT_EQ(engine.GetUndoLabel(), "Unlink 'pass.image'");

    ASSERT_TRUE(engine.Undo());
    ASSERT_NE(engine.FindLinkTo(pass, 1), nullptr);
    EXPECT_EQ(engine.FindLinkTo(pass, 1)->from, other);
    ASSERT_TRUE(engine.Undo());
    ASSERT_NE(engine.FindLinkTo(pass, 1), nullptr);
    EXPECT_EQ(engine.FindLinkTo(pass, 1)->from, source);
    ASSERT_TRUE(engine.Undo());
    EXPECT_EQ(engine.FindLinkTo(pass, 1), nullptr);
    EXPECT_FALSE(engine.CanUndo());  // replaying recorded nothing new

    ASSERT_TRUE(engine.Redo());
    ASSERT_TRUE(engine.Redo());
    EXPECT_EQ(engine.FindLinkTo(pass, 1)->from, other);
    EXPECT_EQ(engine.GetLinks().size(), 1u);
    EXPECT_TRUE(engine.IsDirty(pass));
}

/// A node that counts how many of its kind are alive.
class CountedNode : public SourceNode {
public:
    static inline int alive = 0;
    CountedNode() { ++alive; }
    ~CountedNode() override { --alive; }
};

float Red(Engine& engine, Node* node) {
    engine.EvaluateNode(node);
    const Image* image = engine.GetOutputValue(node, 0).GetImage();
    return image != nullptr ? image->GetConstArray()[0] : -1.0f;
}

TEST_F(UndoTest, DeletingANodeIsAStepThatPutsTheSameNodeAndItsLinksBack) {
    Node* sink = engine.AddNode(std::make_unique<PassNode>(), "sink");
    ASSERT_TRUE(engine.Connect(source, 0, pass, 1));
    ASSERT_TRUE(engine.Connect(pass, 0, sink, 1));
    Set(source, 2);
    Set(pass, 3);
    ASSERT_EQ(Red(engine, sink), 6.0f);

    engine.DeleteNode(pass);
    EXPECT_EQ(engine.FindNode("pass"), nullptr);
    EXPECT_TRUE(engine.GetLinks().empty());
    EXPECT_EQ(Red(engine, sink), -1.0f) << "the sink lost its input";
    EXPECT_EQ(engine.GetUndoLabel(), "Delete Node");

    ASSERT_TRUE(engine.Undo());
    EXPECT_EQ(engine.FindNode("pass"), pass) << "the same node object comes back";
    EXPECT_EQ(engine.GetNodes()[1], pass) << "in its place among the nodes";
    EXPECT_EQ(engine.GetLinks().size(), 2u);
    EXPECT_EQ(Value(pass), 3.0);
    EXPECT_EQ(Red(engine, sink), 6.0f);
    // Earlier steps still refer to the node and still work.
    ASSERT_TRUE(engine.Undo());
    EXPECT_EQ(Value(pass), 1.0);
    EXPECT_EQ(Red(engine, sink), 2.0f);

    ASSERT_TRUE(engine.Redo());
    ASSERT_TRUE(engine.Redo());
    EXPECT_EQ(engine.FindNode("pass"), nullptr);
    EXPECT_EQ(Red(engine, sink), -1.0f);
}

TEST_F(UndoTest, ADeletedNodeComesBackUnderAFreeIdIsFreedWithItsStepAndRemovalForgetsAll) {
    CountedNode::alive = 0;
    Node* counted = engine.AddNode(std::make_unique<CountedNode>(), "counted");
    engine.DeleteNode(counted);
    EXPECT_EQ(CountedNode::alive, 1) << "the history keeps the deleted node";

    // Another node took the id meanwhile: the restored one gets the next free variant.
    engine.AddNode(std::make_unique<SourceNode>(), "counted");
    ASSERT_TRUE(engine.Undo());
    EXPECT_EQ(engine.GetNodeId(counted), "counted-2");

    engine.DeleteNode(counted);
    engine.ClearUndoHistory();
    EXPECT_FALSE(engine.CanUndo());
    EXPECT_EQ(CountedNode::alive, 0) << "forgetting the step deletes the node";
    // Removing a node (not a step) forgets the whole history.
    Set(pass, 3);
    engine.RemoveNode(pass);
    EXPECT_FALSE(engine.CanUndo());

    {
        Engine local;
        local.DeleteNode(local.AddNode(std::make_unique<CountedNode>(), "kept"));
        EXPECT_EQ(CountedNode::alive, 1);
    }
    EXPECT_EQ(CountedNode::alive, 0) << "the engine's end deletes what its history kept";
}

}  // namespace
