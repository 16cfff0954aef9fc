#pragma once

#include "noisepp/core/Module.h"
#include "noisepp/modules/InvertElement3D.h"

namespace noisepp {

/// Inverts red, green and blue of its one source; no parameters, nothing in the stream.
using InvertModule = SingleSourceModule<InvertElement3D>;

}  // namespace noisepp
