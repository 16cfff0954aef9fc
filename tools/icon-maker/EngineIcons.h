#pragma once

#include <QImage>
#include <string>

/// The pictures of the icons that show a texture: each generator, and the two coordinate
/// modifiers applied to a simple pattern, rendered by the noise engine itself.
class EngineIcons {
public:
    /// True when `stem` is drawn from an engine render.
    static bool has(const std::string& stem);
    /// The engine's picture for `stem`, `size` pixels square; null for other stems.
    static QImage render(const std::string& stem, int size);
};
