#include "library/TextureNodeFactory.h"

void TextureNodeFactory::Release() {
    if (mReferenceCount > 0)
        --mReferenceCount;
    if (mReferenceCount == 0)
        delete this;
}
