#pragma once

// The modifier and combiner nodes, and helpers for driving them as a host would: a texture
// source node of the tests' own, a small graph around a local engine, and a bit-for-bit comparison
// of two module trees after compiling them.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <utility>

#include "host/Engine.h"
#include "host/Node.h"
#include "nodes/TextureAdditionNode.h"
#include "nodes/TextureBlendNode.h"
#include "nodes/TextureClampNode.h"
#include "nodes/TextureCurveNode.h"
#include "nodes/TextureExponentNode.h"
#include "nodes/TextureGradientNode.h"
#include "nodes/TextureInvertNode.h"
#include "nodes/TextureJoinNode.h"
#include "nodes/TextureMaximumNode.h"
#include "nodes/TextureMinimumNode.h"
#include "nodes/TextureMultiplyNode.h"
#include "nodes/TexturePowerNode.h"
#include "nodes/TextureRgbMapNode.h"
#include "nodes/TextureScaleBiasNode.h"
#include "nodes/TextureSelectNode.h"
#include "nodes/TextureTerraceNode.h"
#include "nodes/TextureTransformNode.h"
#include "nodes/TextureTurbulenceNode.h"
#include "noisepp/core/Module.h"
#include "noisepp/core/Pipeline.h"
#include "noisepp/modules/ConstantModule.h"
#include "noisepp/modules/PerlinModule.h"

namespace modtest {

/// A texture source: output 0 "texture", a fresh module from `factory` at every evaluation
/// (the previous one deleted first, as a texture node does).
class SourceNode : public Node {
public:
    using Factory = std::function<std::unique_ptr<noisepp::Module>()>;

    explicit SourceNode(Factory factory) : mFactory(std::move(factory)) {
        mOutputs.push_back({0, kTexturePlug, "texture"});
        UpdateInplugsAndOutplugs();
    }
    ~SourceNode() override { delete mModule; }

    NodeType GetNodeType() const override { return {99, 304, 1}; }
    std::string GetTypeName() const override { return "Test Source"; }
    void Evaluate(unsigned, Value**) override {
        delete mModule;
        mModule = mFactory().release();
    }
    TextureHandle* GetOutputTexture(unsigned index) override {
        return index == 0 ? new TextureHandle(mModule) : nullptr;
    }

private:
    Factory mFactory;
    noisepp::Module* mModule = nullptr;
};

/// A fractal source whose four channels vary independently over space, opacity included,
/// so that a stage that mixes up channels, points or sources shows in its values.
inline std::unique_ptr<noisepp::Module> makeVaryingSource(std::int32_t seed) {
    auto perlin = std::make_unique<noisepp::PerlinModule>();
    perlin->setSeed(seed);
    perlin->setColorA({0.9f, 0.1f, 0.3f, 0.2f});
    perlin->setColorB({0.1f, 0.8f, 0.6f, 1.0f});
    return perlin;
}

inline std::unique_ptr<noisepp::Module> makeConstantSource(const noisepp::TextureColor& color) {
    auto constant = std::make_unique<noisepp::ConstantModule>();
    constant->setColor(color);
    return constant;
}

/// Creates a node of type N, for tables of node types.
template <class N>
std::function<std::unique_ptr<Node>()> factory() {
    return [] { return std::make_unique<N>(); };
}

/// A local engine and the nodes of one test.
class Graph {
public:
    /// Adds a node of type N (constructed from `args`) under a fresh id.
    template <class N, class... Args>
    N* add(Args&&... args) {
        auto node = std::make_unique<N>(std::forward<Args>(args)...);
        N* raw = node.get();
        std::string error;
        const bool added = engine.AddNode(std::move(node), nextId(), &error) != nullptr;
        EXPECT_TRUE(added) << error;
        return added ? raw : nullptr;
    }
    Node* add(std::unique_ptr<Node> node) {
        Node* raw = node.get();
        EXPECT_NE(engine.AddNode(std::move(node), nextId()), nullptr);
        return raw;
    }
    SourceNode* addVaryingSource(std::int32_t seed) {
        return add<SourceNode>([seed] { return makeVaryingSource(seed); });
    }
    /// Links output 0 of `from` to the inplug named `input` of `to`.
    void connect(Node* from, Node* to, const std::string& input) {
        const int inplug = to->FindInplug(input);
        ASSERT_GE(inplug, 0) << to->GetTypeName() << " has no inplug '" << input << "'";
        std::string error;
        ASSERT_TRUE(engine.Connect(from, 0, to, static_cast<unsigned>(inplug), &error)) << error;
    }
    void set(Node* node, unsigned attributeId, const NodeValue& value) {
        std::string error;
        ASSERT_TRUE(engine.SetAttributeValue(node, attributeId, value, &error)) << error;
    }
    void setNumber(Node* node, unsigned attributeId, double value) {
        set(node, attributeId, NodeValue::Number(value));
    }

    /// Evaluates the node (and what it needs) and returns the module on its output 0, or
    /// null. The module is valid until the node or something upstream evaluates again.
    const noisepp::Module* evaluate(Node* node) {
        EXPECT_TRUE(engine.EvaluateNode(node)) << node->GetStateMessage();
        return moduleOf(node);
    }
    /// The module on output 0 as of the last evaluation, or null.
    const noisepp::Module* moduleOf(const Node* node) const {
        const NodeValue value = engine.GetOutputValue(node, 0);
        return value.GetType() == NodeValue::kTexture && value.GetTexture() != nullptr
                   ? value.GetTexture()->module
                   : nullptr;
    }

    Engine engine;

private:
    std::string nextId() {
        std::ostringstream id;
        id << "n" << mNext++;
        return id.str();
    }

    int mNext = 0;
};

inline bool sameBits(const noisepp::TextureColor& a, const noisepp::TextureColor& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

inline std::string describe(const noisepp::TextureColor& c) {
    std::ostringstream text;
    text.precision(9);
    text << "(" << c.red << ", " << c.green << ", " << c.blue << ", " << c.opacity << ")";
    return text.str();
}

/// Samples a compiled module tree at one point.
class CompiledTexture {
public:
    explicit CompiledTexture(const noisepp::Module& module)
        : mElement(mPipeline.getElement(module.addToPipeline(&mPipeline))) {}
    noisepp::TextureColor at(double x, double y, double z) const {
        return mElement->getValue(x, y, z);
    }

private:
    noisepp::Pipeline3D mPipeline;
    const noisepp::PipelineElement3D* mElement;
};

/// Compiles both trees and expects identical bits at a spread of points around the origin.
inline void expectSameTexture(const noisepp::Module& actual, const noisepp::Module& expected) {
    const CompiledTexture a(actual);
    const CompiledTexture b(expected);
    int mismatches = 0;
    for (double x : {-1.7, -0.3, 0.4, 1.25, 2.9})
        for (double y : {-2.2, 0.05, 0.75, 1.6})
            for (double z : {-0.6, 0.35, 1.8}) {
                const noisepp::TextureColor got = a.at(x, y, z);
                const noisepp::TextureColor want = b.at(x, y, z);
                if (!sameBits(got, want) && mismatches++ < 3)
                    ADD_FAILURE() << "at (" << x << ", " << y << ", " << z << "): " << describe(got)
                                  << " instead of " << describe(want);
            }
    EXPECT_EQ(mismatches, 0);
}

/// A number as it reaches a module: through a 32-bit float.
inline double viaFloat(double value) {
    return static_cast<double>(static_cast<float>(value));
}

}  // namespace modtest
