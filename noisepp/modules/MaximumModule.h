#pragma once

#include "noisepp/core/Module.h"
#include "noisepp/modules/MaximumElement3D.h"

namespace noisepp {

/// Two sources combined channel by channel (see MaximumElement3D); no parameters, nothing in
/// the stream.
using MaximumModule = DualSourceModule<MaximumElement3D>;

}  // namespace noisepp
