#include "noisepp/core/Module.h"

#include "noisepp/core/Exception.h"

namespace noisepp {

Module::Module(std::size_t sourceModuleCount) : mSources(sourceModuleCount, nullptr) {}

void Module::write(OutStream& /*stream*/) const {}

void Module::read(InStream& /*stream*/) {}

void Module::setSourceModule(std::size_t id, const Module* module) {
    if (id >= mSources.size()) throw OutOfRangeException("id", NOISEPP_FUNCTION);
    NOISEPP_REQUIRE(module != this, "module");
    if (module != nullptr) {
        NOISEPP_REQUIRE(module->walkTree(this) == false, "module");
    }
    mSources[id] = module;
}

const Module* Module::getSourceModule(std::size_t id) const {
    if (id >= mSources.size()) throw OutOfRangeException("id", NOISEPP_FUNCTION);
    return mSources[id];
}

bool Module::walkTree(const Module* target) const {
    for (const Module* source : mSources) {
        if (source == target) return true;
    }
    for (const Module* source : mSources) {
        if (source != nullptr && source->walkTree(target)) return true;
    }
    return false;
}

void Module::requireSources(const char* function) const {
    for (const Module* source : mSources) {
        if (source == nullptr) throw NoModuleException(function);
    }
}

std::vector<std::size_t> Module::addSourcesToPipeline(Pipeline3D* pipeline) const {
    std::vector<std::size_t> ids;
    ids.reserve(mSources.size());
    for (const Module* source : mSources) ids.push_back(source->addToPipeline(pipeline));
    return ids;
}

}  // namespace noisepp
