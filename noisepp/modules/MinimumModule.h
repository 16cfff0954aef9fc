#pragma once

#include "noisepp/core/Module.h"
#include "noisepp/modules/ChannelCombinerElement3D.h"

namespace noisepp {

/// Two sources combined channel by channel by MinimumElement3D; no parameters, nothing in the
/// stream.
using MinimumModule = DualSourceModule<MinimumElement3D>;

}  // namespace noisepp
