#pragma once

#include <stdexcept>
#include <string>

namespace noisepp {

/// Base of every failure the noise engine reports. Carries one message, returned by what().
class Exception : public std::exception {
public:
    explicit Exception(std::string message) : mMessage(std::move(message)) {}
    const char* what() const noexcept override { return mMessage.c_str(); }

private:
    std::string mMessage;
};

/// A module was compiled while one of its source positions was empty.
class NoModuleException : public Exception {
public:
    explicit NoModuleException(const std::string& function)
        : Exception("source module is not set in '" + function + "'") {}
};

/// An index (source position, element id) lies outside its container.
class OutOfRangeException : public Exception {
public:
    OutOfRangeException(const std::string& parameter, const std::string& function)
        : Exception("parameter '" + parameter + "' is out of range in '" + function + "'") {}
};

/// A parameter broke a precondition. The detail names the failed condition; an empty detail
/// ends the message after the function.
class ParamInvalidException : public Exception {
public:
    ParamInvalidException(const std::string& parameter, const std::string& function,
                          const std::string& detail = {})
        : Exception("invalid parameter for '" + parameter + "' in '" + function + "'" +
                    (detail.empty() ? std::string() : ": " + detail)) {}
};

/// A stream could not transfer the bytes asked of it (end of data, file error).
class StreamException : public Exception {
public:
    explicit StreamException(const std::string& what) : Exception(what) {}
};

/// A build stopped early because its callback asked it to; the destination is incomplete.
class BuildStoppedException : public Exception {
public:
    BuildStoppedException() : Exception("the build was stopped before it finished") {}
};

}  // namespace noisepp

/// The full signature of the enclosing operation, as the compiler spells it; the engine's
/// messages name the throwing operation with it.
#define NOISEPP_FUNCTION __PRETTY_FUNCTION__

/// Checks a precondition at the top of an operation and reports it as a ParamInvalidException
/// for `parameter` with the detail "assertion '<condition>' failed".
#define NOISEPP_REQUIRE(condition, parameter)                                       \
    do {                                                                            \
        if (!(condition))                                                           \
            throw ::noisepp::ParamInvalidException(parameter, NOISEPP_FUNCTION,     \
                                                   "assertion '" #condition "' failed"); \
    } while (false)
