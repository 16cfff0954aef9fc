#include "nodes/TextureTransformNode.h"

#include <memory>

#include "nodes/NodeInputs.h"
#include "noisepp/modules/TransformModule.h"

TextureTransformNode::TextureTransformNode() {
    const auto number = [this](unsigned id, const char* name, double value, double limit,
                               double step, int decimals) {
        mAttributes.push_back(
            std::make_unique<Attribute>(this, id, name, value, -limit, limit, step, decimals));
    };
    number(kTranslationX, "translation_x", 0.0, 10000.0, 0.01, 3);
    number(kTranslationY, "translation_y", 0.0, 10000.0, 0.01, 3);
    number(kTranslationZ, "translation_z", 0.0, 10000.0, 0.01, 3);
    number(kRotationX, "rotation_x", 0.0, 360.0, 1.0, 2);
    number(kRotationY, "rotation_y", 0.0, 360.0, 1.0, 2);
    number(kRotationZ, "rotation_z", 0.0, 360.0, 1.0, 2);
    number(kScaleX, "scale_x", 1.0, 10000.0, 0.01, 3);
    number(kScaleY, "scale_y", 1.0, 10000.0, 0.01, 3);
    number(kScaleZ, "scale_z", 1.0, 10000.0, 0.01, 3);
    mRegularInputs.push_back({kTextureInput, kTexturePlug, "texture"});
    mOutputs.push_back({0, kTexturePlug, "texture"});
    UpdateInplugsAndOutplugs();
}

TextureTransformNode::~TextureTransformNode() {
    delete mModule;
}

void TextureTransformNode::Evaluate(unsigned /*outplug*/, Node::Value** inputs) {
    // Downstream trees point at the old module; it goes whatever happens next.
    delete mModule;
    mModule = nullptr;
    if (!IsEvaluationEnabled())
        return;

    const texture::TextureInput source(*this, inputs, kTextureInput);
    if (source.module() == nullptr)
        return;

    const auto number = [&](unsigned id) { return texture::readNumberAsFloat(*this, inputs, id); };
    // Degrees become radians in single precision, with the host's float factor, so that a
    // document renders the same angles here as in the host's own nodes.
    const auto radians = [&](unsigned id) {
        const float degrees = static_cast<float>(texture::readNumber(*this, inputs, id));
        return static_cast<double>(degrees * Mathf::DEG_TO_RAD);
    };
    auto module = std::make_unique<noisepp::TransformModule>();
    module->setTranslation(number(kTranslationX), number(kTranslationY), number(kTranslationZ));
    module->setRotation(radians(kRotationX), radians(kRotationY), radians(kRotationZ));
    module->setScale(number(kScaleX), number(kScaleY), number(kScaleZ));
    module->setSourceModule(0, source.module());
    mModule = module.release();
}

TextureHandle* TextureTransformNode::GetOutputTexture(unsigned index) {
    return index == 0 ? new TextureHandle(mModule) : nullptr;
}
