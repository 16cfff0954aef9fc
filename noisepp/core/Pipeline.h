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
#include <string>
#include <utility>
#include <vector>

#include "noisepp/core/Exception.h"
#include "noisepp/core/Periodicity.h"
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
        for (Element* element : mElements)
            delete element;
        mModules.clear();
        for (PipelineJob* job : mJobs)
            delete job;
    }

    /// Registers `element` (the pipeline owns it from here, even on failure) as the element
    /// of `parent` for the current periodicity and returns its id. When `parent` already has
    /// an element here for that periodicity, the new one is deleted and the stored id returned.
    std::size_t addElement(const Module* parent, Element* element) {
        NOISEPP_REQUIRE(element != nullptr, "element");
        if (parent == nullptr) {
            // The pipeline owns every element handed to it, even one it refuses.
            delete element;
            NOISEPP_REQUIRE(parent != nullptr, "parent");
        }
        const auto key = std::make_pair(parent, mPeriodicity);
        if (const auto found = mModules.find(key); found != mModules.end()) {
            delete element;
            return found->second;
        }
        const std::size_t id = mElements.size();
        mModules.emplace(key, id);
        mElements.push_back(element);
        return id;
    }

    /// The element with id i; OutOfRangeException naming "i" past the element count.
    Element* getElement(std::size_t i) const {
        if (i >= mElements.size())
            throw OutOfRangeException("i", NOISEPP_FUNCTION);
        return mElements[i];
    }

    std::size_t getElementCount() const { return mElements.size(); }

    /// Added (with 32-bit wrap-around) to the seed of every seeded generator compiled here.
    std::int32_t getSeed() const { return mSeed; }
    void setSeed(std::int32_t seed) { mSeed = seed; }

    /// The period the module being compiled must repeat with (none by default). A module that
    /// moves coordinates compiles its sources under the period they see (PeriodScope).
    const Periodicity& getPeriodicity() const { return mPeriodicity; }
    void setPeriodicity(const Periodicity& periodicity) { mPeriodicity = periodicity; }

    /// Lines telling what periodic compilation changed (snapped frequencies), in compile order.
    void addNote(std::string note) { mNotes.push_back(std::move(note)); }
    const std::vector<std::string>& getNotes() const { return mNotes; }

protected:
    std::deque<PipelineJob*> mJobs;

private:
    std::int32_t mSeed = 0;
    Periodicity mPeriodicity;
    std::vector<std::string> mNotes;
    std::vector<Element*> mElements;
    // A module reached under two periods (through a scaling transform) gets one element each.
    std::map<std::pair<const Module*, Periodicity>, std::size_t> mModules;
};

using Pipeline3D = Pipeline<PipelineElement3D>;

/// The lattice of a generator with one frequency compiled into `pipeline`: snapped to the
/// pipeline's period (with a note naming `node`) when it asks for one, else unchanged.
inline PeriodicLattice compileLattice(double frequency, Pipeline3D& pipeline,
                                      const std::string& node) {
    if (!pipeline.getPeriodicity().isPeriodic())
        return PeriodicLattice(frequency);
    PeriodicLattice lattice(frequency, pipeline.getPeriodicity(), node);
    pipeline.addNote(node + ": frequency " + lattice.describe(frequency));
    return lattice;
}

/// Compiles under another periodicity until the scope ends, then restores the previous one.
class PeriodScope {
public:
    PeriodScope(Pipeline3D& pipeline, const Periodicity& periodicity)
        : mPipeline(pipeline), mSaved(pipeline.getPeriodicity()) {
        pipeline.setPeriodicity(periodicity);
    }
    ~PeriodScope() { mPipeline.setPeriodicity(mSaved); }
    PeriodScope(const PeriodScope&) = delete;
    PeriodScope& operator=(const PeriodScope&) = delete;

private:
    Pipeline3D& mPipeline;
    Periodicity mSaved;
};

/// Adds `offset` to `seed` with 32-bit two's-complement wrap-around.
inline std::int32_t wrappingAdd(std::int32_t seed, std::int32_t offset) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(seed) +
                                     static_cast<std::uint32_t>(offset));
}

}  // namespace noisepp
