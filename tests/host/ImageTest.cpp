// Images: reference counting, colour-mode conversion, fill, size limits, files (EXR exact, PNG
// and TIFF quantised, orientation, grey and grey+opacity input, opacity kept unassociated,
// atomic replacement, errors naming the file), and the gradient sampler.

#include <gtest/gtest.h>

#include <OpenImageIO/imageio.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "host/Image.h"
#include "tests/support/TempFolder.h"

namespace fs = std::filesystem;

namespace {

/// An image that releases itself at the end of the test.
struct Held {
    explicit Held(Image* image) : image(image) {
        if (image != nullptr)
            image->AddRef();
    }
    ~Held() {
        if (image != nullptr)
            image->Release();
    }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    Image* operator->() const { return image; }
    Image* image;
};

const float* Pixel(const Image& image, int x, int y) {
    return image.GetConstArray() + (static_cast<std::size_t>(y) * image.GetSizeX() + x) * 4;
}

/// A W x H image whose pixel (x, y) is (x / 4, y / 4, (x + y) / 8, 1 - x / 8).
Image* Ramp(int width, int height) {
    auto* image = new Image(width, height);
    float* p = image->GetArray();
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x, p += 4) {
            p[0] = x / 4.0f;
            p[1] = y / 4.0f;
            p[2] = (x + y) / 8.0f;
            p[3] = 1.0f - x / 8.0f;
        }
    return image;
}

class ImageFileTest : public ::testing::Test {
protected:
    // The image library's own worker pool is invisible to the thread sanitizer, which then
    // reports its hand-overs as races; its work stays on the calling thread here.
    static void SetUpTestSuite() { OIIO::attribute("threads", 1); }

    std::string In(const std::string& name) const { return folder / name; }
    bool Leftovers() const {
        for (const auto& entry : fs::directory_iterator(folder.Path()))
            if (entry.path().filename().string().find(".tmp-") != std::string::npos)
                return true;
        return false;
    }
    /// Writes raw 8-bit pixels (top row first) with the image library itself.
    void WriteRaw(const std::string& path, int width, int height, int channels,
                  const std::vector<unsigned char>& pixels) {
        auto out = OIIO::ImageOutput::create(path);
        ASSERT_TRUE(out);
        OIIO::ImageSpec spec(width, height, channels, OIIO::TypeDesc::UINT8);
        spec.attribute("oiio:UnassociatedAlpha", 1);
        ASSERT_TRUE(out->open(path, spec));
        ASSERT_TRUE(out->write_image(OIIO::TypeDesc::UINT8, pixels.data()));
        ASSERT_TRUE(out->close());
    }

    testsupport::TempFolder folder;
};

TEST(ImageTest, ColourModesConvertWithClampingAndRounding) {
    const float data[8] = {-1.0f, 0.5f, 2.0f, 0.2f, 1.0f, 0.0f, 0.999f, 0.0019f};
    Held source(new Image(2, 1, Image::kFloatRgbo, data));
    source->SetPin(5, -3);
    Held bytes(new Image(*source.image, Image::kByteRgbo));
    ASSERT_NE(bytes->GetConstByteArray(), nullptr);
    EXPECT_EQ(bytes->GetConstArray(), nullptr);
    const std::uint8_t expected[8] = {0, 128, 255, 51, 255, 0, 255, 0};
    EXPECT_EQ(std::memcmp(bytes->GetConstByteArray(), expected, 8), 0);
    EXPECT_EQ(bytes->GetPinX(), 5);
    EXPECT_EQ(bytes->GetPinY(), -3);

    Held back(new Image(*bytes.image, Image::kFloatRgbo));
    EXPECT_FLOAT_EQ(back->GetConstArray()[1], 128.0f / 255.0f);
    EXPECT_EQ(back->GetConstArray()[2], 1.0f);

    const float grey[4] = {0.5f, 0.25f, 1.0f, 1.0f};
    bytes->Fill(grey);
    EXPECT_EQ(bytes->GetConstByteArray()[4], 128);
    EXPECT_EQ(bytes->GetConstByteArray()[5], 64);
    source->Fill(grey);
    EXPECT_EQ(Pixel(*source.image, 1, 0)[1], 0.25f);

    EXPECT_THROW(new Image(-1, 4), std::invalid_argument);
    EXPECT_THROW(new Image(1, 1, 7), std::invalid_argument);
    EXPECT_EQ(Image::GetMaxSizeX(), 16384);
    EXPECT_EQ(Image::GetMaxSizeY(), 16384);
}

TEST_F(ImageFileTest, ExrKeepsEveryFloatExactly) {
    Held image(new Image(3, 2));
    const float values[] = {0.1f, -3.5f, 1e6f,     1e-20f, 1.0f / 3.0f, 7.25f, -0.0f, 2.0f,
                            0.5f, 0.75f, 123.456f, -1e-3f, 42.0f,       0.0f,  1.5f,  9.0f,
                            3.0f, 4.0f,  5.0f,     6.0f,   0.2f,        0.3f,  0.4f,  0.6f};
    std::memcpy(image->GetArray(), values, sizeof values);
    std::string error;
    ASSERT_TRUE(image->WriteFile(In("exact.exr"), 8, &error)) << error;
    Held read(Image::ReadFile(In("exact.exr"), &error));
    ASSERT_NE(read.image, nullptr) << error;
    ASSERT_EQ(read->GetSizeX(), 3);
    ASSERT_EQ(read->GetSizeY(), 2);
    EXPECT_EQ(std::memcmp(read->GetConstArray(), values, sizeof values), 0);
    EXPECT_EQ(read->GetRefCount(), 1);  // ours only: ReadFile hands it over at 0
}

TEST_F(ImageFileTest, IntegerFormatsQuantiseClampAndKeepColourUnderZeroOpacity) {
    Held image(Ramp(5, 3));
    float* corner = image->GetArray();
    corner[0] = 1.7f;   // clamped to 1
    corner[1] = -0.4f;  // clamped to 0
    float* hidden = image->GetArray() + 4;
    hidden[0] = 0.8f, hidden[1] = 0.4f, hidden[2] = 0.2f, hidden[3] = 0.0f;

    struct Case {
        const char* name;
        int bits;
        float tolerance;
    };
    for (const Case& c :
         {Case{"eight.png", 8, 0.501f / 255}, Case{"sixteen.png", 16, 0.501f / 65535},
          Case{"eight.tif", 8, 0.501f / 255}, Case{"sixteen.tif", 16, 0.501f / 65535}}) {
        SCOPED_TRACE(c.name);
        std::string error;
        ASSERT_TRUE(image->WriteFile(In(c.name), c.bits, &error)) << error;
        auto in = OIIO::ImageInput::open(In(c.name));
        ASSERT_TRUE(in);
        EXPECT_EQ(in->spec().format, c.bits == 16 ? OIIO::TypeDesc::UINT16 : OIIO::TypeDesc::UINT8);
        in.reset();

        Held read(Image::ReadFile(In(c.name), &error));
        ASSERT_NE(read.image, nullptr) << error;
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < 5; ++x)
                for (int k = 0; k < 4; ++k) {
                    const float wanted = std::clamp(Pixel(*image.image, x, y)[k], 0.0f, 1.0f);
                    EXPECT_NEAR(Pixel(*read.image, x, y)[k], wanted, c.tolerance)
                        << "pixel " << x << ", " << y << " channel " << k;
                }
    }
}

TEST_F(ImageFileTest, FilesStartWithTheTopRowAndReadBackTheSameWayUp) {
    Held image(new Image(2, 3));
    const float bottom[4] = {1.0f, 0.0f, 0.0f, 1.0f};
    const float rest[4] = {0.0f, 0.0f, 1.0f, 1.0f};
    image->Fill(rest);
    std::copy(bottom, bottom + 4, image->GetArray());  // row 0, column 0
    std::copy(bottom, bottom + 4, image->GetArray() + 4);
    std::string error;
    ASSERT_TRUE(image->WriteFile(In("up.png"), 8, &error)) << error;

    auto in = OIIO::ImageInput::open(In("up.png"));
    ASSERT_TRUE(in);
    std::vector<unsigned char> raw(2 * 3 * 4);
    ASSERT_TRUE(in->read_image(0, 0, 0, 4, OIIO::TypeDesc::UINT8, raw.data()));
    EXPECT_EQ(raw[0], 0);  // file row 0 (top) is image row 2: blue
    EXPECT_EQ(raw[2], 255);
    EXPECT_EQ(raw[2 * 8], 255);  // file row 2 (bottom) is image row 0: red
    EXPECT_EQ(raw[2 * 8 + 2], 0);

    Held read(Image::ReadFile(In("up.png"), &error));
    ASSERT_NE(read.image, nullptr) << error;
    EXPECT_EQ(Pixel(*read.image, 1, 0)[0], 1.0f);
    EXPECT_EQ(Pixel(*read.image, 1, 2)[0], 0.0f);
    EXPECT_EQ(Pixel(*read.image, 1, 2)[2], 1.0f);
}

TEST_F(ImageFileTest, GreyFilesGiveGreyAndOpacity) {
    WriteRaw(In("grey.png"), 3, 1, 1, {0, 128, 255});
    WriteRaw(In("grey-alpha.png"), 2, 1, 2, {200, 0, 51, 255});
    WriteRaw(In("rgb.png"), 1, 1, 3, {255, 0, 51});
    std::string error;

    Held grey(Image::ReadFile(In("grey.png"), &error));
    ASSERT_NE(grey.image, nullptr) << error;
    const float* mid = Pixel(*grey.image, 1, 0);
    EXPECT_FLOAT_EQ(mid[0], 128.0f / 255.0f);
    EXPECT_EQ(mid[1], mid[0]);
    EXPECT_EQ(mid[2], mid[0]);
    EXPECT_EQ(mid[3], 1.0f);
    EXPECT_EQ(Pixel(*grey.image, 2, 0)[0], 1.0f);

    Held greyAlpha(Image::ReadFile(In("grey-alpha.png"), &error));
    ASSERT_NE(greyAlpha.image, nullptr) << error;
    const float* clear = Pixel(*greyAlpha.image, 0, 0);
    EXPECT_FLOAT_EQ(clear[0], 200.0f / 255.0f);  // not multiplied by its zero opacity
    EXPECT_EQ(clear[2], clear[0]);
    EXPECT_EQ(clear[3], 0.0f);
    EXPECT_FLOAT_EQ(Pixel(*greyAlpha.image, 1, 0)[0], 0.2f);
    EXPECT_EQ(Pixel(*greyAlpha.image, 1, 0)[3], 1.0f);

    Held rgb(Image::ReadFile(In("rgb.png"), &error));
    ASSERT_NE(rgb.image, nullptr) << error;
    EXPECT_EQ(Pixel(*rgb.image, 0, 0)[0], 1.0f);
    EXPECT_FLOAT_EQ(Pixel(*rgb.image, 0, 0)[2], 0.2f);
    EXPECT_EQ(Pixel(*rgb.image, 0, 0)[3], 1.0f);
}

TEST_F(ImageFileTest, ReadErrorsNameTheFile) {
    std::string error;
    EXPECT_EQ(Image::ReadFile(In("absent.png"), &error), nullptr);
    EXPECT_NE(error.find(In("absent.png")), std::string::npos) << error;
    EXPECT_NE(error.find("no such file"), std::string::npos) << error;

    std::ofstream(In("text.png")) << "not a picture";
    error.clear();
    EXPECT_EQ(Image::ReadFile(In("text.png"), &error), nullptr);
    EXPECT_NE(error.find(In("text.png")), std::string::npos) << error;
}

TEST_F(ImageFileTest, AFailedWriteLeavesTheOldFileAndNoTemporary) {
    Held image(Ramp(4, 4));
    std::string error;
    Held other(Ramp(2, 2));
    EXPECT_FALSE(other->WriteFile(In("keep.png"), 12, &error));
    EXPECT_NE(error.find(In("keep.png")), std::string::npos) << error;
    EXPECT_NE(error.find("8 or 16"), std::string::npos) << error;
    Held empty(new Image(0, 0));
    EXPECT_FALSE(empty->WriteFile(In("keep.png"), 8, &error));

    EXPECT_FALSE(image->WriteFile(In("keep.xyz"), 8, &error));
    EXPECT_NE(error.find(In("keep.xyz")), std::string::npos) << error;
    EXPECT_NE(error.find(".xyz"), std::string::npos) << error;
    EXPECT_FALSE(fs::exists(In("keep.xyz")));

    // The rename fails when the target is a folder with contents: the temporary goes.
    fs::create_directories(In("taken.png"));
    std::ofstream(In("taken.png") + "/inside") << "x";
    EXPECT_FALSE(image->WriteFile(In("taken.png"), 8, &error));
    EXPECT_NE(error.find(In("taken.png")), std::string::npos) << error;
    EXPECT_TRUE(fs::is_directory(In("taken.png")));

    EXPECT_FALSE(image->WriteFile(In("no/such/folder/out.png"), 8, &error));
    EXPECT_NE(error.find("out.png"), std::string::npos) << error;

    // A successful write replaces the file as a whole.
    ASSERT_TRUE(image->WriteFile(In("keep.png"), 8, &error)) << error;
    ASSERT_TRUE(other->WriteFile(In("keep.png"), 8, &error)) << error;
    Held replaced(Image::ReadFile(In("keep.png"), &error));
    ASSERT_NE(replaced.image, nullptr) << error;
    EXPECT_EQ(replaced->GetSizeX(), 2);
    EXPECT_FALSE(Leftovers());
}

TEST(ImageRgboSamplerTest, SamplesTheBottomRowNearestWithClampedEnds) {
    Held image(new Image(4, 2));
    float* p = image->GetArray();
    for (int x = 0; x < 4; ++x) {
        p[x * 4 + 0] = static_cast<float>(x);  // row 0: red = column
        p[x * 4 + 3] = 0.5f;
        p[16 + x * 4 + 0] = 10.0f;  // row 1 must never show
    }
    {
        ImageRgboSampler sampler;
        sampler.Set(image.image, 0, 1);
        EXPECT_EQ(image->GetRefCount(), 2);
        struct Case {
            double t;
            double column;
        };
        for (const Case& c :
             {Case{-0.5, 0}, Case{0.0, 0}, Case{0.2499, 0}, Case{0.25, 1}, Case{0.74, 2},
              Case{0.99, 3}, Case{1.0, 3}, Case{7.0, 3}, Case{std::nan(""), 0}})
            EXPECT_EQ(sampler.GetGradientSample(c.t, 0, 0).red, c.column) << "t = " << c.t;
        EXPECT_EQ(sampler.GetGradientSample(0.5, 0, 0).opacity, 0.5);

        ImageRgboSampler colourOnly;
        colourOnly.Set(image.image, 0, 0);
        EXPECT_EQ(colourOnly.GetGradientSample(0.5, 0, 0).opacity, 1.0);
    }
    EXPECT_EQ(image->GetRefCount(), 1);

    ImageRgboSampler none;
    EXPECT_EQ(none.GetGradientSample(0.5, 0, 0), (Rgbo{0, 0, 0, 0}));
    Held bytes(new Image(*image.image, Image::kByteRgbo));
    none.Set(bytes.image, 0, 1);
    EXPECT_EQ(none.GetGradientSample(0.3, 0, 0).red, 1.0);
    none.Set(nullptr, 0, 1);
    EXPECT_EQ(bytes->GetRefCount(), 1);
}

}  // namespace
