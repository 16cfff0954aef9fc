// Engine: links (unknown plugs, type checks, one link per inplug), cycles, evaluation order and
// dirty propagation, the evaluation flag, errors at the evaluation boundary, events, the free
// function Evaluate, also from a viewer thread during edits.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <mutex>
#include <thread>

#include "host/Engine.h"
#include "tests/host/TestNodes.h"

using namespace hosttest;

namespace {

class EngineTest : public ::testing::Test {
protected:
    template <class T, class... Args>
    T* Add(const std::string& id, Args&&... args) {
        std::string error;
        auto* node = static_cast<T*>(
            engine.AddNode(std::make_unique<T>(std::forward<Args>(args)...), id, &error));
        EXPECT_NE(node, nullptr) << error;
        return node;
    }
    bool Link(Node* from, Node* to, const std::string& inplug, std::string* error = nullptr) {
        return engine.Connect(from, 0, to, static_cast<unsigned>(to->FindInplug(inplug)), error);
    }

    Engine engine;
    EvaluationLog log;
};

TEST_F(EngineTest, NodeIdsAreUniqueAndNonEmpty) {
    Add<SourceNode>("a");
    std::string error;
    EXPECT_EQ(engine.AddNode(std::make_unique<SourceNode>(), "a", &error), nullptr);
    EXPECT_NE(error.find("'a' is already taken"), std::string::npos) << error;
    EXPECT_EQ(engine.AddNode(std::make_unique<SourceNode>(), "", &error), nullptr);
    EXPECT_EQ(engine.GetNodes().size(), 1u);
    EXPECT_EQ(engine.GetNodeId(engine.FindNode("a")), "a");
    EXPECT_EQ(engine.FindNode("b"), nullptr);
}

TEST_F(EngineTest, LinksCheckPlugsAndTypes) {
    auto* source = Add<SourceNode>("src");
    auto* texture = Add<TextureSourceNode>("tex");
    auto* pass = Add<PassNode>("pass");
    std::string error;

    EXPECT_FALSE(engine.Connect(source, 1, pass, 1, &error));
    EXPECT_NE(error.find("'src'"), std::string::npos) << error;
    EXPECT_NE(error.find("no outplug 1"), std::string::npos) << error;
    EXPECT_FALSE(engine.Connect(source, 0, pass, 7, &error));
    EXPECT_NE(error.find("no inplug 7"), std::string::npos) << error;

    // A texture output cannot feed an image input, nor an image output a number attribute.
    EXPECT_FALSE(Link(texture, pass, "image", &error));
    EXPECT_NE(error.find("'tex.texture'"), std::string::npos) << error;
    EXPECT_NE(error.find("'pass.image'"), std::string::npos) << error;
    EXPECT_NE(error.find("texture"), std::string::npos) << error;
    EXPECT_FALSE(Link(source, pass, "gain", &error));
    EXPECT_NE(error.find("number"), std::string::npos) << error;
    EXPECT_TRUE(engine.GetLinks().empty());

    EXPECT_TRUE(Link(source, pass, "image", &error)) << error;
    ASSERT_EQ(engine.GetLinks().size(), 1u);
    const Engine::Link* link = engine.FindLinkTo(pass, 1);
    ASSERT_NE(link, nullptr);
    EXPECT_EQ(link->from, source);
}

TEST_F(EngineTest, AnInplugTakesOneLinkTheLatestReplacesTheFormer) {
    auto* first = Add<SourceNode>("first");
    auto* second = Add<SourceNode>("second");
    auto* pass = Add<PassNode>("pass");
    ASSERT_TRUE(Link(first, pass, "image"));
    ASSERT_TRUE(Link(second, pass, "image"));
    ASSERT_EQ(engine.GetLinks().size(), 1u);
    EXPECT_EQ(engine.GetLinks()[0].from, second);

    engine.SetAttributeValue(second, 0, NodeValue::Number(5));
    engine.EvaluateNode(pass);
    EXPECT_EQ(OutputRed(engine, pass), 5.0f);
    EXPECT_EQ(first->evaluations, 0);  // no longer upstream

    engine.Disconnect(pass, 1);
    EXPECT_TRUE(engine.GetLinks().empty());
    engine.EvaluateNode(pass);
    EXPECT_TRUE(std::isnan(OutputRed(engine, pass)));
}

TEST_F(EngineTest, LinksThatCloseACycleAreRefusedWithThePath) {
    auto* a = Add<PassNode>("a");
    auto* b = Add<PassNode>("b");
    auto* c = Add<PassNode>("c");
    ASSERT_TRUE(Link(a, b, "image"));
    ASSERT_TRUE(Link(b, c, "image"));
    std::string error;
    EXPECT_FALSE(Link(c, a, "image", &error));
    EXPECT_NE(error.find("cycle (a -> b -> c -> a)"), std::string::npos) << error;
    EXPECT_FALSE(Link(a, a, "image", &error));
    EXPECT_NE(error.find("itself"), std::string::npos) << error;
    EXPECT_EQ(engine.GetLinks().size(), 2u);
    // A link beside the chain is fine.
    auto* d = Add<SumNode>("d");
    EXPECT_TRUE(Link(a, d, "a", &error)) << error;
    EXPECT_TRUE(engine.Connect(c, 0, d, 1, &error)) << error;
}

TEST_F(EngineTest, EvaluationRunsUpstreamFirstAndOnlyWhatIsDirty) {
    auto* source = Add<SourceNode>("source", "source", &log);
    auto* first = Add<PassNode>("first", "first", &log);
    auto* second = Add<PassNode>("second", "second", &log);
    ASSERT_TRUE(Link(source, first, "image"));
    ASSERT_TRUE(Link(first, second, "image"));
    engine.SetAttributeValue(source, 0, NodeValue::Number(2));
    engine.SetAttributeValue(first, 0, NodeValue::Number(3));
    engine.SetAttributeValue(second, 0, NodeValue::Number(5));

    EXPECT_TRUE(engine.EvaluateNode(second));
    EXPECT_EQ(log, (EvaluationLog{"source", "first", "second"}));
    EXPECT_EQ(OutputRed(engine, second), 30.0f);
    EXPECT_EQ(engine.GetEvaluationCount(), 3u);

    log.clear();
    engine.EvaluateNode(second);
    EXPECT_TRUE(log.empty());

    // A change marks the node and everything downstream, not upstream.
    engine.SetAttributeValue(first, 0, NodeValue::Number(4));
    EXPECT_FALSE(engine.IsDirty(source));
    EXPECT_TRUE(engine.IsDirty(first));
    EXPECT_TRUE(engine.IsDirty(second));
    engine.EvaluateNode(second);
    EXPECT_EQ(log, (EvaluationLog{"first", "second"}));
    EXPECT_EQ(OutputRed(engine, second), 40.0f);

    // Evaluating an upstream node alone leaves the downstream one dirty until asked.
    log.clear();
    engine.SetAttributeValue(source, 0, NodeValue::Number(1));
    engine.EvaluateNode(first);
    EXPECT_EQ(log, (EvaluationLog{"source", "first"}));
    EXPECT_TRUE(engine.IsDirty(second));
    EXPECT_EQ(engine.GetEvaluationCount(), 7u);
}

TEST_F(EngineTest, EveryNodeOfADiamondEvaluatesOnceAfterItsInputs) {
    // sum reads source directly and through pass. The direct link is made first, so a walk
    // that meets source first must still hold sum back until pass, which also needs source,
    // has run.
    auto* source = Add<SourceNode>("source", "source", &log);
    auto* sum = Add<SumNode>("sum", "sum", &log);
    auto* pass = Add<PassNode>("pass", "pass", &log);
    auto* last = Add<SumNode>("last", "last", &log);
    ASSERT_TRUE(Link(source, sum, "a"));
    ASSERT_TRUE(Link(source, pass, "image"));
    ASSERT_TRUE(Link(pass, sum, "b"));
    ASSERT_TRUE(Link(source, last, "a"));
    ASSERT_TRUE(Link(sum, last, "b"));
    engine.SetAttributeValue(source, 0, NodeValue::Number(3));
    engine.SetAttributeValue(pass, 0, NodeValue::Number(2));

    engine.EvaluateNode(last);
    EXPECT_EQ(log, (EvaluationLog{"source", "pass", "sum", "last"}));
    EXPECT_EQ(OutputRed(engine, last), 12.0f);  // 3 + (3 + 3 x 2)
}

TEST_F(EngineTest, AttributeValuesAreCheckedAgainstKindAndRange) {
    auto* source = Add<SourceNode>("src");
    std::string error;
    EXPECT_FALSE(engine.SetAttributeValue(source, 0, NodeValue::Number(101), &error));
    EXPECT_EQ(error, "attribute 'value' of node 'src' must be between -100 and 100");
    EXPECT_FALSE(engine.SetAttributeValue(source, 0, NodeValue::Bool(true), &error));
    EXPECT_NE(error.find("must be a number"), std::string::npos) << error;
    EXPECT_FALSE(engine.SetAttributeValue(source, 3, NodeValue::Number(1), &error));
    EXPECT_NE(error.find("no attribute with id 3"), std::string::npos) << error;
    EXPECT_EQ(source->GetAttribute(0)->GetValue().GetNumber(), 1.0);
    EXPECT_FALSE(engine.CanUndo());
}

TEST_F(EngineTest, TheEvaluationFlagIsTheNodesToHonour) {
    auto* source = Add<SourceNode>("source", "source", &log);
    auto* pass = Add<PassNode>("pass", "pass", &log);
    ASSERT_TRUE(Link(source, pass, "image"));
    engine.EvaluateNode(pass);
    ASSERT_EQ(OutputRed(engine, pass), 1.0f);

    log.clear();
    source->SetEvaluationEnabled(false);
    EXPECT_TRUE(engine.IsDirty(pass));
    engine.EvaluateNode(pass);
    // Still called, so that it can drop its output; downstream then sees no image.
    EXPECT_EQ(log, (EvaluationLog{"source", "pass"}));
    EXPECT_FALSE(source->HasImage());
    EXPECT_EQ(engine.GetOutputValue(source, 0).GetType(), NodeValue::kNone);
    EXPECT_TRUE(std::isnan(OutputRed(engine, pass)));

    source->SetEvaluationEnabled(true);
    engine.EvaluateNode(pass);
    EXPECT_EQ(OutputRed(engine, pass), 1.0f);
}

TEST_F(EngineTest, WhatEscapesEvaluateBecomesTheNodesError) {
    auto* faulty = Add<FaultyNode>("faulty");
    auto* pass = Add<PassNode>("pass", "pass", &log);
    ASSERT_TRUE(Link(faulty, pass, "image"));

    struct Case {
        const char* fault;
        const char* message;
    };
    for (const Case& c : {Case{"exception", "pipeline exploded"}, Case{"silent", "unknown error"},
                          Case{"integer", "unknown error"}}) {
        SCOPED_TRACE(c.fault);
        log.clear();
        ASSERT_TRUE(engine.SetAttributeValue(faulty, 0, NodeValue::Choice(-1, c.fault)));
        EXPECT_FALSE(engine.EvaluateNode(faulty));
        EXPECT_EQ(faulty->GetState(), Node::kStateError);
        EXPECT_EQ(faulty->GetStateMessage(), c.message);
        // The failed node offers nothing, even what it built before throwing; downstream
        // nodes still run.
        EXPECT_EQ(engine.GetOutputValue(faulty, 0).GetType(), NodeValue::kNone);
        EXPECT_TRUE(engine.EvaluateNode(pass));
        EXPECT_EQ(log, (EvaluationLog{"pass"}));
        EXPECT_TRUE(std::isnan(OutputRed(engine, pass)));
    }

    ASSERT_TRUE(engine.SetAttributeValue(faulty, 0, NodeValue::Choice(-1, "none")));
    EXPECT_TRUE(engine.EvaluateNode(pass));
    EXPECT_EQ(faulty->GetState(), Node::kStateOk);
    EXPECT_EQ(faulty->GetStateMessage(), "");
    EXPECT_EQ(OutputRed(engine, pass), 7.0f);
}

TEST_F(EngineTest, ChangesSendInputsChangedToTheNodeAndOutputChangedDownstream) {
    auto* source = Add<SourceNode>("source");
    auto* pass = Add<PassNode>("pass");
    auto* other = Add<SourceNode>("other");
    EventRecorder recorder;
    for (Node* node :
         {static_cast<Node*>(source), static_cast<Node*>(pass), static_cast<Node*>(other)})
        node->AddNodeListener(&recorder);

    ASSERT_TRUE(Link(source, pass, "image"));
    EXPECT_EQ(recorder.Count(pass, NodeEvent::kInputsChanged), 1);
    EXPECT_EQ(recorder.Count(pass, NodeEvent::kOutputChanged), 1);
    EXPECT_EQ(recorder.Count(source, NodeEvent::kInputsChanged), 0);

    recorder.events.clear();
    engine.SetAttributeValue(source, 0, NodeValue::Number(9));
    EXPECT_EQ(recorder.Count(source, NodeEvent::kInputsChanged), 1);
    EXPECT_EQ(recorder.Count(source, NodeEvent::kOutputChanged), 1);
    EXPECT_EQ(recorder.Count(pass, NodeEvent::kInputsChanged), 0);
    EXPECT_EQ(recorder.Count(pass, NodeEvent::kOutputChanged), 1);
    EXPECT_EQ(recorder.events.size(), 3u);
    EXPECT_EQ(recorder.Count(other, NodeEvent::kOutputChanged), 0);

    // Setting the value it already has changes nothing and says nothing.
    recorder.events.clear();
    engine.SetAttributeValue(source, 0, NodeValue::Number(9));
    EXPECT_TRUE(recorder.events.empty());

    // Evaluation itself is silent: a viewer that re-renders on "output changed" and
    // evaluates from its own thread must not be told about its own evaluation.
    engine.EvaluateNode(pass);
    EXPECT_TRUE(recorder.events.empty());

    // A node that says its own output changed (as a node does after a scene change) is
    // evaluated again, and so is everything downstream.
    source->ProcessEvent(NodeEvent::kOutputChanged, 0);
    EXPECT_TRUE(engine.IsDirty(source));
    EXPECT_TRUE(engine.IsDirty(pass));
    EXPECT_EQ(recorder.Count(source, NodeEvent::kOutputChanged), 1);
    EXPECT_EQ(recorder.Count(pass, NodeEvent::kOutputChanged), 1);

    recorder.events.clear();
    pass->RemoveNodeListener(&recorder);
    engine.Disconnect(pass, 1);
    EXPECT_TRUE(recorder.events.empty());
    source->RemoveNodeListener(&recorder);
    other->RemoveNodeListener(&recorder);
}

TEST_F(EngineTest, EventsReachListenersOnlyAfterTheEngineIsReleased) {
    // A listener that waits for another thread needing the engine (a viewer requesting a
    // render from its render thread) must not deadlock.
    auto* source = Add<SourceNode>("source");
    struct Prober : NodeListener {
        Engine* engine;
        bool lockedElsewhere = false;
        void OnNodeEvent(Node*, const NodeEvent&) override {
            std::thread other([this] {
                std::unique_lock lock(engine->GetMutex(), std::try_to_lock);
                lockedElsewhere = !lock.owns_lock();
            });
            other.join();
        }
    } prober;
    prober.engine = &engine;
    source->AddNodeListener(&prober);
    engine.SetAttributeValue(source, 0, NodeValue::Number(4));
    EXPECT_FALSE(prober.lockedElsewhere);
    source->RemoveNodeListener(&prober);
}

TEST_F(EngineTest, ReleasingOutputsTellsTheNodeAndForcesANewEvaluation) {
    auto* source = Add<SourceNode>("source", "source", &log);
    engine.EvaluateNode(source);
    NodeValue held = engine.GetOutputValue(source, 0);
    ASSERT_NE(held.GetImage(), nullptr);
    EXPECT_EQ(held.GetImage()->GetRefCount(), 3);  // the node, the engine, us

    engine.ReleaseOutputs(source);
    EXPECT_FALSE(source->HasImage());
    EXPECT_EQ(held.GetImage()->GetRefCount(), 1);
    EXPECT_EQ(engine.GetOutputValue(source, 0).GetType(), NodeValue::kNone);
    EXPECT_TRUE(engine.IsDirty(source));
    engine.EvaluateNode(source);
    EXPECT_EQ(log.size(), 2u);
}

TEST_F(EngineTest, EngineEventsReachRegisteredHandlers) {
    struct Handler {
        std::vector<std::pair<unsigned, unsigned>> seen;
        void OnEvent(unsigned code, unsigned parameter) { seen.emplace_back(code, parameter); }
    } first, second;
    engine.RegisterDelegateEventHandler(Delegate2<unsigned, unsigned>(&first, &Handler::OnEvent));
    engine.RegisterDelegateEventHandler(Delegate2<unsigned, unsigned>(&second, &Handler::OnEvent));
    // Registering twice keeps one handler per object.
    engine.RegisterDelegateEventHandler(Delegate2<unsigned, unsigned>(&first, &Handler::OnEvent));

    engine.SetSceneModels({"/models/box.obj"});
    engine.SetSceneModels({"/models/box.obj"});  // unchanged: no event
    engine.SendEvent(Engine::kSceneViewChanged, 2);
    engine.UnregisterDelegateEventHandler(
        Delegate2<unsigned, unsigned>(&second, &Handler::OnEvent));
    engine.Clear();

    using Seen = std::vector<std::pair<unsigned, unsigned>>;
    EXPECT_EQ(first.seen, (Seen{{6, 0}, {14, 2}, {13, 0}}));
    EXPECT_EQ(second.seen, (Seen{{6, 0}, {14, 2}}));
    EXPECT_TRUE(engine.GetSceneModels().empty());
}

TEST_F(EngineTest, RemovingANodeUnlinksItAndReevaluatesWhatItFed) {
    auto* source = Add<SourceNode>("source");
    auto* pass = Add<PassNode>("pass");
    ASSERT_TRUE(Link(source, pass, "image"));
    engine.EvaluateNode(pass);
    ASSERT_EQ(OutputRed(engine, pass), 1.0f);

    engine.RemoveNode(source);
    EXPECT_TRUE(engine.GetLinks().empty());
    EXPECT_EQ(engine.FindNode("source"), nullptr);
    EXPECT_TRUE(engine.IsDirty(pass));
    engine.EvaluateNode(pass);
    EXPECT_TRUE(std::isnan(OutputRed(engine, pass)));
    // The id is free again.
    EXPECT_NE(Add<SourceNode>("source"), nullptr);
}

TEST_F(EngineTest, TheFreeEvaluateReturnsACopyTheCallerReleases) {
    auto* source = Add<SourceNode>("source", "source", &log);
    auto* texture = Add<TextureSourceNode>("texture");
    engine.SetAttributeValue(source, 0, NodeValue::Number(6));

    Node::Value* value = Evaluate(source, 0);
    ASSERT_EQ(value->GetType(), NodeValue::kImage);
    EXPECT_EQ(value->GetImage()->GetConstArray()[0], 6.0f);
    Image* image = value->GetImage();
    EXPECT_EQ(image->GetRefCount(), 3);
    Node::ReleaseValue(value);
    EXPECT_EQ(image->GetRefCount(), 2);

    Node::Value* handleValue = Evaluate(texture, 0);
    ASSERT_EQ(handleValue->GetType(), NodeValue::kTexture);
    EXPECT_EQ(handleValue->GetTexture()->count.load(), 2);  // the engine's and ours
    Node::ReleaseValue(handleValue);

    Node::Value* missing = Evaluate(source, 4);
    EXPECT_EQ(missing->GetType(), NodeValue::kNone);
    Node::ReleaseValue(missing);
    SourceNode loose;
    Node::Value* outside = Evaluate(&loose, 0);
    EXPECT_EQ(outside->GetType(), NodeValue::kNone);
    Node::ReleaseValue(outside);
    EXPECT_EQ(log.size(), 1u);
}

TEST_F(EngineTest, TheObserverSeesEachEvaluationStartAndFinish) {
    auto* source = Add<SourceNode>("source");
    auto* pass = Add<PassNode>("pass");
    ASSERT_TRUE(Link(source, pass, "image"));
    std::vector<std::pair<std::string, bool>> seen;
    engine.SetEvaluationObserver(
        [&](Node* node, bool finished) { seen.emplace_back(engine.GetNodeId(node), finished); });
    engine.EvaluateAll();
    using Seen = std::vector<std::pair<std::string, bool>>;
    EXPECT_EQ(seen, (Seen{{"source", false}, {"source", true}, {"pass", false}, {"pass", true}}));
}

// A viewer thread evaluates through the free function Evaluate while the editing thread
// changes attributes and links (run under the thread sanitizer too).
TEST_F(EngineTest, AViewerThreadEvaluatesWhileTheUserEdits) {
    auto* source = Add<SourceNode>("source");
    auto* pass = Add<PassNode>("pass");
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
