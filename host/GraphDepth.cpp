#include "host/GraphDepth.h"

#include <algorithm>
#include <deque>
#include <map>
#include <vector>

#include "host/Engine.h"

namespace {

// Depth of every node, in the order nodes become final (all their sources measured first).
// Iterative, since the graphs it guards are the ones too deep to walk recursively; nodes on a
// cycle, which the engine refuses anyway, are left out.
std::vector<std::pair<const Node*, int>> DepthsInOrder(const Engine& engine) {
    std::map<const Node*, std::vector<const Node*>> downstream;
    std::map<const Node*, int> pendingSources;
    std::map<const Node*, int> depth;
    for (const Engine::Link& link : engine.GetLinks()) {
        downstream[link.from].push_back(link.to);
        ++pendingSources[link.to];
    }
    std::deque<const Node*> ready;
    for (const Node* node : engine.GetNodes())
        if (pendingSources[node] == 0) {
            ready.push_back(node);
            depth[node] = 1;
        }
    std::vector<std::pair<const Node*, int>> order;
    while (!ready.empty()) {
        const Node* node = ready.front();
        ready.pop_front();
        order.emplace_back(node, depth[node]);
        for (const Node* next : downstream[node]) {
            depth[next] = std::max(depth[next], depth[node] + 1);
            if (--pendingSources[next] == 0)
                ready.push_back(next);
        }
    }
    return order;
}

}  // namespace

std::string GraphDepth::Check(const Engine& engine) {
    for (const auto& [node, depth] : DepthsInOrder(engine))
        if (depth > kMaxDepth)
            return "node '" + engine.GetNodeId(node) + "': " + std::to_string(depth) +
                   " nodes deep, more than the limit of " + std::to_string(kMaxDepth);
    return {};
}
