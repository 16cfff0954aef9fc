#include "nodes/TextureGradientNode.h"

#include <memory>

#include "host/Image.h"
#include "nodes/NodeInputs.h"
#include "noisepp/modules/GradientModule.h"

namespace {

noisepp::TextureColor narrow(const Rgbo& color) {
    return {static_cast<float>(color.red), static_cast<float>(color.green),
            static_cast<float>(color.blue), static_cast<float>(color.opacity)};
}

void addImageStops(Image* image, noisepp::ColorGradient& gradient) {
    ImageRgboSampler sampler;
    sampler.Set(image, 0, 1);
    const int width = image->GetSizeX();
    // Positions are computed in single precision, as the stops store them, so that a stop
    // samples exactly the column it stands for.
    const float columnWidth = 1.0f / static_cast<float>(width);
    for (int x = 0; x < width; ++x) {
        const float position = static_cast<float>(x) * columnWidth;
        gradient.addStop(position, narrow(sampler.GetGradientSample(position, 0, 0)));
    }
}

void addVertexStops(const VertexGradient& vertices, noisepp::ColorGradient& gradient) {
    for (const VertexGradient::Vertex& vertex : vertices.vertices)
        gradient.addStop(static_cast<float>(vertex.position), narrow(vertex.color));
}

}  // namespace

TextureGradientNode::TextureGradientNode() {
    mRegularInputs.push_back({kTextureInput, kTexturePlug, "texture"});
    mRegularInputs.push_back({kGradientInput, kImagePlug, "gradient"});
    mOutputs.push_back({0, kTexturePlug, "texture"});
    UpdateInplugsAndOutplugs();
}

TextureGradientNode::~TextureGradientNode() {
    delete mModule;
}

void TextureGradientNode::Evaluate(unsigned /*outplug*/, Node::Value** inputs) {
    // Downstream trees point at the old module; it goes whatever happens next.
    delete mModule;
    mModule = nullptr;
    if (!IsEvaluationEnabled())
        return;

    const texture::TextureInput source(*this, inputs, kTextureInput);
    if (source.module() == nullptr)
        return;

    auto module = std::make_unique<noisepp::GradientModule>();
    const VertexGradient own = GetCopyGradient();
    noisepp::ColorGradient& gradient = module->getGradient();
    gradient.setMode(own.interpolation);
    // Stops are inserted in order of position (stable for equal positions), which also
    // prepares the span from each stop to the next.
    if (Image* image = texture::readImage(*this, inputs, kGradientInput))
        addImageStops(image, gradient);
    else
        addVertexStops(own, gradient);
    module->setSourceModule(0, source.module());
    mModule = module.release();
}

TextureHandle* TextureGradientNode::GetOutputTexture(unsigned index) {
    return index == 0 ? new TextureHandle(mModule) : nullptr;
}
