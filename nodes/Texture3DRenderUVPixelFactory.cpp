#include "nodes/Texture3DRenderUVPixelFactory.h"

Texture3DRenderUVPixelFactory::Texture3DRenderUVPixelFactory(
    const noisepp::Pipeline3D* pipeline, const noisepp::PipelineElement3D* element,
    const Image* translate, const Image* rotate, const Image* scale,
    const Texture3DRenderUVPixel::Ranges& ranges)
    : mPipeline(pipeline),
      mElement(element),
      mTranslate(translate),
      mRotate(rotate),
      mScale(scale),
      mRanges(ranges) {}

Texture3DRenderUVPixelFactory::~Texture3DRenderUVPixelFactory() {
    const boost::mutex::scoped_lock lock(mPixelsMutex);
    for (Texture3DRenderUVPixel* pixel : mPixels)
        delete pixel;
    mPixels.clear();
}

RenderUVPixel* Texture3DRenderUVPixelFactory::CreateRenderUVPixel() {
    const boost::mutex::scoped_lock lock(mPixelsMutex);
    // Reserve before making the object, so that a failed append cannot leak it.
    mPixels.reserve(mPixels.size() + 1);
    auto* pixel =
        new Texture3DRenderUVPixel(mPipeline, mElement, mTranslate, mRotate, mScale, mRanges);
    mPixels.push_back(pixel);
    return pixel;
}
