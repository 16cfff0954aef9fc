#pragma once

#include <vector>

#include <boost/thread/mutex.hpp>

#include "host/RenderUVPixel.h"
#include "nodes/Texture3DRenderUVPixel.h"

/// Makes the Render 3D Texture node's pixel shaders for one render, all sharing the render's
/// pipeline, texture element, driving images and parameter ranges (borrowed, read only).
///
/// The host renderer may ask for pixel objects from several threads at once; the factory
/// keeps the objects it made under a mutex and deletes them when it is destroyed.
class Texture3DRenderUVPixelFactory : public RenderUVPixelFactory {
public:
    Texture3DRenderUVPixelFactory(const noisepp::Pipeline3D* pipeline,
                                  const noisepp::PipelineElement3D* element, const Image* translate,
                                  const Image* rotate, const Image* scale,
                                  const Texture3DRenderUVPixel::Ranges& ranges);
    /// Deletes every pixel object made.
    ~Texture3DRenderUVPixelFactory() override;
    Texture3DRenderUVPixelFactory(const Texture3DRenderUVPixelFactory&) = delete;
    Texture3DRenderUVPixelFactory& operator=(const Texture3DRenderUVPixelFactory&) = delete;

    /// A new pixel object owned by the factory; safe to call from several threads.
    RenderUVPixel* CreateRenderUVPixel() override;

private:
    const noisepp::Pipeline3D* mPipeline;
    const noisepp::PipelineElement3D* mElement;
    const Image* mTranslate;
    const Image* mRotate;
    const Image* mScale;
    Texture3DRenderUVPixel::Ranges mRanges;
    std::vector<Texture3DRenderUVPixel*> mPixels;
    boost::mutex mPixelsMutex;
};
