#pragma once

#include <cstdint>

#include "host/NodeFactory.h"

/// Base of the library's node factories: the reference count through which the node
/// interfaces share and free a factory. A factory starts with no reference; each interface
/// built on it takes one and gives it back when destroyed, and the last one frees it.
class TextureNodeFactory : public NodeFactory {
public:
    TextureNodeFactory() = default;
    TextureNodeFactory(const TextureNodeFactory&) = delete;
    TextureNodeFactory& operator=(const TextureNodeFactory&) = delete;

    /// Takes one reference.
    void AddReference() { ++mReferenceCount; }
    /// Gives one reference back and deletes the factory when none is left.
    void Release();
    /// The number of interfaces that hold the factory.
    std::uint32_t GetReferenceCount() const { return mReferenceCount; }

private:
    // Not atomic: the host creates and destroys interfaces on one thread only.
    std::uint32_t mReferenceCount = 0;
};
