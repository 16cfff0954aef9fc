#pragma once

#include <string>

#include "host/Node.h"

namespace noisepp {
class Module;
}

/// "Blobs Texture" (10, 304, 1317): soft spheres scattered over a lattice, at most one per
/// cell. Output 0 "texture".
class TextureBlobsNode : public Node {
public:
    enum AttributeId : unsigned {
        kFrequency = 0,  ///< 1.0 in 0 ... 1000
        kInteraction,    ///< choice "small,large", small
        kMinRadius,      ///< 1.0 in 0 ... 1
        kMaxRadius,      ///< 1.0 in 0 ... 1
        kDensity,        ///< 0.5 in 0 ... 1: share of cells holding a blob
        kSeed,           ///< 0 in 0 ... 255, rounded half down
        kColorA,         ///< opaque black
        kColorB,         ///< opaque white
    };

    TextureBlobsNode();
    ~TextureBlobsNode() override;

    NodeType GetNodeType() const override { return {10, 304, 1317}; }
    std::string GetTypeName() const override { return "Blobs Texture"; }
    /// Replaces the current module with a new noisepp::BlobsModule built from the attributes;
    /// builds nothing while the host's evaluation flag is clear. When max_radius exceeds
    /// min_radius, both radii become their mean, so every blob has that one radius; radii
    /// vary (between max_radius and min_radius) only when max_radius is at most min_radius.
    void Evaluate(unsigned outplug, Value** inputs) override;
    /// Index 0: a new handle on the current module (null before the first evaluation).
    TextureHandle* GetOutputTexture(unsigned index) override;

private:
    noisepp::Module* mModule = nullptr;
};
