#include "host/GraphStore.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "host/Node.h"

GraphStore::Entry* GraphStore::Find(const Node* node) const {
    const auto it = mByNode.find(node);
    return it != mByNode.end() ? it->second : nullptr;
}

GraphStore::Entry* GraphStore::Find(const std::string& id) const {
    const auto it = mById.find(id);
    return it != mById.end() ? it->second : nullptr;
}

Node* GraphStore::Insert(std::unique_ptr<Node> node, const std::string& id, std::size_t position) {
    auto entry = std::make_unique<Entry>();
    entry->id = id;
    entry->outputs.resize(node->GetOutplugs().size());
    entry->node = std::move(node);
    Node* inserted = entry->node.get();
    mByNode[inserted] = entry.get();
    mById[id] = entry.get();
    position = std::min(position, mEntries.size());
    mEntries.insert(mEntries.begin() + static_cast<std::ptrdiff_t>(position), std::move(entry));
    return inserted;
}

std::unique_ptr<GraphStore::Entry> GraphStore::Take(const Node* node, std::size_t* position) {
    // Searched from the back: clearing the graph takes the last node first.
    const auto found = std::find_if(mEntries.rbegin(), mEntries.rend(), [node](const auto& entry) {
        return entry->node.get() == node;
    });
    if (found == mEntries.rend())
        return nullptr;
    const auto it = std::prev(found.base());
    if (position != nullptr)
        *position = static_cast<std::size_t>(it - mEntries.begin());
    std::unique_ptr<Entry> taken = std::move(*it);
    mEntries.erase(it);
    mByNode.erase(node);
    mById.erase(taken->id);
    return taken;
}

const GraphLink* GraphStore::FindLinkTo(const Node* to, unsigned inplug) const {
    for (const GraphLink& link : mLinks)
        if (link.to == to && link.inplug == inplug)
            return &link;
    return nullptr;
}

void GraphStore::SetLink(const GraphLink& link) {
    RemoveLinkTo(link.to, link.inplug);
    mLinks.push_back(link);
}

void GraphStore::RemoveLinkTo(const Node* to, unsigned inplug) {
    std::erase_if(mLinks,
                  [&](const GraphLink& link) { return link.to == to && link.inplug == inplug; });
}

std::vector<GraphLink> GraphStore::RemoveLinksOf(const Node* node) {
    std::vector<GraphLink> removed;
    std::erase_if(mLinks, [&](const GraphLink& link) {
        if (link.from != node && link.to != node)
            return false;
        removed.push_back(link);
        return true;
    });
    return removed;
}

std::vector<GraphStore::Entry*> GraphStore::Downstream(Entry* start) const {
    std::vector<Entry*> found{start};
    std::unordered_set<Entry*> seen{start};
    for (std::size_t i = 0; i < found.size(); ++i)
        for (const GraphLink& link : mLinks)
            if (link.from == found[i]->node.get()) {
                Entry* next = Find(link.to);
                if (seen.insert(next).second)
                    found.push_back(next);
            }
    return found;
}

std::vector<std::string> GraphStore::PathDown(const Node* start, const Node* target) const {
    std::unordered_map<const Node*, const Node*> cameFrom{{start, nullptr}};
    std::vector<const Node*> queue{start};
    for (std::size_t i = 0; i < queue.size(); ++i) {
        if (queue[i] == target) {
            std::vector<std::string> path;
            for (const Node* n = target; n != nullptr; n = cameFrom[n])
                path.push_back(Find(n)->id);
            std::reverse(path.begin(), path.end());
            return path;
        }
        for (const GraphLink& link : mLinks)
            if (link.from == queue[i] && cameFrom.emplace(link.to, queue[i]).second)
                queue.push_back(link.to);
    }
    return {};
}

std::vector<GraphStore::Entry*> GraphStore::DirtyUpstreamOrder(Entry* target) const {
    // A clean node has only clean nodes upstream (dirtiness spreads downstream), so the walk
    // stops at them. It is an iterative depth-first walk (a long chain must not exhaust the
    // stack). A node is entered when it is expanded, not when it is pushed: a node pushed
    // early may be needed by one expanded later, and must then come out before it.
    std::vector<Entry*> order;
    std::unordered_set<Entry*> entered;
    std::vector<std::pair<Entry*, bool>> stack{{target, false}};
    while (!stack.empty()) {
        auto [entry, expanded] = stack.back();
        stack.pop_back();
        if (expanded) {
            order.push_back(entry);
            continue;
        }
        if (!entered.insert(entry).second)
            continue;
        stack.emplace_back(entry, true);
        for (const GraphLink& link : mLinks) {
            if (link.to != entry->node.get())
                continue;
            Entry* upstream = Find(link.from);
            if (upstream->dirty && entered.count(upstream) == 0)
                stack.emplace_back(upstream, false);
        }
    }
    return order;
}

std::string GraphStore::PlugName(const Node* node, bool outplug, unsigned plug) const {
    const Entry* entry = Find(node);
    std::string text = "'" + (entry != nullptr ? entry->id : std::string("?")) + ".";
    if (outplug && plug < node->GetOutplugs().size())
        text += node->GetOutplugs()[plug].name;
    else if (!outplug && plug < node->GetInplugs().size())
        text += node->GetInplugs()[plug].name;
    else
        text += std::to_string(plug);
    return text + "'";
}
