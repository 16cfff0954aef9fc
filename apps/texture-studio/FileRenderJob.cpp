#include "apps/texture-studio/FileRenderJob.h"

#include "apps/common/RenderToFile.h"
#include "host/FileLayout.h"

FileRenderJob::FileRenderJob(Engine& engine, Node& node, std::string path)
    : mThread([this, &engine, &node, path = std::move(path)] { Run(engine, node, path); }) {}

FileRenderJob::~FileRenderJob() {
    Stop();
    mThread.join();
}

bool FileRenderJob::Succeeded(std::string* error) const {
    if (!mWritten && error != nullptr)
        *error = mError;
    return mWritten;
}

void FileRenderJob::Progressed(int done, int total) {
    if (total > 0)
        mPercent.store(static_cast<int>(100LL * done / total));
}

void FileRenderJob::Run(Engine& engine, Node& node, const std::string& path) {
    const Scope scope(*this);
    mWritten = RenderToFile(engine).Render(node, path, FileLayout(), &mError);
    if (!mWritten && mStopWanted.load())
        mError = "the render was stopped; " + path + " was not written";
    mDone.store(true);
}
