#include "nodes/TextureTransformNode.h"

#include "host/HostTypes.h"

namespace {

using ThisNode = TextureTransformNode;

texture::AttributeDeclaration symmetric(unsigned id, const char* name, double value, double limit,
                                        double step, int decimals, const char* description) {
    return texture::number(id, name, value, -limit, limit, step, decimals, description);
}

const std::vector<ThisNode::Row>& rows() {
    static const std::vector<ThisNode::Row> table = {
        {symmetric(ThisNode::kTranslationX, "translation_x", 0.0, 10000.0, 0.01, 3,
                   "Moves the texture along x, in texture units.")},
        {symmetric(ThisNode::kTranslationY, "translation_y", 0.0, 10000.0, 0.01, 3,
                   "Moves the texture along y, in texture units.")},
        {symmetric(ThisNode::kTranslationZ, "translation_z", 0.0, 10000.0, 0.01, 3,
                   "Moves the texture along z, in texture units.")},
        {symmetric(ThisNode::kRotationX, "rotation_x", 0.0, 360.0, 1.0, 2,
                   "Turns the texture about the x axis, in degrees.")},
        {symmetric(ThisNode::kRotationY, "rotation_y", 0.0, 360.0, 1.0, 2,
                   "Turns the texture about the y axis, in degrees.")},
        {symmetric(ThisNode::kRotationZ, "rotation_z", 0.0, 360.0, 1.0, 2,
                   "Turns the texture about the z axis, in degrees.")},
        {symmetric(ThisNode::kScaleX, "scale_x", 1.0, 10000.0, 0.01, 3,
                   "Stretches the texture along x; 2 makes its features twice as wide.")},
        {symmetric(ThisNode::kScaleY, "scale_y", 1.0, 10000.0, 0.01, 3,
                   "Stretches the texture along y.")},
        {symmetric(ThisNode::kScaleZ, "scale_z", 1.0, 10000.0, 0.01, 3,
                   "Stretches the texture along z.")},
    };
    return table;
}

}  // namespace

TextureTransformNode::TextureTransformNode()
    : ModuleNode(CatalogueEntry("TextureTransformNode"), rows(), {{"texture"}}) {}

void TextureTransformNode::Complete(noisepp::TransformModule& module, Value** inputs) {
    const auto number = [&](unsigned id) { return texture::readNumberAsFloat(*this, inputs, id); };
    // Degrees become radians in single precision, with the host's float factor, so that a
    // document renders the same angles here as in the host's own nodes.
    const auto radians = [&](unsigned id) {
        const float degrees = static_cast<float>(texture::readNumber(*this, inputs, id));
        return static_cast<double>(degrees * Mathf::DEG_TO_RAD);
    };
    module.setTranslation(number(kTranslationX), number(kTranslationY), number(kTranslationZ));
    module.setRotation(radians(kRotationX), radians(kRotationY), radians(kRotationZ));
    module.setScale(number(kScaleX), number(kScaleY), number(kScaleZ));
}
