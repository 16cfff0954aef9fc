#include "host/JsonReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

constexpr const char* kLimitText = "16 MiB";

[[noreturn]] void Fail(const std::string& message) {
    throw JsonError(message);
}

std::string Cause(int errorNumber) {
    switch (errorNumber) {
        case ENOENT:
            return "no such file";
        case EACCES:
        case EPERM:
            return "permission denied";
        default:
            return std::strerror(errorNumber);
    }
}

bool StartsNumber(char c) {
    return c == '-' || (c >= '0' && c <= '9');
}

bool InNumber(char c) {
    return StartsNumber(c) || c == '+' || c == '.' || c == 'e' || c == 'E';
}

// The parser builds its tree without recursion, but everything that walks the tree afterwards
// (copies, comparisons, messages) recurses; and it reports numbers beyond double range without
// a place. One pass over the text settles both with a line and column.
void CheckDepthAndNumbers(const std::string& text) {
    int depth = 0;
    bool inString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (inString) {
            if (c == '\\')
                ++i;
            else if (c == '"')
                inString = false;
        } else if (c == '"') {
            inString = true;
        } else if (c == '[' || c == '{') {
            if (++depth > JsonReader::kMaxDepth)
                Fail(JsonReader::Place(text, i) + ": nested deeper than " +
                     std::to_string(JsonReader::kMaxDepth) + " levels");
        } else if (c == ']' || c == '}') {
            --depth;
        } else if (StartsNumber(c)) {
            std::size_t end = i;
            while (end < text.size() && InNumber(text[end]))
                ++end;
            const std::string number = text.substr(i, end - i);
            if (std::isinf(std::strtod(number.c_str(), nullptr)))
                Fail(JsonReader::Place(text, i) + ": the number " + number +
                     " is beyond the range of a double");
            i = end - 1;
        }
    }
}

}  // namespace

std::string JsonReader::Place(const std::string& text, std::size_t offset) {
    std::size_t line = 1;
    std::size_t column = 1;
    for (std::size_t i = 0; i < offset && i < text.size(); ++i) {
        if (text[i] == '\n') {
            ++line;
            column = 1;
        } else {
            ++column;
        }
    }
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

std::string JsonReader::ReadFile(const std::string& path) {
    // Non-blocking, so that opening a pipe without a writer returns at once; it is refused
    // below with every other file that is not regular.
    const int descriptor = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        Fail("cannot open the file: " + Cause(errno));
    struct Closer {
        int descriptor;
        ~Closer() { close(descriptor); }
    } closer{descriptor};
    struct stat status {};
    if (fstat(descriptor, &status) != 0)
        Fail("cannot read the file: " + Cause(errno));
    if (!S_ISREG(status.st_mode))
        Fail("not a regular file (a folder, device or pipe)");
    std::string text;
    char buffer[1 << 16];
    while (true) {
        const ssize_t count = read(descriptor, buffer, sizeof buffer);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            Fail("cannot read the file: " + Cause(errno));
        if (count == 0)
            return text;
        // Checked while reading: a file can grow after its size was looked at.
        if (text.size() + static_cast<std::size_t>(count) > kMaxBytes)
            Fail(std::string("the file is larger than the limit of ") + kLimitText +
                 " for a document");
        text.append(buffer, static_cast<std::size_t>(count));
    }
}

nlohmann::json JsonReader::Parse(const std::string& text) {
    CheckDepthAndNumbers(text);
    try {
        return nlohmann::json::parse(text);
    } catch (const nlohmann::json::parse_error& e) {
        std::string reason = e.what();
        if (const std::size_t colon = reason.rfind(": "); colon != std::string::npos)
            reason = reason.substr(colon + 2);
        // The parser counts the byte after the offending one.
        Fail(Place(text, e.byte > 0 ? e.byte - 1 : 0) + ": malformed JSON: " + reason);
    } catch (const nlohmann::json::exception& e) {
        std::string reason = e.what();
        if (const std::size_t bracket = reason.find("] "); bracket != std::string::npos)
            reason = reason.substr(bracket + 2);
        Fail("malformed JSON: " + reason);
    }
}
