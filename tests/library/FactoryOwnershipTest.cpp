// Factory ownership shared by node interfaces: the count each interface takes and gives back,
// the factory freed with its last interface, and interfaces without a factory.

#include <gtest/gtest.h>

#include <memory>

#include "library/TextureNodeFactory.h"
#include "library/TextureNodeInterface.h"

namespace {

/// A factory that reports its own destruction.
class WatchedFactory : public TextureNodeFactory {
public:
    explicit WatchedFactory(bool* destroyed) : mDestroyed(destroyed) {}
    ~WatchedFactory() override { *mDestroyed = true; }
    NodeType GetNodeType() const override { return {10, 304, 1}; }
    Node* CreateNode() override { return nullptr; }
    const char* GetClassName() const override { return "WatchedNode"; }

private:
    bool* mDestroyed;
};

class SampleInterface : public TextureNodeInterface {
public:
    using TextureNodeInterface::TextureNodeInterface;
    std::string GetTypeName() const override { return "Sample"; }
    NodeType GetNodeType() const override { return {10, 304, 1}; }
};

TEST(FactoryOwnershipTest, TheLastInterfaceToGoFreesTheFactory) {
    bool destroyed = false;
    auto* factory = new WatchedFactory(&destroyed);
    EXPECT_EQ(factory->GetReferenceCount(), 0u);

    auto first = std::make_unique<SampleInterface>(factory);
    auto second = std::make_unique<SampleInterface>(factory);
    EXPECT_EQ(factory->GetReferenceCount(), 2u);
    EXPECT_EQ(first->GetFactory(), factory);

    first.reset();
    EXPECT_FALSE(destroyed) << "still held by the second interface";
    EXPECT_EQ(factory->GetReferenceCount(), 1u);
    second.reset();
    EXPECT_TRUE(destroyed);
}

TEST(FactoryOwnershipTest, AnInterfaceWithoutAFactoryStillDescribesItsType) {
    SampleInterface orphan(nullptr);
    EXPECT_EQ(orphan.GetFactory(), nullptr);
    EXPECT_EQ(orphan.GetTypeName(), "Sample");
    EXPECT_EQ(orphan.GetCategory(), 7);
    EXPECT_EQ(orphan.GetLibraryName(), "Texture");
    EXPECT_EQ(orphan.GetLastAttributesWidget(), nullptr);
}

}  // namespace
