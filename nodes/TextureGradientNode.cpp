#include "nodes/TextureGradientNode.h"

#include "host/Image.h"
#include "nodes/NodeInputs.h"

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

TextureGradientNode::TextureGradientNode()
    : ModuleNode(CatalogueEntry("TextureGradientNode"), {}, {{"texture"}}) {
    mRegularInputs.push_back({kGradientInput, kImagePlug, "gradient"});
    UpdateInplugsAndOutplugs();
}

void TextureGradientNode::Complete(noisepp::GradientModule& module, Value** inputs) {
    const VertexGradient own = GetCopyGradient();
    noisepp::ColorGradient& gradient = module.getGradient();
    gradient.setMode(own.interpolation);
    // Stops are inserted in order of position (stable for equal positions), which also
    // prepares the span from each stop to the next.
    if (Image* image = texture::readImage(*this, inputs, kGradientInput))
        addImageStops(image, gradient);
    else
        addVertexStops(own, gradient);
}
