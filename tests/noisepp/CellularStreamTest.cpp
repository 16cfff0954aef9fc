// Covers: the parameter streams of Voronoi, Blobs, Wave, Checkerboard and Fibers (byte layout,
// round trip, what is left out, short streams), and identical images from the plain and the
// threaded pipeline for every cellular and pattern generator.

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

#include "noisepp/core/Exception.h"
#include "noisepp/core/Stream.h"
#include "noisepp/core/ThreadedPipeline.h"
#include "noisepp/modules/BlobsModule.h"
#include "noisepp/modules/CheckerboardModule.h"
#include "noisepp/modules/ConstantModule.h"
#include "noisepp/modules/FibersModule.h"
#include "noisepp/modules/VoronoiModule.h"
#include "noisepp/modules/WaveModule.h"
#include "noisepp/utils/PlaneBuilder.h"
#include "noisepp/utils/ProcessorCount.h"

namespace noisepp {
namespace {

std::vector<unsigned char> bytesOf(const Module& module) {
    MemoryOutStream out;
    module.write(out);
    return out.data();
}

std::vector<unsigned char> littleEndian(const void* value, std::size_t size) {
    std::vector<unsigned char> bytes(size);
    std::memcpy(bytes.data(), value, size);
    return bytes;  // the build machines are little-endian, as the stream is
}

std::vector<unsigned char> operator+(std::vector<unsigned char> a,
                                     const std::vector<unsigned char>& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

std::vector<unsigned char> doubleBytes(double v) {
    return littleEndian(&v, sizeof v);
}

std::vector<unsigned char> int32Bytes(std::int32_t v) {
    return littleEndian(&v, sizeof v);
}

TEST(CellularStream, VoronoiWritesFrequencySeedDisplacementAndShapeOnly) {
    VoronoiModule m;
    m.setFrequency(2.75);
    m.setSeed(-1234);
    m.setDisplacement(0.125);
    m.setShape(3);
    m.setBias(0.3);
    m.setRangeLow(0.2);
    const auto bytes = bytesOf(m);
    EXPECT_EQ(bytes, doubleBytes(2.75) + int32Bytes(-1234) + doubleBytes(0.125) + int32Bytes(3));
    EXPECT_EQ(bytes[8], 0x2E) << "the seed's lowest byte comes first";

    VoronoiModule copy;
    MemoryInStream in(bytes);
    copy.read(in);
    EXPECT_EQ(in.remaining(), 0u);
    EXPECT_EQ(copy.getFrequency(), 2.75);
    EXPECT_EQ(copy.getSeed(), -1234);
    EXPECT_EQ(copy.getDisplacement(), 0.125);
    EXPECT_EQ(copy.getShape(), 3);
    EXPECT_EQ(copy.getBias(), 1.0) << "bias is not streamed";
    EXPECT_EQ(copy.getRangeLow(), 0.0) << "the range is not streamed";

    VoronoiModule untouched;
    MemoryInStream shortStream(std::vector<unsigned char>(bytes.begin(), bytes.end() - 1));
    EXPECT_THROW(untouched.read(shortStream), StreamException);
    EXPECT_EQ(untouched.getFrequency(), 1.0) << "a short stream changes nothing";
    EXPECT_EQ(untouched.getSeed(), 0);
}

TEST(CellularStream, BlobsAndWaveWriteTheirFrequencyOnly) {
    BlobsModule blobs;
    blobs.setFrequency(3.5);
    blobs.setSeed(9);
    blobs.setDensity(0.2);
    EXPECT_EQ(bytesOf(blobs), doubleBytes(3.5));
    BlobsModule blobsCopy;
    MemoryInStream blobsIn(bytesOf(blobs));
    blobsCopy.read(blobsIn);
    EXPECT_EQ(blobsCopy.getFrequency(), 3.5);
    EXPECT_EQ(blobsCopy.getSeed(), 0);
    EXPECT_EQ(blobsCopy.getDensity(), 255.0);

    WaveModule wave;
    wave.setFrequency(-0.5);
    wave.setRange(0.3);
    wave.setNoiseSeed(4);
    EXPECT_EQ(bytesOf(wave), doubleBytes(-0.5));
    WaveModule waveCopy;
    MemoryInStream waveIn(bytesOf(wave));
    waveCopy.read(waveIn);
    EXPECT_EQ(waveCopy.getFrequency(), -0.5);
    EXPECT_EQ(waveCopy.getRange(), 1.0);
    EXPECT_EQ(waveCopy.getNoiseSeed(), 0);

    MemoryInStream empty(std::vector<unsigned char>{});
    EXPECT_THROW(waveCopy.read(empty), StreamException);
}

TEST(CellularStream, CheckerboardAndFibersStreamNothing) {
    CheckerboardModule board;
    board.setColorA({1, 0, 0, 1});
    FibersModule fibres;
    fibres.setScale(4.0);
    fibres.setSeed(77);
    EXPECT_TRUE(bytesOf(board).empty());
    EXPECT_TRUE(bytesOf(fibres).empty());
    MemoryInStream empty(std::vector<unsigned char>{});
    fibres.read(empty);
    EXPECT_EQ(fibres.getScale(), 4.0);
    EXPECT_EQ(fibres.getSeed(), 77);
}

// ---------------------------------------------------------------------------------------------

std::vector<TextureColor> renderPlane(const Module& module, std::size_t processors) {
    utils::setProcessorCount(processors);
    std::vector<TextureColor> image(53 * 41);
    utils::PlaneBuilder builder;
    builder.setDestination(image.data());
    builder.setSize(53, 41);
    builder.setBounds(-2.3, -1.7, 3.1, 2.2);
    builder.setZValue(0.45);
    builder.setModule(&module);
    builder.build();
    utils::setProcessorCount(0);
    return image;
}

TEST(CellularThreads, ThreadedAndPlainPipelinesRenderIdenticalImages) {
    std::vector<std::unique_ptr<Module>> modules;
    for (int shape = 0; shape < 4; ++shape) {
        auto voronoi = std::make_unique<VoronoiModule>();
        voronoi->setShape(shape);
        voronoi->setSeed(31);
        modules.push_back(std::move(voronoi));
    }
    auto blobs = std::make_unique<BlobsModule>();
    blobs->setDensity(0.4);
    blobs->setLargeInteraction(true);
    modules.push_back(std::move(blobs));
    auto wave = std::make_unique<WaveModule>();
    wave->setWaveType(1);
    wave->setNoiseStrength(0.6);
    wave->setNoiseScale(0.8);
    modules.push_back(std::move(wave));
    modules.push_back(std::make_unique<CheckerboardModule>());
    auto constant = std::make_unique<ConstantModule>();
    constant->setColor({0.3f, 0.2f, 0.1f, 0.5f});
    modules.push_back(std::move(constant));
    for (int shape = 0; shape < 3; ++shape) {
        auto fibres = std::make_unique<FibersModule>();
        fibres->setShape(shape);
        fibres->setFibers(24);
        fibres->setScale(2.0);
        modules.push_back(std::move(fibres));
    }
    // Fibres over a Voronoi matrix: the source element is shared by the worker threads too.
    auto fibresOverCells = std::make_unique<FibersModule>();
    fibresOverCells->setSourceModule(0, modules[1].get());
    modules.push_back(std::move(fibresOverCells));

    for (const auto& module : modules) {
        const auto plain = renderPlane(*module, 1);
        const auto threaded = renderPlane(*module, 3);
        EXPECT_EQ(std::memcmp(plain.data(), threaded.data(), plain.size() * sizeof(TextureColor)),
                  0)
            << "module type " << module->getType();

        ThreadedPipeline3D pipeline(2);
        const PipelineElement3D* element = pipeline.getElement(module->addToPipeline(&pipeline));
        std::vector<TextureColor> given(plain.size());
        utils::PlaneBuilder builder;
        builder.setDestination(given.data());
        builder.setSize(53, 41);
        builder.setBounds(-2.3, -1.7, 3.1, 2.2);
        builder.setZValue(0.45);
        builder.build(&pipeline, element);
        EXPECT_EQ(std::memcmp(plain.data(), given.data(), plain.size() * sizeof(TextureColor)), 0)
            << "module type " << module->getType();
    }
}

}  // namespace
}  // namespace noisepp
