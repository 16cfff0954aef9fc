// Engine under two threads: a viewer thread evaluating through the free function Evaluate
// while the editing thread changes attributes and links (run under the thread sanitizer too).

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <thread>

#include "host/Engine.h"
#include "tests/host/TestNodes.h"

using namespace hosttest;

namespace {

TEST(EngineThreadTest, AViewerThreadEvaluatesWhileTheUserEdits) {
    Engine engine;
    auto* source =
        static_cast<SourceNode*>(engine.AddNode(std::make_unique<SourceNode>(), "source"));
    auto* pass = static_cast<PassNode*>(engine.AddNode(std::make_unique<PassNode>(), "pass"));
    ASSERT_TRUE(engine.Connect(source, 0, pass, 1));

    // Every value the viewer sees must be one the graph could produce: source value v in
    // 0...99 times gain 1 or 2, or nothing while the link is out.
    std::atomic<bool> done{false};
    std::atomic<int> inconsistent{0};
    std::atomic<int> evaluations{0};
    std::thread viewer([&] {
        while (!done.load()) {
            Node::Value* value = Evaluate(pass, 0);
            if (value->GetType() == NodeValue::kImage) {
                const float red = value->GetImage()->GetConstArray()[0];
                const bool possible = red >= 0.0f && red <= 198.0f && red == std::floor(red);
                if (!possible)
                    ++inconsistent;
            } else if (value->GetType() != NodeValue::kNone) {
                ++inconsistent;
            }
            Node::ReleaseValue(value);
            ++evaluations;
        }
    });

    EventRecorder recorder;
    pass->AddNodeListener(&recorder);
    for (int i = 0; i < 400; ++i) {
        engine.SetAttributeValue(source, 0, NodeValue::Number(i % 100));
        engine.SetAttributeValue(pass, 0, NodeValue::Number(1 + i % 2));
        if (i % 70 == 0)
            engine.Undo();
        if (i % 50 == 0) {
            engine.Disconnect(pass, 1);
            engine.Connect(source, 0, pass, 1);
        }
    }
    // Let the viewer see the final state at least once.
    while (evaluations.load() < 5)
        std::this_thread::yield();
    done = true;
    viewer.join();
    pass->RemoveNodeListener(&recorder);

    EXPECT_EQ(inconsistent.load(), 0);
    Node::Value* last = Evaluate(pass, 0);
    ASSERT_EQ(last->GetType(), NodeValue::kImage);
    EXPECT_EQ(last->GetImage()->GetConstArray()[0], 99.0f * 2.0f);
    Node::ReleaseValue(last);
    EXPECT_GT(recorder.Count(pass, NodeEvent::kOutputChanged), 0);
}

}  // namespace
