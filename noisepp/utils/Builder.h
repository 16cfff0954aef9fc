#pragma once

#include <cstdint>
#include <memory>

#include "noisepp/core/Module.h"
#include "noisepp/core/TextureColor.h"
#include "noisepp/utils/BuilderCallback.h"

namespace noisepp::utils {

/// Fills a width x height buffer of colours (row-major, row 0 first) from a module tree.
///
/// The builder borrows the destination and the module and owns its progress callback.
/// Setters store their value unchecked; build() checks them first and throws
/// ParamInvalidException before anything is queued or written.
class Builder {
public:
    Builder() = default;
    Builder(const Builder&) = delete;
    Builder& operator=(const Builder&) = delete;

    /// Compiles the module and fills the destination.
    virtual void build() = 0;
    /// Number of progress steps one build reports.
    virtual std::int32_t getStepCount() const = 0;
    virtual ~Builder() = default;

    /// The buffer to fill; it must hold width x height colours and outlive build().
    void setDestination(TextureColor* dest) { mDest = dest; }
    /// Size in samples.
    void setSize(std::int32_t width, std::int32_t height) {
        mWidth = width;
        mHeight = height;
    }
    /// The root of the module tree to sample; borrowed.
    void setModule(const Module* module) { mModule = module; }
    /// Takes ownership of `callback` (may be null) and deletes the previous one.
    void setCallback(BuilderCallback* callback) { mCallback.reset(callback); }

protected:
    /// Throws ParamInvalidException for a null destination, then for a width below 1, then for
    /// a height below 1.
    void checkParameters() const;

    TextureColor* mDest = nullptr;
    std::int32_t mWidth = 0;
    std::int32_t mHeight = 0;
    const Module* mModule = nullptr;
    std::unique_ptr<BuilderCallback> mCallback;
};

}  // namespace noisepp::utils
