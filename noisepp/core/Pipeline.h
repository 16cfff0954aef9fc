#pragma once

// The pipeline is the engine's execution model.
//
// A module tree is compiled once into a flat list of immutable elements (one per module, a
// module shared by several parents keeps one element) and the elements are then evaluated by
// jobs. Compilation is single-threaded and may allocate freely; evaluation never allocates,
// never locks and never writes element state, so the same element list serves any number of
// worker threads. The price is that a pipeline is a snapshot: a module changed after
// compilation is not seen until the tree is compiled again into a new pipeline.

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <vector>

#include "noisepp/core/Exception.h"
#include "noisepp/core/PipelineElement3D.h"
#include "noisepp/core/PipelineJob.h"

namespace noisepp {

class Module;

/// Element store with per-module reuse and a queue of jobs run on the calling thread.
template <class Element>
class Pipeline {
public:
    Pipeline() = default;
    Pipeline(const Pipeline&) = delete;
    Pipeline& operator=(const Pipeline&) = delete;

    /// Queues a job; the pipeline owns it until it has run. Null throws ParamInvalidException.
    virtual void addJob(PipelineJob* job) {
        NOISEPP_REQUIRE(job != nullptr, "job");
        mJobs.push_back(job);
    }

    /// Runs every queued job in order on this thread: execute, finish, delete.
    virtual void executeJobs() {
        std::vector<Cache> cache(getElementCount());
        while (!mJobs.empty()) {
            PipelineJob* job = mJobs.front();
            mJobs.pop_front();
            job->execute(cache.data());
            job->finish();
            delete job;
        }
    }

    /// Deletes every element in id order and every job still queued.
    virtual ~Pipeline() {
        for (Element* element : mElements) delete element;
        mModules.clear();
        for (PipelineJob* job : mJobs) delete job;
    }

    /// Registers `element` (the pipeline owns it from here, even on failure) as the element
    /// of `parent` and returns its id. When `parent`
    /// already has an element here, the new one is deleted and the stored id returned.
    std::size_t addElement(const Module* parent, Element* element) {
        NOISEPP_REQUIRE(element != nullptr, "element");
        if (parent == nullptr) {
            // The pipeline owns every element handed to it, even one it refuses.
            delete element;
            NOISEPP_REQUIRE(parent != nullptr, "parent");
        }
        if (const auto found = mModules.find(parent); found != mModules.end()) {
            delete element;
            return found->second;
        }
        const std::size_t id = mElements.size();
        mModules.emplace(parent, id);
        mElements.push_back(element);
        return id;
    }

    /// The element with id i; OutOfRangeException naming "i" past the element count.
    Element* getElement(std::size_t i) const {
        if (i >= mElements.size()) throw OutOfRangeException("i", NOISEPP_FUNCTION);
        return mElements[i];
    }

    std::size_t getElementCount() const { return mElements.size(); }

    /// Added (with 32-bit wrap-around) to the seed of every seeded generator compiled here.
    std::int32_t getSeed() const { return mSeed; }
    void setSeed(std::int32_t seed) { mSeed = seed; }

protected:
    std::deque<PipelineJob*> mJobs;

private:
    std::int32_t mSeed = 0;
    std::vector<Element*> mElements;
    std::map<const Module*, std::size_t> mModules;
};

using Pipeline3D = Pipeline<PipelineElement3D>;

/// Adds `offset` to `seed` with 32-bit two's-complement wrap-around.
inline std::int32_t wrappingAdd(std::int32_t seed, std::int32_t offset) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(seed) +
                                     static_cast<std::uint32_t>(offset));
}

}  // namespace noisepp
