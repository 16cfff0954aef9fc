#pragma once

#include "noisepp/core/TextureColor.h"

namespace noisepp {

/// One compiled stage of a texture: the colour of the texture at a 3D point.
///
/// Thread safety: an element fixes every field in its constructor and never changes again.
/// getValue is a pure function of the point and those fields, so any number of worker threads
/// may evaluate the same element at once without locks. Elements hold direct pointers to their
/// source elements (owned by the same pipeline) and never reach back into the modules.
class PipelineElement3D {
public:
    virtual TextureColor getValue(double x, double y, double z) const = 0;
    virtual ~PipelineElement3D() = default;
};

}  // namespace noisepp
