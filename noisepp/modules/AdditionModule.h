#pragma once

#include "noisepp/core/Module.h"
#include "noisepp/modules/ChannelCombinerElement3D.h"

namespace noisepp {

/// Two sources combined channel by channel by AdditionElement3D; no parameters, nothing in the
/// stream.
using AdditionModule = DualSourceModule<AdditionElement3D>;

}  // namespace noisepp
