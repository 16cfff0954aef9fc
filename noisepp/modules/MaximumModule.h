#pragma once

#include "noisepp/core/Module.h"
#include "noisepp/modules/ChannelCombinerElement3D.h"

namespace noisepp {

/// Two sources combined channel by channel by MaximumElement3D; no parameters, nothing in the
/// stream.
using MaximumModule = DualSourceModule<MaximumElement3D>;

}  // namespace noisepp
