#pragma once

#include <string>

#include "host/Node.h"

namespace noisepp {
class Module;
}

/// "Checkerboard Texture" (10, 304, 282): squares of 0.5 units in the xy plane alternating
/// between two colours. Output 0 "texture".
class TextureCheckerboardNode : public Node {
public:
    enum AttributeId : unsigned {
        kColorA = 0,  ///< opaque black, with "opacity_a"
        kColorB,      ///< opaque white, with "opacity_b"
    };

    TextureCheckerboardNode();
    ~TextureCheckerboardNode() override;

    NodeType GetNodeType() const override { return {10, 304, 282}; }
    std::string GetTypeName() const override { return "Checkerboard Texture"; }
    /// Replaces the current module with a new noisepp::CheckerboardModule in the two colours;
    /// builds nothing while the host's evaluation flag is clear.
    void Evaluate(unsigned outplug, Value** inputs) override;
    /// Index 0: a new handle on the current module (null before the first evaluation).
    TextureHandle* GetOutputTexture(unsigned index) override;

private:
    noisepp::Module* mModule = nullptr;
};
