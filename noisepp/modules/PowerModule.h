#pragma once

#include "noisepp/core/Module.h"
#include "noisepp/modules/ChannelCombinerElement3D.h"

namespace noisepp {

/// Two sources combined channel by channel by PowerElement3D; no parameters, nothing in the
/// stream.
using PowerModule = DualSourceModule<PowerElement3D>;

}  // namespace noisepp
