// Graphs deeper than worker stacks can render are refused link by link, whoever builds them.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "host/Engine.h"
#include "tests/host/TestNodes.h"

namespace {

struct JoinRow {
    int above;  // nodes on the chain ending at the link's source
    int below;  // nodes on the chain starting at the link's target
    bool accepted;
};

TEST(GraphDepthTest, ALinkBeyondTheDepthLimitIsRefusedNamingTheDeepestNode) {
    const JoinRow rows[] = {{500, 500, true}, {999, 1, true}, {1000, 1, false}, {600, 401, false}};
    for (const JoinRow& row : rows) {
        Engine engine;
        const auto chain = [&engine](const std::string& prefix, int length) {
            std::vector<Node*> nodes;
            for (int i = 0; i < length; ++i) {
                nodes.push_back(engine.AddNode(std::make_unique<hosttest::PassNode>(),
                                               prefix + std::to_string(i)));
                if (i > 0) {
                    EXPECT_TRUE(engine.Connect(nodes[i - 1], 0, nodes[i],
                                               nodes[i]->GetInplugIdFromRegularInputId(0)));
                }
            }
            return nodes;
        };
        const std::vector<Node*> up = chain("a", row.above);
        const std::vector<Node*> down = chain("b", row.below);
        std::string error;
        EXPECT_EQ(engine.Connect(up.back(), 0, down.front(),
                                 down.front()->GetInplugIdFromRegularInputId(0), &error),
                  row.accepted)
            << row.above << " + " << row.below;
        const std::string expected = row.accepted
                                         ? ""
                                         : "node 'b" + std::to_string(row.below - 1) +
                                               "': " + std::to_string(row.above + row.below) +
                                               " nodes deep, more than the limit of 1000";
        const std::size_t named = error.find("node '");
        EXPECT_EQ(named == std::string::npos ? error : error.substr(named), expected);
    }
}

}  // namespace
