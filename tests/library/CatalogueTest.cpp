// Plug-in exports as a host reaches them: the count, fresh interface/factory pairs, factories
// that make nodes of the right class, loadable icons, hidden types unreachable, nothing else
// visible. Names, type ids, icon paths and classes are compared with the recorded listing of
// the texture command; these are the answers the listing does not show.

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

#include "host/LibraryInterface.h"
#include "host/Node.h"
#include "host/NodeFactory.h"
#include "host/NodeInterface.h"
#include "library/TextureNodeFactory.h"
#include "tests/library/PluginLibrary.h"

namespace {

constexpr unsigned kOfferedCount = 26;

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
        ASSERT_TRUE(plugin.library && plugin.count && plugin.nodeInterface)
            << PluginLibrary::Path();
    }

    std::unique_ptr<NodeInterface> interfaceAt(unsigned index) const {
        return std::unique_ptr<NodeInterface>(plugin.nodeInterface(index));
    }

    const PluginLibrary& plugin = PluginLibrary::Get();
};

TEST_F(CatalogueTest, OffersTwentySixTypesAndNothingBeyond) {
    EXPECT_EQ(plugin.count(), kOfferedCount);
    // Well past the offered range, in case an index were ever given to a hidden type.
    for (unsigned index = kOfferedCount; index < 512; ++index)
        EXPECT_EQ(interfaceAt(index), nullptr) << "index " << index;
    EXPECT_EQ(interfaceAt(UINT_MAX), nullptr);
}

TEST_F(CatalogueTest, EachCallMakesAFreshInterfaceWhoseFactoryMakesNodesOfItsOwnClass) {
    for (unsigned index = 0; index < kOfferedCount; ++index) {
        auto type = interfaceAt(index);
        auto again = interfaceAt(index);
        ASSERT_TRUE(type != nullptr && again != nullptr);
        SCOPED_TRACE(type->GetTypeName());
        EXPECT_NE(type.get(), again.get());
        NodeFactory* factory = type->GetFactory();
        ASSERT_NE(factory, nullptr);
        EXPECT_NE(factory, again->GetFactory());
        // The interface holds the only reference to its factory, so destroying it frees it.
        EXPECT_EQ(static_cast<TextureNodeFactory*>(factory)->GetReferenceCount(), 1u);
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
        EXPECT_EQ(type->CreateAttributesWidget(nullptr, nullptr, 1), nullptr) << "only page 0";
        EXPECT_EQ(type->CreateAttributesWidget(nullptr, nullptr, -1), nullptr);
        EXPECT_EQ(type->RunSelfTest(), index == 1) << "only Render 3D has a self-check; it passes";
    }
}

TEST_F(CatalogueTest, IconsLoadFromTheResourcesAtTheirSizesAndDifferByType) {
    std::set<std::string> seenLarge;
    for (unsigned index = 0; index < kOfferedCount; ++index) {
        auto type = interfaceAt(index);
        ASSERT_NE(type, nullptr);
        const QImage large(QString::fromStdString(type->GetIconPath()));
        EXPECT_EQ(large.size(), QSize(64, 64)) << type->GetIconPath();
        EXPECT_EQ(QImage(QString::fromStdString(type->GetSmallIconPath())).size(), QSize(12, 12))
            << type->GetSmallIconPath();
        // An icon must show something: not one flat colour.
        const QImage rgba = large.convertToFormat(QImage::Format_RGBA8888);
        std::set<unsigned> colours;
        for (int y = 0; y < rgba.height(); ++y)
            for (int x = 0; x < rgba.width(); ++x)
                colours.insert(rgba.pixel(x, y));
        EXPECT_GT(colours.size(), 2u);
        const std::string bytes(reinterpret_cast<const char*>(rgba.constBits()),
                                static_cast<std::size_t>(rgba.sizeInBytes()));
        EXPECT_TRUE(seenLarge.insert(bytes).second) << "same picture as another type";
    }
    // Hidden Curve and Terrace keep icons of their own so that enabling them needs no resource.
    for (const QString stem : {"TextureCurve", "TextureTerrace"}) {
        const QString icon = ":/Texture/Resources/Icons/" + stem;
        EXPECT_EQ(QImage(icon + ".png").size(), QSize(64, 64)) << stem.toStdString();
        EXPECT_EQ(QImage(icon + "12.png").size(), QSize(12, 12)) << stem.toStdString();
    }
}

TEST_F(CatalogueTest, OnlyTheThreeEntryPointsAreVisibleAndEachLibraryObjectIsNew) {
    // Internal classes of the plug-in, its nodes and its engine must not leak into the host's
    // symbol space, where they could clash with another plug-in's.
    for (const char* internal :
         {"_ZN18TextureNodeFactory7ReleaseEv", "_ZN20TextureNodeInterfaceD2Ev",
          "_ZN17TexturePerlinNodeC1Ev",
          "_ZNK7noisepp12PerlinModule13addToPipelineEPNS_8PipelineINS_17PipelineElement3DEEE"})
        EXPECT_EQ(dlsym(plugin.handle, internal), nullptr) << internal;
    std::unique_ptr<LibraryInterface> first(plugin.library());
    std::unique_ptr<LibraryInterface> second(plugin.library());
    ASSERT_TRUE(first != nullptr && second != nullptr);
    EXPECT_NE(first.get(), second.get());
    EXPECT_EQ(first->GetLibraryName(), "Texture");
}

}  // namespace
