// Covers: the parameter stream of every module of this family: the byte layouts (Clamp and
// ScaleBias as fixed, the others as this engine defines them), round trips that keep the
// compiled behaviour, parameterless modules writing nothing, and refused or short streams
// leaving the module unchanged.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ModifierTestModules.h"
#include "noisepp/modules/AdditionModule.h"
#include "noisepp/modules/BlendModule.h"
#include "noisepp/modules/ClampModule.h"
#include "noisepp/modules/CurveModule.h"
#include "noisepp/modules/ExponentModule.h"
#include "noisepp/modules/GradientModule.h"
#include "noisepp/modules/ImageModule.h"
#include "noisepp/modules/InvertModule.h"
#include "noisepp/modules/JoinModule.h"
#include "noisepp/modules/RgbMapModule.h"
#include "noisepp/modules/ScaleBiasModule.h"
#include "noisepp/modules/SelectModule.h"
#include "noisepp/modules/TerraceModule.h"
#include "noisepp/modules/TransformModule.h"

namespace noisepp {
namespace {

using test::bytesOf;
using test::Compiled;
using test::copyThroughStream;
using test::EchoModule;

// Reads back the fields of a written stream one by one.
class Fields {
public:
    explicit Fields(const Module& module) : mIn(bytesOf(module)) {}
    double real() { return mIn.readDouble(); }
    std::int32_t integer() { return mIn.readInt32(); }
    std::size_t remaining() const { return mIn.remaining(); }

private:
    MemoryInStream mIn;
};

// Bytes of doubles and int32s, for hand-made streams.
class Bytes {
public:
    Bytes& real(double v) {
        mOut.writeDouble(v);
        return *this;
    }
    Bytes& integer(std::int32_t v) {
        mOut.writeInt32(v);
        return *this;
    }
    MemoryInStream stream() const { return MemoryInStream(mOut.data()); }

private:
    MemoryOutStream mOut;
};

// Both modules over an echo source give the same colour at a few points.
void expectSameBehaviour(Module& a, Module& b) {
    EchoModule echo;
    a.setSourceModule(0, &echo);
    b.setSourceModule(0, &echo);
    const Compiled first(a);
    const Compiled second(b);
    // Non-negative points only: a fractional exponent of a negative channel is NaN, which
    // never compares equal.
    for (const double v : {0.0, 0.1, 0.45, 0.9, 1.6}) {
        EXPECT_EQ(first.at(v, 0.5 * v, 1.0 + v), second.at(v, 0.5 * v, 1.0 + v)) << "at " << v;
    }
}

TEST(ModifierStream, ClampWritesEightWidenedFloats) {
    ClampModule clamp;
    clamp.setLowerColor({0.1f, 0.2f, 0.3f, 0.4f});
    clamp.setUpperColor({0.6f, 0.7f, 0.8f, 0.9f});
    Fields fields(clamp);
    for (const float v : {0.1f, 0.2f, 0.3f, 0.4f, 0.6f, 0.7f, 0.8f, 0.9f}) {
        EXPECT_EQ(fields.real(), static_cast<double>(v));
    }
    EXPECT_EQ(fields.remaining(), 0u);

    ClampModule copy;
    copyThroughStream(clamp, copy);
    EXPECT_EQ(copy.getLowerColor(), clamp.getLowerColor());
    EXPECT_EQ(copy.getUpperColor(), clamp.getUpperColor());
}

TEST(ModifierStream, ScaleBiasWritesScaleThenBiasAsDoubles) {
    ScaleBiasModule scaleBias;
    scaleBias.setScale(0.3f);
    scaleBias.setBias(-0.7f);
    Fields fields(scaleBias);
    EXPECT_EQ(fields.real(), static_cast<double>(0.3f));
    EXPECT_EQ(fields.real(), static_cast<double>(-0.7f));
    EXPECT_EQ(fields.remaining(), 0u);

    ScaleBiasModule copy;
    copyThroughStream(scaleBias, copy);
    EXPECT_EQ(copy.getScale(), 0.3f);
    EXPECT_EQ(copy.getBias(), -0.7f);
}

TEST(ModifierStream, TransformWritesTranslationRotationScale) {
    TransformModule transform;
    transform.setTranslation(1, 2, 3);
    transform.setRotation(0.4, 0.5, 0.6);
    transform.setScale(7, 8, 9);
    Fields fields(transform);
    for (const double v : {1.0, 2.0, 3.0, 0.4, 0.5, 0.6, 7.0, 8.0, 9.0})
        EXPECT_EQ(fields.real(), v);
    EXPECT_EQ(fields.remaining(), 0u);

    TransformModule copy;
    copyThroughStream(transform, copy);
    expectSameBehaviour(transform, copy);
}

TEST(ModifierStream, SingleNumberModules) {
    RgbMapModule map;
    map.setMix(0.375);
    EXPECT_EQ(Fields(map).real(), 0.375);
    RgbMapModule mapCopy;
    copyThroughStream(map, mapCopy);
    EXPECT_EQ(mapCopy.getMix(), 0.375);

    ExponentModule exponent;
    exponent.setExponent(2.5);
    EXPECT_EQ(Fields(exponent).real(), 2.5);
    ExponentModule exponentCopy;
    copyThroughStream(exponent, exponentCopy);
    expectSameBehaviour(exponent, exponentCopy);
}

TEST(ModifierStream, CurveWritesCountThenPairs) {
    CurveModule curve;
    for (int i = 0; i < 5; ++i)
        curve.addControlPoint(i * 0.25, i * i * 0.0625);
    Fields fields(curve);
    EXPECT_EQ(fields.integer(), 5);
    EXPECT_EQ(fields.real(), 0.0);
    EXPECT_EQ(fields.real(), 0.0);
    EXPECT_EQ(fields.real(), 0.25);
    EXPECT_EQ(fields.real(), 0.0625);
    EXPECT_EQ(fields.remaining(), 6u * 8u);

    CurveModule copy;
    copyThroughStream(curve, copy);
    EXPECT_EQ(copy.getControlPoints(), curve.getControlPoints());
}

TEST(ModifierStream, TerraceWritesCountPointsAndFlag) {
    TerraceModule terrace;
    for (const double p : {-1.0, 0.25, 0.5, 2.0})
        terrace.addTerracePoint(p);
    terrace.setInvertTerraces(true);
    Fields fields(terrace);
    EXPECT_EQ(fields.integer(), 4);
    for (const double p : {-1.0, 0.25, 0.5, 2.0})
        EXPECT_EQ(fields.real(), p);
    EXPECT_EQ(fields.integer(), 1);
    EXPECT_EQ(fields.remaining(), 0u);

    TerraceModule copy;
    copyThroughStream(terrace, copy);
    EXPECT_EQ(copy.getTerracePoints(), terrace.getTerracePoints());
    EXPECT_TRUE(copy.getInvertTerraces());
    expectSameBehaviour(terrace, copy);
}

TEST(ModifierStream, GradientWritesModeCountAndStops) {
    GradientModule gradient;
    gradient.getGradient().setMode(ColorGradient::kSmooth);
    gradient.getGradient().addStop(0.75f, {0.1f, 0.2f, 0.3f, 0.4f});
    gradient.getGradient().addStop(0.25f, {0.5f, 0.6f, 0.7f, 0.8f});
    Fields fields(gradient);
    EXPECT_EQ(fields.integer(), 2);
    EXPECT_EQ(fields.integer(), 2);
    for (const float v : {0.25f, 0.5f, 0.6f, 0.7f, 0.8f, 0.75f, 0.1f, 0.2f, 0.3f, 0.4f}) {
        EXPECT_EQ(fields.real(), static_cast<double>(v));
    }
    EXPECT_EQ(fields.remaining(), 0u);

    GradientModule copy;
    copyThroughStream(gradient, copy);
    ASSERT_EQ(copy.getGradient().getStopCount(), 2u);
    EXPECT_EQ(copy.getGradient().getStops()[0].reciprocalSpan,
              gradient.getGradient().getStops()[0].reciprocalSpan)
        << "spans are prepared again on reading";
    expectSameBehaviour(gradient, copy);
}

TEST(ModifierStream, CombinerParameters) {
    BlendModule blend;
    blend.setOpacity(0.625);
    blend.setMode(11);
    Fields blendFields(blend);
    EXPECT_EQ(blendFields.real(), 0.625);
    EXPECT_EQ(blendFields.integer(), 11);
    BlendModule blendCopy;
    copyThroughStream(blend, blendCopy);
    EXPECT_EQ(blendCopy.getOpacity(), 0.625);
    EXPECT_EQ(blendCopy.getMode(), 11u);

    SelectModule select;
    select.setLowerBound(-0.25);
    select.setUpperBound(0.5);
    select.setEdgeFalloff(0.125);
    Fields selectFields(select);
    for (const double v : {-0.25, 0.5, 0.125})
        EXPECT_EQ(selectFields.real(), v);
    SelectModule selectCopy;
    copyThroughStream(select, selectCopy);
    EXPECT_EQ(selectCopy.getLowerBound(), -0.25);
    EXPECT_EQ(selectCopy.getUpperBound(), 0.5);
    EXPECT_EQ(selectCopy.getEdgeFalloff(), 0.125);

    JoinModule join;
    join.setRed(0.1);
    join.setGreen(0.9);
    join.setBlue(0.3);
    Fields joinFields(join);
    for (const double v : {0.1, 0.9, 0.3})
        EXPECT_EQ(joinFields.real(), v);
    JoinModule joinCopy;
    copyThroughStream(join, joinCopy);
    EXPECT_EQ(joinCopy.getGreen(), 0.9);
}

TEST(ModifierStream, ImageWritesItsTilingFlagsOnly) {
    const double table[4] = {0.5, 0.5, 0.5, 1.0};
    ImageModule image;
    image.setImage(1, 1, table);
    image.setFlags(ImageModule::kRepeatX | ImageModule::kRepeatY);
    Fields fields(image);
    EXPECT_EQ(fields.integer(), 3);
    EXPECT_EQ(fields.remaining(), 0u);
    ImageModule copy;
    copyThroughStream(image, copy);
    EXPECT_EQ(copy.getFlags(), 3u);
    EXPECT_EQ(copy.getTable(), nullptr) << "the picture is not part of the stream";
}

TEST(ModifierStream, ParameterlessModulesWriteNothing) {
    EXPECT_TRUE(bytesOf(InvertModule()).empty());
    EXPECT_TRUE(bytesOf(AdditionModule()).empty());
}

TEST(ModifierStream, ShortOrInvalidStreamsLeaveTheModuleUnchanged) {
    TransformModule transform;
    transform.setTranslation(1, 2, 3);
    MemoryInStream shortTransform = Bytes().real(9).real(9).stream();
    EXPECT_THROW(transform.read(shortTransform), StreamException);
    EXPECT_EQ(transform.getTranslation(), (std::array<double, 3>{1, 2, 3}));

    CurveModule curve;
    curve.addControlPoint(1, 2);
    MemoryInStream negative = Bytes().integer(-1).stream();
    EXPECT_THROW(curve.read(negative), StreamException);
    MemoryInStream truncated = Bytes().integer(3).real(0).real(0).stream();
    EXPECT_THROW(curve.read(truncated), StreamException);
    EXPECT_EQ(curve.getControlPointCount(), 1u);

    TerraceModule terrace;
    MemoryInStream negativeTerrace = Bytes().integer(-5).stream();
    EXPECT_THROW(terrace.read(negativeTerrace), StreamException);

    GradientModule gradient;
    gradient.getGradient().addStop(0.5f, {1, 1, 1, 1});
    MemoryInStream negativeGradient = Bytes().integer(1).integer(-2).stream();
    EXPECT_THROW(gradient.read(negativeGradient), StreamException);
    EXPECT_EQ(gradient.getGradient().getStopCount(), 1u);

    BlendModule blend;
    blend.setMode(3);
    MemoryInStream badMode = Bytes().real(0.5).integer(17).stream();
    EXPECT_THROW(blend.read(badMode), ParamInvalidException);
    EXPECT_EQ(blend.getMode(), 3u);
    EXPECT_EQ(blend.getOpacity(), 1.0);
}

}  // namespace
}  // namespace noisepp
