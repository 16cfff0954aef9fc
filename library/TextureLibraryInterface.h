#pragma once

#include <string>

#include "host/LibraryInterface.h"
#include "library/QTextureStuff.h"

/// The library-wide object the host receives from GetLibraryInterface: the library's name
/// and its two menu entries, whose Qt side is the QTextureStuff member.
class TextureLibraryInterface : public LibraryInterface {
public:
    TextureLibraryInterface() = default;

    /// "Texture".
    std::string GetLibraryName() const override;
    /// "Texture" as well.
    std::string GetDisplayName() const override;
    /// Adds "Texture Preview" and then "About Texture Module" to `menu`.
    void AddMenuActions(QWidget* menu) override;
    /// Removes both entries from `menu`; the host must have added them first.
    void RemoveMenuActions(QWidget* menu) override;
    /// Closes the preview dialog if it was opened.
    void Close() override;

private:
    QTextureStuff mStuff;
};
