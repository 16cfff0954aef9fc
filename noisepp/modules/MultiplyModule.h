#pragma once

#include "noisepp/core/Module.h"
#include "noisepp/modules/ChannelCombinerElement3D.h"

namespace noisepp {

/// Two sources combined channel by channel by MultiplyElement3D; no parameters, nothing in the
/// stream.
using MultiplyModule = DualSourceModule<MultiplyElement3D>;

}  // namespace noisepp
