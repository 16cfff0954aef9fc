// Every node type of the catalogue shows the display groups, and every texture node type
// samples to the colours, recorded in tests/golden/node-samples.txt: at its defaults, with every
// attribute moved off its default (numbers by two and a half steps, so that whole numbers meet
// their half-down rounding and the others their float rounding; bools flipped; the last choice; an
// inexact colour), with each texture input left empty in turn, and with the evaluation flag clear.
// A row reading "none" means the node offers no texture. Run with TEXTURE_UPDATE_GOLDEN=1 to record
// the file anew after a deliberate change, and review its diff.

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "host/Engine.h"
#include "library/NodeCatalogue.h"
#include "library/NodeClasses.h"
#include "noisepp/core/Module.h"
#include "noisepp/core/Pipeline.h"

namespace {

const std::string kGoldenPath = std::string(TEXTURE_SOURCE_DIR) + "/tests/golden/node-samples.txt";

struct NodeTypeCase {
    std::string name;
    std::function<std::unique_ptr<Node>()> make;
};

std::vector<NodeTypeCase> allNodeTypes() {
#define TEXTURE_TYPE_CASE(index, NodeClass, name, code, stem) \
    {name, [] { return std::unique_ptr<Node>(std::make_unique<NodeClass>()); }},
    return {TEXTURE_ALL_NODES(TEXTURE_TYPE_CASE)};
#undef TEXTURE_TYPE_CASE
}

/// The display groups an attributes page shows, as "id:component,component ...".
std::string displayGroups(const Node& node) {
    std::string text;
    for (const Node::CombinedAttribute& group : node.GetCombinedAttributes()) {
        text += std::to_string(group.attributeId) + ":";
        for (const std::string& name : group.componentNames)
            text += name + ",";
        text += " ";
    }
    return text;
}

/// The value two and a half steps off the default, towards whichever bound leaves room.
NodeValue movedValue(const Attribute& attribute) {
    const NodeValue& initial = attribute.GetDefault();
    switch (attribute.GetKind()) {
        case Attribute::kNumber: {
            const double offset = 2.5 * attribute.GetStep();
            const double up = initial.GetNumber() + offset;
            return NodeValue::Number(up <= attribute.GetMaximum() ? up
                                                                  : initial.GetNumber() - offset);
        }
        case Attribute::kBool:
            return NodeValue::Bool(!initial.GetBool());
        case Attribute::kChoice:
            return NodeValue::Choice(static_cast<int>(attribute.GetItems().size()) - 1, "");
        case Attribute::kColor:
            return NodeValue::Color(Rgbo{0.3, 0.6, 0.9, 0.7});
        default:
            return initial;
    }
}

/// One node of the type under test, fed on each texture input by a Perlin node of its own
/// seed whose four channels vary, opacity included.
class Fixture {
public:
    explicit Fixture(const NodeTypeCase& type) {
        node = engine.AddNode(type.make(), "node");
        for (const Node::Inplug& inplug : node->GetInplugs()) {
            if (inplug.regularInputId < 0 || inplug.plugType != Node::kTexturePlug)
                continue;
            Node* source = engine.AddNode(std::make_unique<TexturePerlinNode>(),
                                          "source" + std::to_string(inplug.id));
            engine.SetAttributeValue(source, TexturePerlinNode::kSeed,
                                     NodeValue::Number(inplug.id + 1.0));
            engine.SetAttributeValue(source, TexturePerlinNode::kColorA,
                                     NodeValue::Color(Rgbo{0.9, 0.1, 0.3, 0.2}));
            engine.SetAttributeValue(source, TexturePerlinNode::kColorB,
                                     NodeValue::Color(Rgbo{0.1, 0.8, 0.6, 1.0}));
            std::string error;
            EXPECT_TRUE(engine.Connect(source, 0, node, inplug.id, &error)) << error;
            textureInplugs.push_back(inplug.id);
        }
    }

    /// The samples of the node's current texture as hexadecimal float bits, or "none".
    std::string Samples() {
        EXPECT_TRUE(engine.EvaluateNode(node)) << node->GetStateMessage();
        const NodeValue output = engine.GetOutputValue(node, 0);
        const noisepp::Module* module =
            output.GetTexture() != nullptr ? output.GetTexture()->module : nullptr;
        if (module == nullptr)
            return "none";
        noisepp::Pipeline3D pipeline;
        const noisepp::PipelineElement3D* element = nullptr;
        try {
            element = pipeline.getElement(module->addToPipeline(&pipeline));
        } catch (const std::exception&) {
            return "fails to compile";
        }
        std::ostringstream text;
        text << std::hex;
        for (const double x : {-7.31, -0.37, 0.0, 0.11, 0.5, 0.73, 2.49, 13.7}) {
            const noisepp::TextureColor c = element->getValue(x, 0.61 - x * 0.5, x * 0.37);
            for (const float channel : {c.red, c.green, c.blue, c.opacity})
                text << std::bit_cast<std::uint32_t>(channel) << ' ';
        }
        return text.str();
    }

    Engine engine;
    Node* node = nullptr;
    std::vector<unsigned> textureInplugs;
};

/// Row key -> samples, for every type and configuration.
std::map<std::string, std::string> sampleEveryType() {
    std::map<std::string, std::string> rows;
    for (const NodeTypeCase& type : allNodeTypes()) {
        rows[type.name + "|display groups"] = displayGroups(*type.make());
        if (type.make()->GetOutplugs().at(0).plugType != Node::kTexturePlug)
            continue;
        {
            Fixture fixture(type);
            rows[type.name + "|defaults"] = fixture.Samples();
            for (const auto& attribute : fixture.node->GetAttributes())
                fixture.engine.SetAttributeValue(fixture.node, attribute->GetId(),
                                                 movedValue(*attribute));
            rows[type.name + "|moved"] = fixture.Samples();
            fixture.node->SetEvaluationEnabled(false);
            rows[type.name + "|evaluation off"] = fixture.Samples();
        }
        for (std::size_t input = 0;; ++input) {
            Fixture fixture(type);
            if (input >= fixture.textureInplugs.size())
                break;
            fixture.engine.Disconnect(fixture.node, fixture.textureInplugs[input]);
            rows[type.name + "|without input " + std::to_string(input)] = fixture.Samples();
        }
    }
    return rows;
}

TEST(NodeSamples, EveryTextureTypeSamplesAsRecorded) {
    const std::map<std::string, std::string> rows = sampleEveryType();
    if (std::getenv("TEXTURE_UPDATE_GOLDEN") != nullptr) {
        std::ofstream out(kGoldenPath);
        for (const auto& [key, samples] : rows)
            out << key << "|" << samples << "\n";
        GTEST_SKIP() << "recorded " << kGoldenPath;
    }
    std::ifstream in(kGoldenPath);
    ASSERT_TRUE(in) << "missing " << kGoldenPath;
    std::map<std::string, std::string> recorded;
    for (std::string line; std::getline(in, line);) {
        const std::size_t bar = line.rfind('|');
        recorded[line.substr(0, bar)] = line.substr(bar + 1);
    }
    for (const auto& [key, samples] : rows) {
        ASSERT_TRUE(recorded.contains(key)) << key << " is not recorded";
        EXPECT_EQ(samples, recorded[key]) << key;
    }
    EXPECT_EQ(recorded.size(), rows.size());
}

}  // namespace
