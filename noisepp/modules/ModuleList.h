#pragma once

// Every module class of the engine with its type code, in one list. Code that must cover every
// module (stream checks, run-path checks, benchmarks) expands NOISEPP_MODULE_LIST with a macro
// of its own, so a new module is covered once it has its line here.

#include "noisepp/modules/AdditionModule.h"
#include "noisepp/modules/BillowModule.h"
#include "noisepp/modules/BlendModule.h"
#include "noisepp/modules/BlobsModule.h"
#include "noisepp/modules/CheckerboardModule.h"
#include "noisepp/modules/ClampModule.h"
#include "noisepp/modules/ConstantModule.h"
#include "noisepp/modules/CurveModule.h"
#include "noisepp/modules/ExponentModule.h"
#include "noisepp/modules/FibersModule.h"
#include "noisepp/modules/GradientModule.h"
#include "noisepp/modules/ImageModule.h"
#include "noisepp/modules/InvertModule.h"
#include "noisepp/modules/JoinModule.h"
#include "noisepp/modules/MaximumModule.h"
#include "noisepp/modules/MinimumModule.h"
#include "noisepp/modules/MultiplyModule.h"
#include "noisepp/modules/PerlinModule.h"
#include "noisepp/modules/PowerModule.h"
#include "noisepp/modules/RgbMapModule.h"
#include "noisepp/modules/RidgedMultiModule.h"
#include "noisepp/modules/ScaleBiasModule.h"
#include "noisepp/modules/SelectModule.h"
#include "noisepp/modules/TerraceModule.h"
#include "noisepp/modules/TransformModule.h"
#include "noisepp/modules/TurbulenceModule.h"
#include "noisepp/modules/VoronoiModule.h"
#include "noisepp/modules/WaveModule.h"

/// Calls MODULE(typeCode, Class) once per module class. Type codes are not unique: several
/// modules share one, so nothing may tell modules apart by it.
#define NOISEPP_MODULE_LIST(MODULE) \
    MODULE(0, PerlinModule)         \
    MODULE(1, BillowModule)         \
    MODULE(2, AdditionModule)       \
    MODULE(4, BlendModule)          \
    MODULE(5, CheckerboardModule)   \
    MODULE(6, ClampModule)          \
    MODULE(7, ConstantModule)       \
    MODULE(8, CurveModule)          \
    MODULE(9, ExponentModule)       \
    MODULE(10, InvertModule)        \
    MODULE(11, MaximumModule)       \
    MODULE(12, MinimumModule)       \
    MODULE(13, MultiplyModule)      \
    MODULE(14, PowerModule)         \
    MODULE(14, RgbMapModule)        \
    MODULE(15, RidgedMultiModule)   \
    MODULE(16, ScaleBiasModule)     \
    MODULE(17, SelectModule)        \
    MODULE(17, JoinModule)          \
    MODULE(18, TurbulenceModule)    \
    MODULE(19, TerraceModule)       \
    MODULE(20, TransformModule)     \
    MODULE(21, VoronoiModule)       \
    MODULE(22, GradientModule)      \
    MODULE(24, BlobsModule)         \
    MODULE(24, WaveModule)          \
    MODULE(0, FibersModule)         \
    MODULE(7, ImageModule)
