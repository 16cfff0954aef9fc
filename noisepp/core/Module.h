#pragma once

#include <cstddef>
#include <vector>

#include "noisepp/core/Pipeline.h"
#include "noisepp/core/PipelineElement3D.h"

namespace noisepp {

class OutStream;
class InStream;

/// Describes one stage of a texture: its parameters and its source modules.
///
/// A module is never evaluated. addToPipeline compiles it (after its sources) into an
/// immutable element of a pipeline; the element copies what it needs, so later changes to the
/// module do not reach pipelines already built. Sources are borrowed pointers: deleting a
/// module never deletes its sources. Cycles are refused when a source is set.
class Module {
public:
    explicit Module(std::size_t sourceModuleCount);

    /// Compiles this module (and, first, its sources) into `pipeline`; returns the id of this
    /// module's element there. A module already compiled into that pipeline keeps its element.
    virtual std::size_t addToPipeline(Pipeline3D* pipeline) const = 0;
    /// The module type code (several modules share a code; nothing tells modules apart by it).
    virtual int getType() const = 0;
    virtual ~Module() = default;
    /// Writes the parameters in declaration order; the base writes nothing.
    virtual void write(OutStream& stream) const;
    /// Reads what write wrote, in the same order; the base reads nothing.
    virtual void read(InStream& stream);

    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    /// Sets (or, with null, clears) the source at position id. Throws OutOfRangeException for
    /// a position past the module's source count and ParamInvalidException for a module that
    /// is this one or has this one among its sources.
    void setSourceModule(std::size_t id, const Module* module);
    /// The source at position id, null when unset; OutOfRangeException past the source count.
    const Module* getSourceModule(std::size_t id) const;
    std::size_t getSourceModuleCount() const { return mSources.size(); }
    /// True when `target` is a source of this module, directly or further up the tree.
    bool walkTree(const Module* target) const;

protected:
    /// Throws NoModuleException naming `function` unless every source position is set.
    void requireSources(const char* function) const;
    /// Compiles every source in index order and returns their element ids.
    std::vector<std::size_t> addSourcesToPipeline(Pipeline3D* pipeline) const;

private:
    std::vector<const Module*> mSources;
};

/// A module with one source whose element class `Element` has a constructor
/// `Element(const Pipeline3D&, std::size_t source)` and a `moduleType` constant.
template <class Element>
class SingleSourceModule : public Module {
public:
    SingleSourceModule() : Module(1) {}
    std::size_t addToPipeline(Pipeline3D* pipeline) const override {
        requireSources(NOISEPP_FUNCTION);
        const std::size_t source = getSourceModule(0)->addToPipeline(pipeline);
        return pipeline->addElement(this, new Element(*pipeline, source));
    }
    int getType() const override { return Element::moduleType; }
};

/// A module with two sources whose element class `Element` has a constructor
/// `Element(const Pipeline3D&, std::size_t source0, std::size_t source1)` and a `moduleType`.
template <class Element>
class DualSourceModule : public Module {
public:
    DualSourceModule() : Module(2) {}
    std::size_t addToPipeline(Pipeline3D* pipeline) const override {
        requireSources(NOISEPP_FUNCTION);
        const std::size_t source0 = getSourceModule(0)->addToPipeline(pipeline);
        const std::size_t source1 = getSourceModule(1)->addToPipeline(pipeline);
        return pipeline->addElement(this, new Element(*pipeline, source0, source1));
    }
    int getType() const override { return Element::moduleType; }
};

/// Base of the three-source modules (blend, select, join).
class TripleSourceModuleBase : public Module {
public:
    TripleSourceModuleBase() : Module(3) {}
};

}  // namespace noisepp
