#include "nodes/TextureFibersNode.h"

#include <cstdint>
#include <memory>

#include "nodes/NodeInputs.h"
#include "noisepp/modules/FibersModule.h"

TextureFibersNode::TextureFibersNode() {
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kScale, "scale", 1.0, 0.0, 1000.0, 0.001, 3));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kAspect, "aspect", 1.0, 1.0, 5.0, 1.0, 0));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kFibers, "fibers", 4.0, 1.0, 256.0, 1.0, 0));
    mAttributes.push_back(std::make_unique<Attribute>(this, kBias, "bias", 1.0, 0.0, 1.0, 0.01, 3));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kAlignment, "alignment", 0.0, 0.0, 1.0, 0.01, 3));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kDensity, "density", 1.0, 0.0, 1.0, 0.01, 3));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kShape, "shape", 0, "smooth,box,cylinder"));
    mAttributes.push_back(std::make_unique<Attribute>(this, kSize, "size", 0.5, 0.0, 1.0, 0.01, 3));
    mAttributes.push_back(std::make_unique<Attribute>(this, kFade, "fade", 0.5, 0.0, 1.0, 0.01, 3));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kSizeBias, "size_bias", 0.5, 0.0, 1.0, 0.01, 3));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kSeed, "seed", 0.0, 0.0, 50000.0, 1.0, 0));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kColorMatrix, "color_matrix", Rgbo{0.5, 0.5, 0.5, 1.0}));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kColorA, "color_a", Rgbo{0.0, 0.0, 0.0, 1.0}));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kColorB, "color_b", Rgbo{1.0, 1.0, 1.0, 1.0}));
    mRegularInputs.push_back({kMatrixInput, kTexturePlug, "matrix"});
    mOutputs.push_back({0, kTexturePlug, "texture"});
    UpdateInplugsAndOutplugs();
}

TextureFibersNode::~TextureFibersNode() {
    delete mModule;
}

void TextureFibersNode::Evaluate(unsigned, Value** inputs) {
    using namespace texture;
    delete mModule;
    mModule = nullptr;
    if (!IsEvaluationEnabled())
        return;
    const TextureInput matrix(*this, inputs, kMatrixInput);
    auto* module = new noisepp::FibersModule();
    module->setScale(readNumberAsFloat(*this, inputs, kScale));
    module->setAspect(readNumberAsFloat(*this, inputs, kAspect));
    // A slot count is a whole number; it rounds like every other integer attribute.
    module->setFibers(static_cast<std::int32_t>(roundHalfDown(readNumber(*this, inputs, kFibers))));
    module->setBias(readNumberAsFloat(*this, inputs, kBias));
    module->setAlignment(readNumberAsFloat(*this, inputs, kAlignment));
    module->setDensity(readNumberAsFloat(*this, inputs, kDensity));
    module->setShape(readChoice(*this, inputs, kShape));
    module->setSize(readNumberAsFloat(*this, inputs, kSize));
    module->setFade(readNumberAsFloat(*this, inputs, kFade));
    module->setSizeBias(readNumberAsFloat(*this, inputs, kSizeBias));
    module->setSeed(readSeed(*this, inputs, kSeed));
    module->setColorMatrix(readColor(*this, inputs, kColorMatrix));
    module->setColorA(readColor(*this, inputs, kColorA));
    module->setColorB(readColor(*this, inputs, kColorB));
    // The matrix is optional: without a module on the input the matrix colour shows instead.
    if (matrix.module() != nullptr)
        module->setSourceModule(0, matrix.module());
    mModule = module;
}

TextureHandle* TextureFibersNode::GetOutputTexture(unsigned index) {
    return index == 0 ? new TextureHandle(mModule) : nullptr;
}
