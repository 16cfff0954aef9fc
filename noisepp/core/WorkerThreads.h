#pragma once

#include <cstddef>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "noisepp/core/Exception.h"

namespace noisepp {

/// Starts `numberOfThreads` threads running `loop` into `threads` (0 throws ParamInvalidException).
/// When the system cannot start one, `stop` is called to end and join those already started
/// (no destructor runs for a half-built owner), and Exception says how far it got.
template <class Loop, class Stop>
void startWorkerThreads(std::vector<std::thread>& threads, std::size_t numberOfThreads, Loop loop,
                        Stop stop) {
    NOISEPP_REQUIRE(numberOfThreads > 0, "numberOfThreads");
    threads.reserve(numberOfThreads);
    try {
        for (std::size_t i = 0; i < numberOfThreads; ++i)
            threads.emplace_back(loop);
    } catch (const std::system_error& e) {
        stop();
        throw Exception("cannot start worker thread " + std::to_string(threads.size() + 1) +
                        " of " + std::to_string(numberOfThreads) + " (" + e.what() +
                        "); ask for fewer threads");
    }
}

}  // namespace noisepp
