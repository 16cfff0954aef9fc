#pragma once

#include "noisepp/core/Module.h"
#include "noisepp/modules/MultiplyElement3D.h"

namespace noisepp {

/// Two sources combined channel by channel (see MultiplyElement3D); no parameters, nothing in
/// the stream.
using MultiplyModule = DualSourceModule<MultiplyElement3D>;

}  // namespace noisepp
