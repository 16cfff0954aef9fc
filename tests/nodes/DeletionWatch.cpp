#include "DeletionWatch.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<const void*> gWatched{nullptr};
std::atomic<bool> gDeleted{false};

void Free(void* block) noexcept {
    if (block != nullptr && block == gWatched.load())
        gDeleted.store(true);
    std::free(block);
}
}  // namespace

void gentest::WatchDeletion(const void* block) {
    gDeleted.store(false);
    gWatched.store(block);
}

bool gentest::WatchedBlockDeleted() {
    return gDeleted.load();
}

// Plain malloc-backed replacements of the non-aligned forms; the aligned forms keep the
// library's own pairing.
void* operator new(std::size_t size) {
    if (void* block = std::malloc(size == 0 ? 1 : size))
        return block;
    throw std::bad_alloc();
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void operator delete(void* block) noexcept {
    Free(block);
}
void operator delete[](void* block) noexcept {
    Free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    Free(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    Free(block);
}
// The nothrow forms too: the host allocates with them, and a sanitizer build would otherwise
// see its blocks freed by a different family of functions.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size == 0 ? 1 : size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size == 0 ? 1 : size);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    Free(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    Free(block);
}
