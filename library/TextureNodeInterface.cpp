#include "library/TextureNodeInterface.h"

#include "library/TextureNodeFactory.h"

#if TEXTURE_HAS_ATTRIBUTE_PAGES
#include "library/TextureAttributesPage.h"
#endif

TextureNodeInterface::TextureNodeInterface(TextureNodeFactory* factory) : mFactory(factory) {
    if (mFactory != nullptr)
        mFactory->AddReference();
}

TextureNodeInterface::~TextureNodeInterface() {
    if (mFactory != nullptr)
        mFactory->Release();
}

NodeFactory* TextureNodeInterface::GetFactory() const {
    return mFactory;
}

QWidget* TextureNodeInterface::CreateAttributesWidget(Node* node, QWidget* parent, int page) {
#if TEXTURE_HAS_ATTRIBUTE_PAGES
    return TextureAttributesPage::Create(this, node, parent, page, &mLastAttributesWidget);
#else
    return NodeInterface::CreateAttributesWidget(node, parent, page);
#endif
}
