#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/NodeValue.h"

class Node;

/// A link from an outplug of one node to an inplug of another.
struct GraphLink {
    Node* from = nullptr;
    unsigned outplug = 0;
    Node* to = nullptr;
    unsigned inplug = 0;
};

/// The nodes of a graph under their ids, in the order they were added, the links between
/// their plugs, and per node the dirty flag and the outputs of its last evaluation. It owns
/// the nodes and walks the graph; it sends no events and takes no lock (the engine does both).
class GraphStore {
public:
    struct Entry {
        std::unique_ptr<Node> node;
        std::string id;
        bool dirty = true;
        std::vector<NodeValue> outputs;
    };

    GraphStore() = default;
    GraphStore(const GraphStore&) = delete;
    GraphStore& operator=(const GraphStore&) = delete;

    Entry* Find(const Node* node) const;
    Entry* Find(const std::string& id) const;
    const std::vector<std::unique_ptr<Entry>>& GetEntries() const { return mEntries; }
    /// Adds `node` under the free id `id` at `position` (clamped to the end).
    Node* Insert(std::unique_ptr<Node> node, const std::string& id, std::size_t position);
    /// Takes the node out (its links stay: see RemoveLinksOf); returns the entry it had and
    /// stores where it stood in `position` when given.
    std::unique_ptr<Entry> Take(const Node* node, std::size_t* position = nullptr);

    const std::vector<GraphLink>& GetLinks() const { return mLinks; }
    const GraphLink* FindLinkTo(const Node* to, unsigned inplug) const;
    /// Adds `link`, replacing the link its inplug had.
    void SetLink(const GraphLink& link);
    void RemoveLinkTo(const Node* to, unsigned inplug);
    /// Removes and returns every link into or out of `node`.
    std::vector<GraphLink> RemoveLinksOf(const Node* node);
    void ClearLinks() { mLinks.clear(); }

    /// `start` and every node downstream of it, `start` first.
    std::vector<Entry*> Downstream(Entry* start) const;
    /// The ids along a chain of links from `start` down to `target`, empty when there is none.
    std::vector<std::string> PathDown(const Node* start, const Node* target) const;
    /// The dirty nodes `target` depends on, and `target` itself, upstream first.
    std::vector<Entry*> DirtyUpstreamOrder(Entry* target) const;
    /// "'id.plug'" for messages.
    std::string PlugName(const Node* node, bool outplug, unsigned plug) const;

private:
    std::vector<std::unique_ptr<Entry>> mEntries;
    std::unordered_map<const Node*, Entry*> mByNode;
    std::map<std::string, Entry*> mById;
    std::vector<GraphLink> mLinks;
};
