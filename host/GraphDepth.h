#pragma once

#include <string>

class Engine;
class Node;

/// The depth of a graph: the most nodes on one chain of links. Textures compile into trees as
/// deep as their graph, and every stage of a tree keeps its evaluation scratch on the stack of
/// the thread that renders it, so the depth is bounded to what worker stacks hold.
class GraphDepth {
public:
    static constexpr int kMaxDepth = 1000;

    /// Empty when the graph is within kMaxDepth; otherwise one line naming the first node
    /// beyond it, for example "node 'blur': 1001 nodes deep, more than the limit of 1000".
    static std::string Check(const Engine& engine);

    /// The same check for one new link from `from` into inplug `inplug` of `to`, before it is
    /// made (the link that inplug has now is left out, as the new one replaces it). Only the
    /// nodes above `from` and below `to` are walked, so graphs built link by link stay linear
    /// in their depth. The line names the deepest node the link would put beyond the limit.
    static std::string CheckLink(const Engine& engine, const Node* from, const Node* to,
                                 unsigned inplug);
};
