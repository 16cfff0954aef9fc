#pragma once

#include <chrono>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

class ProgressBar;

/// What `texture render` did: the files it wrote, the time each node took, its warnings and
/// errors. Warnings and errors go to the standard error as they come (each warning once); with
/// `json` the whole report goes to the standard output at the end as one JSON object instead
/// of the summary line. Thread-safe: images of a sweep may render at once.
class RenderReport {
public:
    struct File {
        std::string path;
        std::string node;    ///< the id of the node whose image it holds
        std::string format;  ///< the extension, lower case without the dot
        int width = 0;
        int height = 0;
        int bits = 0;
        std::string channels;     ///< RGBA, RGB, R or L
        std::string compression;  ///< as the image library names it; empty: the format's own
        unsigned long long bytes = 0;
        std::size_t index = 0;                      ///< the sweep combination, from 0
        std::map<std::string, std::string> values;  ///< "NODE.ATTR" -> value set or swept
    };

    explicit RenderReport(bool json) : mJson(json) {}

    /// Messages clear `bar` from the terminal before they print.
    void SetProgressBar(ProgressBar* bar);

    /// A line of the host's log, printed as the log would, below the progress bar.
    void LogLine(const char* prefix, const std::string& line);
    void Error(const std::string& message);
    /// Prints and keeps `message` unless the same message came before.
    void Warning(const std::string& message);
    /// A file written; its size is read from the disk.
    void Written(File file);
    /// One evaluation of a node took `ms` milliseconds.
    void NodeTime(const std::string& id, const std::string& type, double ms);
    /// The line the command prints on the standard output at the end without `json`.
    void SetSummary(const std::string& line);

    bool Json() const { return mJson; }
    std::size_t FileCount() const;
    /// The sizes of the files written, as "W x H, ..." ("none" for none).
    std::string SizeList() const;
    long long ElapsedMs() const;

    /// Prints the summary line, or the JSON report with `exitCode`.
    void Print(int exitCode) const;

private:
    struct NodeTimes {
        std::string type;
        unsigned evaluations = 0;
        double ms = 0.0;
    };

    void Say(const char* kind, const std::string& message);  // with mMutex held

    const bool mJson;
    const std::chrono::steady_clock::time_point mStart = std::chrono::steady_clock::now();
    mutable std::mutex mMutex;
    ProgressBar* mBar = nullptr;
    std::vector<File> mFiles;
    std::map<std::string, NodeTimes> mNodes;
    std::vector<std::string> mWarnings;
    std::set<std::string> mWarned;
    std::vector<std::string> mErrors;
    std::string mSummary;
};
