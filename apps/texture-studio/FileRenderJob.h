#pragma once

#include <atomic>
#include <string>
#include <thread>

#include "apps/texture-studio/WindowRender.h"

class Engine;
class Node;

/// Renders a node to an image file on a thread of its own (RenderToFile, default layout), so
/// that the window keeps painting meanwhile: it tells how far it has come and stops when
/// asked. The engine must be hooked (WindowRender::HookInto) for either.
class FileRenderJob : private WindowRender {
public:
    /// Starts at once. `engine` and `node` must outlive the job.
    FileRenderJob(Engine& engine, Node& node, std::string path);
    /// Stops the render if it still runs and waits for its thread.
    ~FileRenderJob();
    FileRenderJob(const FileRenderJob&) = delete;
    FileRenderJob& operator=(const FileRenderJob&) = delete;

    bool IsDone() const { return mDone.load(); }
    /// How far the render node has come, 0 to 100.
    int GetPercent() const { return mPercent.load(); }
    /// Asks the render to stop; the file is then not written (an old one stays).
    void Stop() { mStopWanted.store(true); }
    /// Once done: true when the file was written, otherwise false with the reason.
    bool Succeeded(std::string* error) const;

private:
    bool StopWanted() override { return mStopWanted.load(); }
    void Progressed(int done, int total) override;
    void Run(Engine& engine, Node& node, const std::string& path);

    std::atomic<bool> mStopWanted{false};
    std::atomic<bool> mDone{false};
    std::atomic<int> mPercent{0};
    bool mWritten = false;
    std::string mError;
    std::thread mThread;
};
