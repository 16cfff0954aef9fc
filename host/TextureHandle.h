#pragma once

#include <atomic>
#include <cstdint>

namespace noisepp {
class Module;
}

/// The texture value on a plug of type 9: a shared holder of a pointer to the producing
/// node's current module. Created with count 1; whoever reads it retains it while using the
/// module and releases it afterwards. Freeing the holder never frees the module, which
/// belongs to the node that produced it and is valid only until that node evaluates again.
struct TextureHandle {
    std::atomic<std::int32_t> count{1};
    noisepp::Module* module = nullptr;

    explicit TextureHandle(noisepp::Module* m) : module(m) {}

    void Retain() { count.fetch_add(1, std::memory_order_relaxed); }
    /// Drops one reference and deletes the holder at zero.
    void Release() {
        if (count.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
    }
};
