#pragma once

#include <atomic>
#include <mutex>
#include <thread>

/// The engine's lock: a recursive mutex that knows when a thread that must not wait long (a
/// window's GUI thread) is waiting for it. Long work that holds the lock, such as a render,
/// asks IsUrgentWaiting between bands of its work and stops early, so that a window never
/// freezes behind it (see RenderOptions::cancelled). Meets the standard Lockable
/// requirements, so std::lock_guard and std::unique_lock take it.
class EngineMutex {
public:
    void lock() {
        if (mMutex.try_lock())
            return;
        if (std::this_thread::get_id() != mUrgentThread.load(std::memory_order_relaxed)) {
            mMutex.lock();
            return;
        }
        mUrgentWaiting.store(true, std::memory_order_relaxed);
        mMutex.lock();
        mUrgentWaiting.store(false, std::memory_order_relaxed);
    }
    bool try_lock() { return mMutex.try_lock(); }
    void unlock() { mMutex.unlock(); }

    /// Makes the calling thread the one whose waiting IsUrgentWaiting tells of (one thread at a
    /// time; a host calls it from its GUI thread before other threads share the engine).
    void MarkCallingThreadUrgent() {
        mUrgentThread.store(std::this_thread::get_id(), std::memory_order_relaxed);
    }
    /// True while the urgent thread waits for the lock; any thread may ask, at any time.
    bool IsUrgentWaiting() const { return mUrgentWaiting.load(std::memory_order_relaxed); }

private:
    std::recursive_mutex mMutex;
    std::atomic<std::thread::id> mUrgentThread{};
    std::atomic<bool> mUrgentWaiting{false};
};
