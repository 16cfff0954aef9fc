#include "apps/texture/RenderReport.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <nlohmann/json.hpp>

#include "apps/texture/ProgressBar.h"

void RenderReport::SetProgressBar(ProgressBar* bar) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mBar = bar;
}

void RenderReport::Say(const char* kind, const std::string& message) {
    if (mBar != nullptr)
        mBar->Clear();
    std::cerr << kind << ": " << message << "\n";
}

void RenderReport::LogLine(const char* prefix, const std::string& line) {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mBar != nullptr)
        mBar->Clear();
    std::cerr << prefix << line << "\n";
}

void RenderReport::Error(const std::string& message) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mErrors.push_back(message);
    Say("error", message);
}

void RenderReport::Warning(const std::string& message) {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (!mWarned.insert(message).second)
        return;
    mWarnings.push_back(message);
    Say("warning", message);
}

void RenderReport::Written(File file) {
    std::error_code ignored;
    const auto bytes = std::filesystem::file_size(file.path, ignored);
    file.bytes = ignored ? 0 : bytes;
    const std::lock_guard<std::mutex> lock(mMutex);
    mFiles.push_back(std::move(file));
}

void RenderReport::NodeTime(const std::string& id, const std::string& type, double ms) {
    const std::lock_guard<std::mutex> lock(mMutex);
    NodeTimes& times = mNodes[id];
    times.type = type;
    ++times.evaluations;
    times.ms += ms;
}

void RenderReport::SetSummary(const std::string& line) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mSummary = line;
}

std::size_t RenderReport::FileCount() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    return mFiles.size();
}

std::string RenderReport::SizeList() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    std::set<std::pair<int, int>> sizes;
    for (const File& file : mFiles)
        sizes.insert({file.width, file.height});
    std::string list;
    for (const auto& [width, height] : sizes)
        list += (list.empty() ? "" : ", ") + std::to_string(width) + " x " + std::to_string(height);
    return list.empty() ? "none" : list;
}

long long RenderReport::ElapsedMs() const {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                 mStart)
        .count();
}

void RenderReport::Print(int exitCode) const {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (!mJson) {
        if (!mSummary.empty())
            std::cout << mSummary << "\n";
        return;
    }
    using nlohmann::json;
    // Files in sweep order whichever image finished first.
    std::vector<const File*> files;
    for (const File& file : mFiles)
        files.push_back(&file);
    std::stable_sort(files.begin(), files.end(),
                     [](const File* a, const File* b) { return a->index < b->index; });
    json report{{"exit_code", exitCode}, {"files", json::array()}, {"nodes", json::array()},
                {"warnings", mWarnings}, {"errors", mErrors},      {"ms", ElapsedMs()}};
    for (const File* file : files)
        report["files"].push_back({{"path", file->path},
                                   {"node", file->node},
                                   {"format", file->format},
                                   {"width", file->width},
                                   {"height", file->height},
                                   {"bits", file->bits},
                                   {"channels", file->channels},
                                   {"compression", file->compression},
                                   {"bytes", file->bytes},
                                   {"index", file->index},
                                   {"values", file->values}});
    for (const auto& [id, times] : mNodes)
        report["nodes"].push_back({{"id", id},
                                   {"type", times.type},
                                   {"evaluations", times.evaluations},
                                   {"ms", std::round(times.ms * 1000.0) / 1000.0}});
    std::cout << report.dump(2) << "\n";
}
