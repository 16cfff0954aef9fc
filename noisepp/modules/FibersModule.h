#pragma once

#include <cstdint>

#include "noisepp/core/Module.h"
#include "noisepp/core/TextureColor.h"

namespace noisepp {

/// Fibrous material: random fibres laid over a matrix, like paper, felt, brushed metal, hair or
/// wood (type code 0).
///
/// The texture space is cut into cells `aspect` long in x, 1 wide in y and one layer thick in
/// z, after scaling points by `scale`. Each cell holds up to `fibers` fibres lying parallel to
/// the xy plane; `density` is the share of them that is present. A fibre's direction strays
/// from the x axis by up to 90 degrees at alignment 0 and not at all at alignment 1; its length
/// is up to the cell length, shorter ones becoming more common as `bias` falls below 1 (0.5:
/// lengths evenly spread); its width is up to `size` times a quarter of the cell width, thinner
/// ones becoming more common as `sizeBias` falls below 1 (0.5: widths evenly spread). Shapes: 0
/// smooth (round spindles tapering to points, gently bowed unless fully aligned; also any unknown
/// shape), 1 box (square section, straight), 2 cylinder (round section, straight). `fade` is the
/// share of a fibre's half-width over which its edge fades into what lies below (0 hard edge, 1
/// from the centre line on).
///
/// Each fibre takes a random colour between colour A and colour B; higher fibres lie over lower
/// ones, and the matrix shows between them: the source texture (source 0, optional) where one
/// is set, the matrix colour otherwise.
///
/// The same seed gives the same fibres; changing any other parameter reshapes those fibres
/// instead of drawing new ones, and more fibres or a higher density add fibres without moving
/// the others.
///
/// Defaults: scale 1, aspect 1, 4 fibres, bias 1, alignment 0, density 1, smooth, size 0.5,
/// fade 0.5, size bias 0.5, seed 0, matrix colour opaque mid grey, colour A opaque black,
/// colour B opaque white. Every value is accepted: unit parameters are limited to 0..1, the
/// aspect to 1..8 and the fibre count to 0..256 when compiled. Nothing is streamed.
class FibersModule : public Module {
public:
    FibersModule() : Module(1) {}

    /// Cells per unit.
    void setScale(double scale) { mScale = scale; }
    double getScale() const { return mScale; }
    /// Length of a cell (and so of the longest fibres) in cell widths.
    void setAspect(double aspect) { mAspect = aspect; }
    double getAspect() const { return mAspect; }
    /// Fibre slots per cell.
    void setFibers(std::int32_t fibers) { mFibers = fibers; }
    std::int32_t getFibers() const { return mFibers; }
    /// Length bias: 1 all fibres full length, 0.5 lengths evenly spread, 0 all short.
    void setBias(double bias) { mBias = bias; }
    double getBias() const { return mBias; }
    /// 0 random directions, 1 every fibre along x.
    void setAlignment(double alignment) { mAlignment = alignment; }
    double getAlignment() const { return mAlignment; }
    /// Share of fibre slots that hold a fibre.
    void setDensity(double density) { mDensity = density; }
    double getDensity() const { return mDensity; }
    /// 0 smooth, 1 box, 2 cylinder.
    void setShape(std::int32_t shape) { mShape = shape; }
    std::int32_t getShape() const { return mShape; }
    /// Width of the widest fibres: a quarter of the cell width at 1, nothing at 0.
    void setSize(double size) { mSize = size; }
    double getSize() const { return mSize; }
    /// Softness of the fibre edges.
    void setFade(double fade) { mFade = fade; }
    double getFade() const { return mFade; }
    /// Width bias: 1 all fibres full width, 0.5 widths evenly spread, 0 all thin.
    void setSizeBias(double sizeBias) { mSizeBias = sizeBias; }
    double getSizeBias() const { return mSizeBias; }
    /// Chooses the fibres; the pipeline's seed is added to it when compiled.
    void setSeed(std::int32_t seed) { mSeed = seed; }
    std::int32_t getSeed() const { return mSeed; }
    /// Colour between the fibres when no source is set.
    void setColorMatrix(const TextureColor& color) { mColorMatrix = color; }
    const TextureColor& getColorMatrix() const { return mColorMatrix; }
    void setColorA(const TextureColor& color) { mColorA = color; }
    const TextureColor& getColorA() const { return mColorA; }
    void setColorB(const TextureColor& color) { mColorB = color; }
    const TextureColor& getColorB() const { return mColorB; }

    /// Compiles the matrix source first, when one is set, then builds the fibre layout.
    std::size_t addToPipeline(Pipeline3D* pipeline) const override;
    int getType() const override { return 0; }

private:
    double mScale = 1.0;
    double mAspect = 1.0;
    std::int32_t mFibers = 4;
    double mBias = 1.0;
    double mAlignment = 0.0;
    double mDensity = 1.0;
    std::int32_t mShape = 0;
    double mSize = 0.5;
    double mFade = 0.5;
    double mSizeBias = 0.5;
    std::int32_t mSeed = 0;
    TextureColor mColorMatrix{0.5f, 0.5f, 0.5f, 1.0f};
    TextureColor mColorA{0.0f, 0.0f, 0.0f, 1.0f};
    TextureColor mColorB{1.0f, 1.0f, 1.0f, 1.0f};
};

}  // namespace noisepp
