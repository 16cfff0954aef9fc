#pragma once

#include <string>

#include "host/Node.h"

class NodeInterface;

/// Host node "Image File": attribute 0 "file" (a file attribute); output 0 "image" (type 8), the
/// picture read from that file as four float channels. A file that cannot be read puts the node in
/// the error state (3).
class ImageFileNode : public Node {
public:
    ImageFileNode();
    ~ImageFileNode() override;

    NodeType GetNodeType() const override { return {1, 1, 1}; }
    std::string GetTypeName() const override { return "Image File"; }
    void Evaluate(unsigned outplug, Value** inputs) override;
    Image* GetOutputImage(unsigned index) override;
    bool OnProcessEvent(const NodeEvent& event) override;

    /// A new catalogue entry for this node type (owned by the caller).
    static NodeInterface* CreateInterface();

private:
    void ReleaseImage();

    Image* mImage = nullptr;
};
