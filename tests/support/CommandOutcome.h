#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tests/support/TextureCommand.h"

namespace testsupport {

/// Whether a command exited with `exitCode` and said `says`: on its standard output when it
/// succeeded, on its standard error otherwise. A failure shows both streams.
inline testing::AssertionResult Outcome(const CommandResult& result, int exitCode,
                                        const std::string& says) {
    const std::string& said = exitCode == 0 ? result.out : result.err;
    if (result.exitCode == exitCode && said.find(says) != std::string::npos)
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << "exit " << result.exitCode << " (expected " << exitCode << "), expected to say '"
           << says << "'\nstdout: " << result.out << "\nstderr: " << result.err;
}

}  // namespace testsupport
