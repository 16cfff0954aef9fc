#pragma once

#include "nodes/ModuleNode.h"
#include "noisepp/modules/BlobsModule.h"

/// "Blobs Texture": soft spheres scattered over a lattice, at most one per cell.
class TextureBlobsNode : public ModuleNode<noisepp::BlobsModule> {
public:
    enum AttributeId : unsigned {
        kFrequency = 0,
        kInteraction,
        kMinRadius,
        kMaxRadius,
        kDensity,
        kSeed,
        kColorA,
        kColorB,
    };

    TextureBlobsNode();

private:
    /// The radii: a well-ordered range gives every blob its mean, a reversed one varies them.
    void Complete(noisepp::BlobsModule& module, Value** inputs) override;
};
