#pragma once

#include <string_view>

#include "host/HostTypes.h"

/// The plug-in's node catalogue: one row per node type, the single source from which the
/// interface and factory classes and the GetNodeInterface dispatch are generated.
///
/// Row: X(index, NodeClass, "display name", code, IconStem)
///  - index: the GetNodeInterface index (offered types only);
///  - NodeClass: the node class; its interface and factory classes append "Interface" and
///    "Factory" to this name;
///  - the display name and the code of the type id (10, 304, code), which the node class
///    reads from here through CatalogueEntry;
///  - IconStem: the icons are ":/Texture/Resources/Icons/<stem>.png" (large) and
///    "<stem>12.png" (12 pixels).

/// The 26 types the host can create, in index order.
#define TEXTURE_OFFERED_NODES(X)                                                    \
    X(0, ImageRender2DTextureNode, "Render 2D Texture", 0, TextureRender2D)         \
    X(1, ImageRender3DTextureNode, "Render 3D Texture", 5, TextureRender3D)         \
    X(2, TexturePerlinNode, "Perlin Texture", 261, TexturePerlin)                   \
    X(3, TextureBillowNode, "Billow Texture", 266, TextureBillow)                   \
    X(4, TextureRidgedMultiNode, "Ridged Multi Texture", 272, TextureRidgedMulti)   \
    X(5, TextureVoronoiNode, "Voronoi Texture", 277, TextureVoronoi)                \
    X(6, TextureFibersNode, "Fibers Texture", 1312, TextureFibers)                  \
    X(7, TextureBlobsNode, "Blobs Texture", 1317, TextureBlobs)                     \
    X(8, TextureWaveNode, "Wave Texture", 1306, TextureWave)                        \
    X(9, TextureCheckerboardNode, "Checkerboard Texture", 282, TextureCheckerboard) \
    X(10, TextureImageNode, "Image Texture", 288, TextureImage)                     \
    X(11, TextureTransformNode, "Texture Transform", 512, TextureTransform)         \
    X(12, TextureTurbulenceNode, "Texture Turbulence", 517, TextureTurbulence)      \
    X(13, TextureRgbMapNode, "Texture RGB to XYZ", 1301, TextureRgbMap)             \
    X(14, TextureExponentNode, "Texture Exponent", 773, TextureExponent)            \
    X(15, TextureScaleBiasNode, "Texture ScaleBias", 778, TextureScaleBias)         \
    X(16, TextureGradientNode, "Texture Gradient", 1296, TextureGradient)           \
    X(17, TextureClampNode, "Texture Clamp", 784, TextureClamp)                     \
    X(18, TextureInvertNode, "Texture Invert", 789, TextureInvert)                  \
    X(19, TextureMaximumNode, "Texture Maximum", 1024, TextureMaximum)              \
    X(20, TextureMinimumNode, "Texture Minimum", 1029, TextureMinimum)              \
    X(21, TextureAdditionNode, "Texture Addition", 1034, TextureAddition)           \
    X(22, TextureMultiplyNode, "Texture Multiply", 1040, TextureMultiply)           \
    X(23, TexturePowerNode, "Texture Power", 1045, TexturePower)                    \
    X(24, TextureBlendNode, "Texture Blend", 1280, TextureBlend)                    \
    X(25, TextureSelectNode, "Texture Select", 1285, TextureSelect)

/// Types that are fully defined but deliberately not offered: they have an interface class
/// and no factory and no index, so the host can never create them. Enabling one means moving
/// its row into the offered table (which generates its factory) and giving it the next index.
/// Join has no icon of its own on purpose; it shows the Select icons.
#define TEXTURE_HIDDEN_NODES(X)                                       \
    X(-1, TextureCurveNode, "Texture Curve", 768, TextureCurve)       \
    X(-1, TextureTerraceNode, "Texture Terrace", 794, TextureTerrace) \
    X(-1, TextureJoinNode, "Texture Join", 1322, TextureSelect)

/// Every type with an interface class: offered first, then hidden.
#define TEXTURE_ALL_NODES(X) TEXTURE_OFFERED_NODES(X) TEXTURE_HIDDEN_NODES(X)

/// The number of offered types, which GetNumNodeInterfaces reports.
#define TEXTURE_COUNT_ROW(index, NodeClass, name, code, stem) +1
inline constexpr unsigned kTextureOfferedNodeCount = 0 TEXTURE_OFFERED_NODES(TEXTURE_COUNT_ROW);
#undef TEXTURE_COUNT_ROW

/// The resource folder of the icons, with its trailing slash.
#define TEXTURE_ICON_FOLDER ":/Texture/Resources/Icons/"

/// A node class's row as its constructor sees it.
struct NodeCatalogueEntry {
    std::string_view nodeClass;
    const char* typeName;
    unsigned code;

    constexpr NodeType GetNodeType() const { return {10, 304, code}; }
};

#define TEXTURE_ENTRY_ROW(index, NodeClass, name, code, stem) {#NodeClass, name, code},
inline constexpr NodeCatalogueEntry kNodeCatalogue[] = {TEXTURE_ALL_NODES(TEXTURE_ENTRY_ROW)};
#undef TEXTURE_ENTRY_ROW

/// The row of `nodeClass`; a class missing from the catalogue does not compile.
consteval const NodeCatalogueEntry& CatalogueEntry(std::string_view nodeClass) {
    for (const NodeCatalogueEntry& entry : kNodeCatalogue)
        if (entry.nodeClass == nodeClass)
            return entry;
    throw "node class missing from the catalogue";
}
