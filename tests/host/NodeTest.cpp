// Node framework without an engine: value copies and references, attribute kinds, ranges and
// choices, plug order and ids, combined attributes, node state, listeners and events, gradients.

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

#include "host/Attribute.h"
#include "host/GradientNode.h"
#include "host/Image.h"
#include "host/Node.h"
#include "tests/host/TestNodes.h"

using namespace hosttest;

namespace {

TEST(NodeValueTest, CopiesShareImagesAndHandlesByReference) {
    Image* image = new Image(2, 2);
    image->AddRef();  // ours
    {
        NodeValue value = NodeValue::FromImage(image);
        EXPECT_EQ(value.GetType(), NodeValue::kImage);
        EXPECT_EQ(image->GetRefCount(), 2);
        NodeValue copy = value;
        NodeValue assigned = NodeValue::Number(3);
        assigned = copy;
        EXPECT_EQ(image->GetRefCount(), 4);
        assigned = NodeValue::Bool(true);
        EXPECT_EQ(image->GetRefCount(), 3);
        copy = copy;  // self-assignment keeps the reference
        EXPECT_EQ(image->GetRefCount(), 3);
        EXPECT_EQ(copy, value);
    }
    EXPECT_EQ(image->GetRefCount(), 1);
    image->Release();

    auto* handle = new TextureHandle(nullptr);
    handle->Retain();  // ours
    {
        NodeValue adopted = NodeValue::AdoptTexture(handle);  // takes the first reference
        NodeValue copy = adopted;
        EXPECT_EQ(handle->count.load(), 3);
    }
    EXPECT_EQ(handle->count.load(), 1);
    handle->Release();

    EXPECT_EQ(NodeValue::FromImage(nullptr).GetType(), NodeValue::kNone);
    EXPECT_EQ(NodeValue::AdoptTexture(nullptr).GetType(), NodeValue::kNone);
}

TEST(NodeValueTest, EqualityComparesTheKindsPayload) {
    EXPECT_EQ(NodeValue::Number(1.5), NodeValue::Number(1.5));
    EXPECT_NE(NodeValue::Number(1.5), NodeValue::Number(2.5));
    EXPECT_NE(NodeValue::Number(1), NodeValue::Bool(true));
    EXPECT_EQ(NodeValue::Color({1, 0, 0, 1}), NodeValue::Color({1, 0, 0, 1}));
    EXPECT_NE(NodeValue::Color({1, 0, 0, 1}), NodeValue::Color({1, 0, 0, 0.5}));
    EXPECT_NE(NodeValue::FromPoint({1, 2}), NodeValue::FromPoint({2, 1}));
    EXPECT_NE(NodeValue::FromFrame({0, 0, 4, 4}), NodeValue::FromFrame({0, 0, 4, 5}));
    EXPECT_NE(NodeValue::Mesh({0, -1, false}), NodeValue::Mesh({0, -1, true}));
    EXPECT_NE(NodeValue::Choice(0, "a"), NodeValue::Choice(1, "b"));
    EXPECT_NE(NodeValue::Text("a"), NodeValue::Text("b"));
    EXPECT_EQ(NodeValue(), NodeValue());
}

TEST(AttributeTest, RangesAreCheckedPerComponentWithAReadableMessage) {
    Attribute number(nullptr, 0, "octaves", 6.0, 1.0, 30.0, 1.0, 0);
    EXPECT_EQ(number.Validate(NodeValue::Number(30)), "");
    EXPECT_EQ(number.Validate(NodeValue::Number(31)), "must be between 1 and 30");
    EXPECT_EQ(number.Validate(NodeValue::Number(std::nan(""))), "must be between 1 and 30");
    EXPECT_EQ(number.Validate(NodeValue::Color({})), "must be a number, not a colour");

    Attribute range(nullptr, 1, "range", Point{1, 1}, 0.0, 8.0, 1.0, 2);
    EXPECT_EQ(range.Validate(NodeValue::FromPoint({0, 8})), "");
    EXPECT_EQ(range.Validate(NodeValue::FromPoint({0, 8.5})),
              "must be between 0 and 8 in both components");
    EXPECT_EQ(range.GetKindName(), std::string("point"));

    Attribute frame(nullptr, 2, "frame", Frame{0, 0, 512, 512}, -8000.0, 8000.0, 1.0, 0);
    EXPECT_EQ(frame.Validate(NodeValue::FromFrame({-8000, 0, 8000, 1})), "");
    EXPECT_NE(frame.Validate(NodeValue::FromFrame({0, 0, 512, 8001})), "");
    EXPECT_EQ(frame.GetDefault(), NodeValue::FromFrame({0, 0, 512, 512}));

    Attribute step(nullptr, 3, "start_x", 0.0, -0.1, 0.1, 0.1, 2);
    EXPECT_EQ(step.Validate(NodeValue::Number(1)), "must be between -0.1 and 0.1");

    Attribute mesh(nullptr, 4, "mesh", MeshReference{});
    EXPECT_EQ(mesh.Validate(NodeValue::Mesh({-1, -1, false})), "");
    EXPECT_NE(mesh.Validate(NodeValue::Mesh({-2, 0, false})), "");

    // Stored as given: no rounding to the displayed decimals, no range check.
    number.SetValue(NodeValue::Number(2.5));
    EXPECT_EQ(number.GetValue().GetNumber(), 2.5);
    EXPECT_THROW(number.SetValue(NodeValue::Text("2")), std::invalid_argument);
}

TEST(AttributeTest, ChoicesKnowTheirItemsByTextAndIndex) {
    Attribute mode(nullptr, 0, "mode", 1, "linear, cylindrical,spherical");
    EXPECT_EQ(mode.GetItems(), (std::vector<std::string>{"linear", "cylindrical", "spherical"}));
    EXPECT_EQ(mode.GetValue(), NodeValue::Choice(1, "cylindrical"));
    EXPECT_EQ(mode.GetChoiceIndex(), 1);
    EXPECT_EQ(mode.GetChoiceIndex("spherical"), 2);
    EXPECT_EQ(mode.GetChoiceIndex("conical"), -1);

    EXPECT_TRUE(mode.SetChoice("spherical"));
    EXPECT_EQ(mode.GetValue(), NodeValue::Choice(2, "spherical"));
    EXPECT_FALSE(mode.SetChoice("conical"));
    EXPECT_EQ(mode.GetChoiceIndex(), 2);

    EXPECT_EQ(mode.Validate(NodeValue::Choice(-1, "linear")), "");
    EXPECT_EQ(mode.Validate(NodeValue::Choice(0, "")), "");
    EXPECT_EQ(mode.Validate(NodeValue::Choice(3, "")),
              "must be one of \"linear\", \"cylindrical\", \"spherical\"");
    EXPECT_NE(mode.Validate(NodeValue::Choice(0, "conical")), "");
    // Either half completes the other.
    mode.SetValue(NodeValue::Choice(0, ""));
    EXPECT_EQ(mode.GetValue(), NodeValue::Choice(0, "linear"));
    mode.SetValue(NodeValue::Choice(-1, "spherical"));
    EXPECT_EQ(mode.GetValue(), NodeValue::Choice(2, "spherical"));

    EXPECT_THROW(Attribute(nullptr, 0, "bad", 3, "a,b"), std::logic_error);
    EXPECT_EQ(Attribute(nullptr, 0, "name", "images/a.png").GetKind(), Attribute::kText);
    // A file is text to every listing; documents alone treat it as a path.
    const Attribute file(nullptr, 0, "file", FilePath{"images/a.png"});
    EXPECT_EQ(file.GetKind(), Attribute::kFile);
    EXPECT_EQ(file.GetKindName(), std::string("text"));
    EXPECT_EQ(file.GetValue(), NodeValue::Text("images/a.png"));
    EXPECT_EQ(Attribute(nullptr, 0, "seamless", false).GetKind(), Attribute::kBool);
}

/// A node declared by a test: attributes and inputs given by the test, then the plugs.
class DeclaredNode : public Node {
public:
    NodeType GetNodeType() const override { return {99, 2, 0}; }
    std::string GetTypeName() const override { return "Declared"; }
    void Evaluate(unsigned, Value**) override {}
    std::vector<std::unique_ptr<Attribute>>& attributes() { return mAttributes; }
    std::vector<RegularInput>& inputs() { return mRegularInputs; }
    std::vector<Output>& outputs() { return mOutputs; }
};

TEST(NodeTest, InplugsAreTheAttributesInIdOrderThenTheRegularInputs) {
    DeclaredNode node;
    node.attributes().push_back(
        std::make_unique<Attribute>(&node, 0, "frame", Frame{}, 0.0, 1.0, 1.0, 0));
    node.attributes().push_back(std::make_unique<Attribute>(&node, 1, "seamless", false));
    node.inputs().push_back({3, Node::kImagePlug, "scale", 0, 0});
    node.inputs().push_back({0, Node::kTexturePlug, "texture", 0, 0});
    node.outputs().push_back({0, Node::kImagePlug, "image", 0});
    node.AddCombinedFramePositionSizeAttribute(0, "position_x", "position_y", "size_x", "size_y");
    node.UpdateInplugsAndOutplugs();

    ASSERT_EQ(node.GetInplugs().size(), 4u);
    EXPECT_EQ(node.GetInplugs()[1].name, "seamless");
    EXPECT_EQ(node.GetInplugs()[1].plugType, NodeValue::kBool);
    EXPECT_EQ(node.GetInplugs()[2].name, "texture");
    EXPECT_EQ(node.GetInplugs()[3].name, "scale");
    EXPECT_EQ(node.GetInplugIdFromAttributeId(1), 1u);
    EXPECT_EQ(node.GetInplugIdFromRegularInputId(0), 2u);
    EXPECT_EQ(node.GetInplugIdFromRegularInputId(3), 3u);
    EXPECT_THROW(node.GetInplugIdFromRegularInputId(1), std::out_of_range);
    EXPECT_THROW(node.GetInplugIdFromAttributeId(2), std::out_of_range);
    EXPECT_EQ(node.FindInplug("scale"), 3);
    EXPECT_EQ(node.FindInplug("nothing"), -1);
    EXPECT_EQ(node.FindOutplug("image"), 0);
    EXPECT_EQ(node.FindAttribute("seamless"), node.GetAttribute(1));
    ASSERT_EQ(node.GetCombinedAttributes().size(), 1u);
    EXPECT_EQ(node.GetCombinedAttributes()[0].componentNames[3], "size_y");
    EXPECT_THROW(node.AddCombinedPointAttribute(1, "x", "y"), std::logic_error);
}

TEST(NodeTest, DeclarationMistakesAreRefused) {
    DeclaredNode misnumbered;
    misnumbered.attributes().push_back(std::make_unique<Attribute>(&misnumbered, 1, "a", false));
    EXPECT_THROW(misnumbered.UpdateInplugsAndOutplugs(), std::logic_error);

    DeclaredNode twins;
    twins.inputs().push_back({0, Node::kImagePlug, "a", 0, 0});
    twins.inputs().push_back({0, Node::kImagePlug, "b", 0, 0});
    EXPECT_THROW(twins.UpdateInplugsAndOutplugs(), std::logic_error);
}

TEST(NodeTest, StateKeepsTheWorstAndCollectsMessagesOfThatSeverity) {
    SourceNode node;
    node.SetState(0, Node::kStateWarning, "Translate image size doesn't match Texture output.");
    node.SetState(0, Node::kStateWarning, "Scale image size doesn't match Texture output.");
    EXPECT_EQ(node.GetState(), Node::kStateWarning);
    EXPECT_EQ(node.GetStateMessage(),
              "Translate image size doesn't match Texture output. Scale image size doesn't match "
              "Texture output.");
    node.SetState(0, Node::kStateError, "Output image is larger than maximum image size.");
    node.SetState(0, Node::kStateWarning, "later warning");
    EXPECT_EQ(node.GetState(), Node::kStateError);
    EXPECT_EQ(node.GetStateMessage(), "Output image is larger than maximum image size.");
    node.ClearState();
    EXPECT_EQ(node.GetState(), Node::kStateOk);
    EXPECT_EQ(node.GetStateMessage(), "");
}

TEST(NodeTest, EventsReachTheNodeFirstThenEachListenerOnce) {
    struct Ordered : SourceNode {
        std::vector<std::string>* order;
        bool OnProcessEvent(const NodeEvent& event) override {
            order->push_back("node " + std::to_string(event.type));
            return true;
        }
    } node;
    std::vector<std::string> order;
    node.order = &order;
    struct Listener : NodeListener {
        std::vector<std::string>* order;
        std::string name;
        void OnNodeEvent(Node*, const NodeEvent& event) override {
            order->push_back(name + " " + std::to_string(event.code));
        }
    } first, second;
    first.order = second.order = &order;
    first.name = "first";
    second.name = "second";
    node.AddNodeListener(&first);
    node.AddNodeListener(&second);
    node.AddNodeListener(&first);  // once only
    node.ProcessEvent(NodeEvent::kParameterChanged, NodeEvent::kGradientChangedCode);
    EXPECT_EQ(order, (std::vector<std::string>{"node 4", "first 796447", "second 796447"}));

    order.clear();
    node.RemoveNodeListener(&first);
    node.ProcessEvent(NodeEvent::kInputsChanged, 0);
    EXPECT_EQ(order, (std::vector<std::string>{"node 3", "second 0"}));
}

TEST(GradientNodeTest, SetGradientStoresAndAnnouncesTheChange) {
    GradientTestNode node;
    VertexGradient blackToWhite;
    blackToWhite.interpolation = VertexGradient::kLinear;
    blackToWhite.vertices = {{0.0, Rgbo{0, 0, 0, 1}}, {1.0, Rgbo{1, 1, 1, 1}}};
    EXPECT_EQ(node.GetGradient(), blackToWhite);

    EventRecorder recorder;
    node.AddNodeListener(&recorder);
    VertexGradient step;
    step.interpolation = VertexGradient::kStep;
    step.vertices = {{0.25, Rgbo{1, 0, 0, 1}}};
    GradientNode::GradientStateContainer record(&node, &node);
    GradientNode::SetGradient(&node, step);
    EXPECT_EQ(node.GetGradient(), step);
    ASSERT_EQ(recorder.events.size(), 1u);
    EXPECT_EQ(recorder.events[0].type, NodeEvent::kParameterChanged);
    EXPECT_EQ(recorder.events[0].code, NodeEvent::kGradientChangedCode);

    record.Swap();
    EXPECT_EQ(node.GetGradient().vertices.size(), 2u);
    record.Swap();
    EXPECT_EQ(node.GetGradient(), step);
    EXPECT_EQ(recorder.events.size(), 3u);

    SourceNode plain;
    EXPECT_THROW(GradientNode::SetGradient(&plain, step), std::invalid_argument);
    node.RemoveNodeListener(&recorder);
}

}  // namespace
