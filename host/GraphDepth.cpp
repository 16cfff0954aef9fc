#include "host/GraphDepth.h"

#include <algorithm>
#include <deque>
#include <map>
#include <unordered_map>
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

using Neighbours = std::unordered_map<const Node*, std::vector<const Node*>>;

struct Chain {
    int length = 0;
    const Node* end = nullptr;
};

// The longest chain from `start` following `next`, with the node it ends on. Memoised and
// iterative, for the same reason as above; the graph is known to be free of cycles.
Chain LongestChain(const Node* start, const Neighbours& next) {
    std::unordered_map<const Node*, Chain> longest;
    std::vector<const Node*> stack{start};
    while (!stack.empty()) {
        const Node* node = stack.back();
        const auto found = next.find(node);
        Chain best{1, node};
        bool waiting = false;
        if (found != next.end())
            for (const Node* neighbour : found->second) {
                const auto known = longest.find(neighbour);
                if (known == longest.end()) {
                    stack.push_back(neighbour);
                    waiting = true;
                } else if (!waiting && known->second.length + 1 > best.length) {
                    best = {known->second.length + 1, known->second.end};
                }
            }
        if (!waiting) {
            longest[node] = best;
            stack.pop_back();
        }
    }
    return longest[start];
}

}  // namespace

std::string GraphDepth::Check(const Engine& engine) {
    for (const auto& [node, depth] : DepthsInOrder(engine))
        if (depth > kMaxDepth)
            return "node '" + engine.GetNodeId(node) + "': " + std::to_string(depth) +
                   " nodes deep, more than the limit of " + std::to_string(kMaxDepth);
    return {};
}

std::string GraphDepth::CheckLink(const Engine& engine, const Node* from, const Node* to,
                                  unsigned inplug) {
    Neighbours upstream;
    Neighbours downstream;
    for (const Engine::Link& link : engine.GetLinks()) {
        if (link.to == to && link.inplug == inplug)
            continue;
        upstream[link.to].push_back(link.from);
        downstream[link.from].push_back(link.to);
    }
    const int above = LongestChain(from, upstream).length;
    const Chain below = LongestChain(to, downstream);
    const int depth = above + below.length;
    if (depth <= kMaxDepth)
        return {};
    return "node '" + engine.GetNodeId(below.end) + "': " + std::to_string(depth) +
           " nodes deep, more than the limit of " + std::to_string(kMaxDepth);
}
