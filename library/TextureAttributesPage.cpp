#include "library/TextureAttributesPage.h"

#include "host/NodeInterface.h"
#include "host/widgets/QNodeAttributesWidget.h"
#include "library/NodeCatalogue.h"
#include "nodes/TextureGradientNode.h"
#include "ui/QTextureGradientWidget.h"

namespace {

// The one type whose page is not the generic one.
constexpr unsigned kGradientCode = CatalogueEntry("TextureGradientNode").code;

}  // namespace

QWidget* TextureAttributesPage::Create(NodeInterface* interface, Node* node, QWidget* parent,
                                       int page, QWidget** lastGradientPage) {
    if (page != 0)
        return nullptr;
    const unsigned code = interface->GetNodeType().code;
    if (code == kGradientCode) {
        auto* gradientPage =
            new QTextureGradientWidget(parent, dynamic_cast<TextureGradientNode*>(node), interface);
        if (lastGradientPage != nullptr)
            *lastGradientPage = gradientPage;
        return gradientPage;
    }
    // Each row takes its label, frequency flag and tool tip from its attribute.
    return new QNodeAttributesWidget(parent, node, interface, nullptr, false);
}
