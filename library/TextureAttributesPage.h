#pragma once

class Node;
class NodeInterface;
class QWidget;

/// Builds the attributes pages the library's node interfaces return. Every node type has
/// exactly one page, page 0: the gradient editor for the Texture Gradient type, the host's
/// generic attributes page for every other type, each row presented as its attribute's display
/// hint says.
class TextureAttributesPage {
public:
    /// The page for `node` made by `interface`, parented to `parent`; null for a page other
    /// than 0. For the Texture Gradient type, `lastGradientPage` (when given) receives the page.
    static QWidget* Create(NodeInterface* interface, Node* node, QWidget* parent, int page,
                           QWidget** lastGradientPage);
};
