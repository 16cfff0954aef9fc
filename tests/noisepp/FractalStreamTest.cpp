// Covers: the byte layout the fractal generators write (order, widths, little-endian), round
// trips through memory, that the colour settings stay out of the stream, and that a short
// stream leaves the module unchanged.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "noisepp/core/Exception.h"
#include "noisepp/core/Stream.h"
#include "noisepp/modules/BillowModule.h"
#include "noisepp/modules/PerlinModule.h"
#include "noisepp/modules/RidgedMultiModule.h"

namespace noisepp {
namespace {

/// Reads little-endian values out of a byte buffer, independently of the stream classes.
class ByteReader {
public:
    explicit ByteReader(const std::vector<unsigned char>& bytes) : mBytes(bytes) {}
    double nextDouble() {
        std::uint64_t bits = 0;
        for (int i = 7; i >= 0; --i)
            bits = (bits << 8) | mBytes.at(mPosition + i);
        mPosition += 8;
        double value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }
    std::int32_t nextInt32() {
        std::uint32_t bits = 0;
        for (int i = 3; i >= 0; --i)
            bits = (bits << 8) | mBytes.at(mPosition + i);
        mPosition += 4;
        return static_cast<std::int32_t>(bits);
    }
    std::size_t position() const { return mPosition; }

private:
    const std::vector<unsigned char>& mBytes;
    std::size_t mPosition = 0;
};

void configure(PerlinModuleBase& m) {
    m.setFrequency(1.5);
    m.setOctaveCount(4.25);
    m.setSeed(-123456);
    m.setQuality(5);
    m.setLacunarity(2.2);
    m.setPersistence(0.45);
    m.setScale(3.3);
    m.setColorize(false);
    m.setRangeLow(0.2);
    m.setRangeHigh(0.4);
    m.setColorA({0.5f, 0.5f, 0.5f, 0.5f});
}

TEST(FractalStreams, PerlinAndBillowWriteSevenValuesInOrder) {
    PerlinModule perlin;
    BillowModule billow;
    configure(perlin);
    configure(billow);
    MemoryOutStream perlinOut, billowOut;
    perlin.write(perlinOut);
    billow.write(billowOut);
    ASSERT_EQ(perlinOut.data().size(), 48u);
    EXPECT_EQ(perlinOut.data(), billowOut.data());

    ByteReader in(perlinOut.data());
    EXPECT_EQ(in.nextDouble(), 1.5);
    EXPECT_EQ(in.nextDouble(), 4.25);
    EXPECT_EQ(in.nextInt32(), -123456);
    EXPECT_EQ(in.nextInt32(), 5);
    EXPECT_EQ(in.nextDouble(), 2.2);
    EXPECT_EQ(in.nextDouble(), 0.45);
    EXPECT_EQ(in.nextDouble(), 3.3);
    EXPECT_EQ(in.position(), 48u);
}

TEST(FractalStreams, RidgedMultiWritesNineValuesInOrder) {
    RidgedMultiModule ridged;
    ridged.setFrequency(0.75);
    ridged.setOctaveCount(6.5);
    ridged.setSeed(77);
    ridged.setQuality(2);
    ridged.setLacunarity(1.9);
    ridged.setExponent(0.8);
    ridged.setOffset(0.9);
    ridged.setGain(2.5);
    ridged.setScale(1.7);
    MemoryOutStream out;
    ridged.write(out);
    ASSERT_EQ(out.data().size(), 64u);
    ByteReader in(out.data());
    EXPECT_EQ(in.nextDouble(), 0.75);
    EXPECT_EQ(in.nextDouble(), 6.5);
    EXPECT_EQ(in.nextInt32(), 77);
    EXPECT_EQ(in.nextInt32(), 2);
    EXPECT_EQ(in.nextDouble(), 1.9);
    EXPECT_EQ(in.nextDouble(), 0.8);
    EXPECT_EQ(in.nextDouble(), 0.9);
    EXPECT_EQ(in.nextDouble(), 2.5);
    EXPECT_EQ(in.nextDouble(), 1.7);
}

TEST(FractalStreams, RoundTripRestoresStreamedFieldsOnly) {
    PerlinModule written;
    configure(written);
    MemoryOutStream out;
    written.write(out);

    BillowModule read;  // the layout is shared, so a Billow module reads a Perlin stream
    MemoryInStream in(out.data());
    read.read(in);
    EXPECT_EQ(in.remaining(), 0u);
    EXPECT_EQ(read.getFrequency(), 1.5);
    EXPECT_EQ(read.getOctaveCount(), 4.25);
    EXPECT_EQ(read.getSeed(), -123456);
    EXPECT_EQ(read.getQuality(), 5);
    EXPECT_EQ(read.getLacunarity(), 2.2);
    EXPECT_EQ(read.getPersistence(), 0.45);
    EXPECT_EQ(read.getScale(), 3.3);
    // Colour settings are not streamed: the reader keeps its defaults.
    EXPECT_TRUE(read.getColorize());
    EXPECT_EQ(read.getRangeLow(), 0.0);
    EXPECT_EQ(read.getRangeHigh(), 1.0);
    EXPECT_EQ(read.getColorA(), (TextureColor{0.0f, 0.0f, 0.0f, 1.0f}));

    RidgedMultiModule ridged, ridgedCopy;
    ridged.setGain(-1.5);
    ridged.setExponent(0.3);
    ridged.setSeed(-2000000000);
    MemoryOutStream ridgedOut;
    ridged.write(ridgedOut);
    MemoryInStream ridgedIn(ridgedOut.data());
    ridgedCopy.read(ridgedIn);
    MemoryOutStream again;
    ridgedCopy.write(again);
    EXPECT_EQ(again.data(), ridgedOut.data());
    EXPECT_EQ(ridgedCopy.getGain(), -1.5);
}

TEST(FractalStreams, ShortStreamThrowsAndLeavesTheModuleUnchanged) {
    PerlinModule written;
    configure(written);
    MemoryOutStream out;
    written.write(out);
    std::vector<unsigned char> truncated(out.data().begin(), out.data().end() - 3);

    PerlinModule perlin;
    MemoryInStream in(truncated);
    EXPECT_THROW(perlin.read(in), StreamException);
    EXPECT_EQ(perlin.getFrequency(), 1.0);
    EXPECT_EQ(perlin.getOctaveCount(), 3.0);
    EXPECT_EQ(perlin.getSeed(), 0);

    RidgedMultiModule ridged;
    MemoryInStream ridgedIn(out.data());  // 48 bytes where 64 are needed
    EXPECT_THROW(ridged.read(ridgedIn), StreamException);
    EXPECT_EQ(ridged.getOctaveCount(), 6.0);
}

}  // namespace
}  // namespace noisepp
