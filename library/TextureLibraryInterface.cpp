#include "library/TextureLibraryInterface.h"

std::string TextureLibraryInterface::GetLibraryName() const {
    return "Texture";
}

std::string TextureLibraryInterface::GetDisplayName() const {
    return "Texture";
}

void TextureLibraryInterface::AddMenuActions(QWidget* menu) {
    mStuff.AddMenuActions(menu);
}

void TextureLibraryInterface::RemoveMenuActions(QWidget* menu) {
    mStuff.RemoveMenuActions(menu);
}

void TextureLibraryInterface::Close() {
    mStuff.Close();
}
