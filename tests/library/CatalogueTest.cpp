// Plug-in exports: count, fresh interface/factory pairs, factories that make nodes of the
// right class, loadable icons, hidden types unreachable.

#include <cxxabi.h>
#include <gtest/gtest.h>

#include <QImage>
#include <QString>
#include <climits>
#include <cstdlib>
#include <memory>
#include <set>
#include <string>
#include <typeinfo>
#include <vector>

#include "host/LibraryInterface.h"
#include "host/Node.h"
#include "host/NodeFactory.h"
#include "host/NodeInterface.h"
#include "library/TextureNodeFactory.h"
#include "tests/library/PluginLibrary.h"

namespace {

constexpr unsigned kOfferedCount = 26;
const char* const kIconFolder = ":/Texture/Resources/Icons/";

std::string demangle(const char* name) {
    int status = 0;
    char* plain = abi::__cxa_demangle(name, nullptr, nullptr, &status);
    std::string result = status == 0 && plain != nullptr ? plain : name;
    std::free(plain);
    return result;
}

class CatalogueTest : public ::testing::Test {
protected:
    void SetUp() override {
        PluginLibrary& plugin = PluginLibrary::Get();
        ASSERT_TRUE(plugin.IsLoaded()) << plugin.GetError();
        mGetInterface = plugin.nodeInterface();
    }

    std::unique_ptr<NodeInterface> interfaceAt(unsigned index) const {
        return std::unique_ptr<NodeInterface>(mGetInterface(index));
    }

    GetNodeInterfaceFunction mGetInterface = nullptr;
};

TEST_F(CatalogueTest, OffersTwentySixTypesAndNothingBeyondIndexTwentyFive) {
    EXPECT_EQ(PluginLibrary::Get().count()(), kOfferedCount);
    auto last = interfaceAt(25);
    ASSERT_NE(last, nullptr);
    EXPECT_EQ(last->GetTypeName(), "Texture Select");
    for (unsigned index : {26u, 27u, 100u, 1000u, UINT_MAX})
        EXPECT_EQ(interfaceAt(index), nullptr) << "index " << index;
}

// Names, type ids, icon paths and classes are compared with the recorded listing of the
// texture command; these are the answers the listing does not show.
TEST_F(CatalogueTest, FactoriesMakeNodesOfTheirOwnClassAndHostSlotsKeepTheirAnswers) {
    for (unsigned index = 0; index < kOfferedCount; ++index) {
        auto type = interfaceAt(index);
        ASSERT_NE(type, nullptr);
        SCOPED_TRACE(type->GetTypeName());
        NodeFactory* factory = type->GetFactory();
        ASSERT_NE(factory, nullptr);
        EXPECT_EQ(factory->GetNodeType(), type->GetNodeType());
        std::unique_ptr<Node> node(factory->CreateNode());
        ASSERT_NE(node, nullptr);
        EXPECT_EQ(demangle(typeid(*node).name()), factory->GetClassName());
        EXPECT_EQ(node->GetNodeType(), type->GetNodeType());
        EXPECT_EQ(node->GetTypeName(), type->GetTypeName());
        std::unique_ptr<Node> second(factory->CreateNode());
        EXPECT_NE(second.get(), node.get()) << "each call makes a new node";
        // Slots the library leaves to the host keep the host's answers.
        EXPECT_EQ(type->GetModeName(), "as_is");
        EXPECT_EQ(type->ReservedValue13(), 0);
        EXPECT_EQ(type->CreateAttributesWidget(nullptr, nullptr, 1), nullptr);
        if (index != 1) {
            EXPECT_FALSE(type->RunSelfTest()) << "only Render 3D has a self-check";
        }
    }
}

TEST_F(CatalogueTest, EveryCallMakesAFreshInterfaceOwningAFreshFactory) {
    for (unsigned index = 0; index < kOfferedCount; ++index) {
        auto first = interfaceAt(index);
        auto second = interfaceAt(index);
        ASSERT_NE(first, nullptr);
        ASSERT_NE(second, nullptr);
        EXPECT_NE(first.get(), second.get());
        ASSERT_NE(first->GetFactory(), nullptr);
        EXPECT_NE(first->GetFactory(), second->GetFactory());
        // The interface holds the only reference to its factory, so destroying it frees it.
        EXPECT_EQ(static_cast<TextureNodeFactory*>(first->GetFactory())->GetReferenceCount(), 1u);
    }
}

TEST_F(CatalogueTest, TheRender3DTypeRunsItsSelfCheckAndItPasses) {
    auto render3D = interfaceAt(1);
    ASSERT_NE(render3D, nullptr);
    EXPECT_TRUE(render3D->RunSelfTest());
}

TEST_F(CatalogueTest, CurveTerraceAndJoinCannotBeReached) {
    const std::set<std::string> hiddenClasses = {"TextureCurveNode", "TextureTerraceNode",
                                                 "TextureJoinNode"};
    const std::set<std::string> hiddenNames = {"Texture Curve", "Texture Terrace", "Texture Join"};
    const std::set<unsigned> hiddenCodes = {768, 794, 1322};
    // Well past the offered range, in case an index were ever given to a hidden type by mistake.
    for (unsigned index = 0; index < 512; ++index) {
        auto type = interfaceAt(index);
        if (type == nullptr)
            continue;
        EXPECT_EQ(hiddenNames.count(type->GetTypeName()), 0u) << "index " << index;
        EXPECT_EQ(hiddenCodes.count(type->GetNodeType().code), 0u) << "index " << index;
        ASSERT_NE(type->GetFactory(), nullptr);
        EXPECT_EQ(hiddenClasses.count(type->GetFactory()->GetClassName()), 0u) << "index " << index;
    }
}

TEST_F(CatalogueTest, IconsLoadFromTheResourcesAtTheirSizesAndDifferByType) {
    std::set<std::string> seenLarge;
    for (unsigned index = 0; index < kOfferedCount; ++index) {
        auto type = interfaceAt(index);
        ASSERT_NE(type, nullptr);
        const QImage large(QString::fromStdString(type->GetIconPath()));
        const QImage small(QString::fromStdString(type->GetSmallIconPath()));
        ASSERT_FALSE(large.isNull()) << type->GetIconPath();
        ASSERT_FALSE(small.isNull()) << type->GetSmallIconPath();
        EXPECT_EQ(large.size(), QSize(64, 64));
        EXPECT_EQ(small.size(), QSize(12, 12));
        // An icon must show something: not one flat colour.
        const QImage rgba = large.convertToFormat(QImage::Format_RGBA8888);
        std::set<unsigned> colours;
        for (int y = 0; y < rgba.height(); ++y)
            for (int x = 0; x < rgba.width(); ++x)
                colours.insert(rgba.pixel(x, y));
        EXPECT_GT(colours.size(), 2u);
        const QByteArray bytes(reinterpret_cast<const char*>(rgba.constBits()),
                               static_cast<qsizetype>(rgba.sizeInBytes()));
        EXPECT_TRUE(seenLarge.insert(bytes.toStdString()).second) << "same picture as another type";
    }
}

TEST_F(CatalogueTest, TheHiddenTypesIconsAreShippedToo) {
    // Curve and Terrace keep icons of their own so that enabling them needs no new resource.
    for (const char* stem : {"TextureCurve", "TextureTerrace"}) {
        EXPECT_EQ(QImage(QString(kIconFolder) + stem + ".png").size(), QSize(64, 64)) << stem;
        EXPECT_EQ(QImage(QString(kIconFolder) + stem + "12.png").size(), QSize(12, 12)) << stem;
    }
}

TEST(PluginExportsTest, OnlyTheThreeEntryPointsAreVisible) {
    PluginLibrary& plugin = PluginLibrary::Get();
    ASSERT_TRUE(plugin.IsLoaded()) << plugin.GetError();
    // Internal classes of the plug-in, its nodes and its engine must not leak into the host's
    // symbol space, where they could clash with another plug-in's.
    for (const char* internal :
         {"_ZN18TextureNodeFactory7ReleaseEv", "_ZN20TextureNodeInterfaceD2Ev",
          "_ZN17TexturePerlinNodeC1Ev",
          "_ZNK7noisepp12PerlinModule13addToPipelineEPNS_8PipelineINS_17PipelineElement3DEEE"})
        EXPECT_EQ(dlsym(plugin.handle(), internal), nullptr) << internal;
}

TEST(LibraryInterfaceTest, EachCallMakesANewLibraryObjectNamedTexture) {
    PluginLibrary& plugin = PluginLibrary::Get();
    ASSERT_TRUE(plugin.IsLoaded()) << plugin.GetError();
    std::unique_ptr<LibraryInterface> first(plugin.library()());
    std::unique_ptr<LibraryInterface> second(plugin.library()());
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(first.get(), second.get());
    EXPECT_EQ(first->GetLibraryName(), "Texture");
}

}  // namespace
