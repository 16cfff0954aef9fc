#pragma once

#include "nodes/ModuleNode.h"
#include "noisepp/modules/TransformModule.h"

/// "Texture Transform": scales "texture" by "scale_x/y/z", rotates it by "rotation_x/y/z"
/// degrees (about x, then y, then z) and moves it by "translation_x/y/z", in that order. At
/// its defaults it leaves the texture as it is.
class TextureTransformNode : public ModuleNode<noisepp::TransformModule> {
public:
    enum AttributeId : unsigned {
        kTranslationX = 0,
        kTranslationY,
        kTranslationZ,
        kRotationX,
        kRotationY,
        kRotationZ,
        kScaleX,
        kScaleY,
        kScaleZ,
    };
    enum RegularInputId : unsigned { kTextureInput = 0 };

    TextureTransformNode();

private:
    /// Each of the module's setters takes all three axes at once.
    void Complete(noisepp::TransformModule& module, Value** inputs) override;
};
