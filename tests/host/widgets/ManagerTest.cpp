// Manager: active/display changes and their events, one handler per object, leaving during an
// event, forgetting nodes, the shared engine cleared, the main widget deleted.

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include <QWidget>

#include "host/Engine.h"
#include "host/widgets/Manager.h"
#include "tests/host/widgets/WidgetTestSupport.h"

using namespace widgettest;

namespace {

struct Recorder {
    void OnEvent(unsigned int code, unsigned int) { codes.push_back(code); }
    std::vector<unsigned> codes;
};

struct SelfRemover {
    void OnEvent(unsigned int, unsigned int) {
        ++calls;
        Manager::Get()->UnregisterDelegateEventHandler({this, &SelfRemover::OnEvent});
    }
    int calls = 0;
};

class ManagerTest : public ::testing::Test {
protected:
    void SetUp() override {
        EnsureApplication();
        manager->SetActiveNode(nullptr);
        manager->SetDisplayNode(nullptr);
        manager->RegisterDelegateEventHandler({&recorder, &Recorder::OnEvent});
    }
    void TearDown() override {
        manager->UnregisterDelegateEventHandler({&recorder, &Recorder::OnEvent});
        manager->SetActiveNode(nullptr);
        manager->SetDisplayNode(nullptr);
    }

    Manager* manager = Manager::Get();
    Recorder recorder;
    KindsNode a, b;
};

TEST_F(ManagerTest, NodeChangesSendTheirEventOnlyWhenTheyChange) {
    manager->SetActiveNode(&a);
    manager->SetActiveNode(&a);
    manager->SetDisplayNode(&b);
    manager->SetActiveNode(&b);
    EXPECT_EQ(recorder.codes, (std::vector<unsigned>{0, 1, 0}));
    EXPECT_EQ(manager->GetActiveNode(), &b);
    EXPECT_EQ(manager->GetDisplayNode(), &b);

    manager->ForgetNode(&a);
    EXPECT_EQ(recorder.codes.size(), 3u) << "a is neither active nor displayed";
    manager->ForgetNode(&b);
    EXPECT_EQ(manager->GetActiveNode(), nullptr);
    EXPECT_EQ(manager->GetDisplayNode(), nullptr);
    EXPECT_EQ(recorder.codes, (std::vector<unsigned>{0, 1, 0, 0, 1}));
}

TEST_F(ManagerTest, HandlersAreOnePerObjectAndMayLeaveDuringAnEvent) {
    Recorder other;
    manager->RegisterDelegateEventHandler({&other, &Recorder::OnEvent});
    manager->RegisterDelegateEventHandler({&other, &Recorder::OnEvent});
    SelfRemover leaver;
    manager->RegisterDelegateEventHandler({&leaver, &SelfRemover::OnEvent});
    manager->SendEvent(7, 3);
    manager->SendEvent(8);
    EXPECT_EQ(other.codes, (std::vector<unsigned>{7, 8})) << "registered twice, told once";
    EXPECT_EQ(leaver.calls, 1);
    manager->UnregisterDelegateEventHandler({&other, &Recorder::OnEvent});
    manager->SendEvent(9);
    EXPECT_EQ(other.codes.size(), 2u);
    EXPECT_EQ(recorder.codes, (std::vector<unsigned>{7, 8, 9}));
}

TEST_F(ManagerTest, ClearingTheSharedEngineForgetsItsNodesAndADeletedMainWidgetIsForgotten) {
    Engine* engine = manager->GetEngine();
    ASSERT_EQ(engine, Engine::Get());
    Node* node = engine->AddNode(std::make_unique<KindsNode>(), "manager-test");
    ASSERT_NE(node, nullptr);
    manager->SetActiveNode(node);
    manager->SetDisplayNode(node);
    recorder.codes.clear();
    engine->Clear();
    EXPECT_EQ(manager->GetActiveNode(), nullptr);
    EXPECT_EQ(manager->GetDisplayNode(), nullptr);
    EXPECT_EQ(recorder.codes, (std::vector<unsigned>{0, 1}));

    // Likewise the main widget once deleted.
    auto* window = new QWidget;
    manager->SetMainWidget(window);
    EXPECT_EQ(manager->GetMainWidget(), window);
    delete window;
    EXPECT_EQ(manager->GetMainWidget(), nullptr);
}

}  // namespace
