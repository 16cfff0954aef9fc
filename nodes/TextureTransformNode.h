#pragma once

#include <string>

#include "host/Node.h"

namespace noisepp {
class Module;
}

/// "Texture Transform": scales "texture" by "scale_x/y/z" (default 1), rotates it by
/// "rotation_x/y/z" degrees (about x, then y, then z) and moves it by "translation_x/y/z",
/// in that order. At its defaults it leaves the texture as it is. Offers no texture when its
/// input has none.
class TextureTransformNode : public Node {
public:
    enum AttributeId : unsigned {
        kTranslationX = 0,
        kTranslationY = 1,
        kTranslationZ = 2,
        kRotationX = 3,
        kRotationY = 4,
        kRotationZ = 5,
        kScaleX = 6,
        kScaleY = 7,
        kScaleZ = 8,
    };
    enum RegularInputId : unsigned { kTextureInput = 0 };

    TextureTransformNode();
    ~TextureTransformNode() override;

    NodeType GetNodeType() const override { return {10, 304, 512}; }
    std::string GetTypeName() const override { return "Texture Transform"; }
    /// Drops the previous module, then builds a new one over the input.
    void Evaluate(unsigned outplug, Node::Value** inputs) override;
    /// Index 0: a new handle (count 1) on the current module, which may be null; else null.
    TextureHandle* GetOutputTexture(unsigned index) override;

private:
    noisepp::Module* mModule = nullptr;
};
