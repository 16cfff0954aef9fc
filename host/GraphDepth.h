#pragma once

#include <string>

class Engine;

/// The depth of a graph: the most nodes on one chain of links. Textures compile into trees as
/// deep as their graph, and every stage of a tree keeps its evaluation scratch on the stack of
/// the thread that renders it, so the depth is bounded to what worker stacks hold.
class GraphDepth {
public:
    static constexpr int kMaxDepth = 1000;

    /// Empty when the graph is within kMaxDepth; otherwise one line naming the first node
    /// beyond it, for example "node 'blur': 1001 nodes deep, more than the limit of 1000".
    static std::string Check(const Engine& engine);
};
