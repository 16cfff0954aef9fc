// Document text through the bounded reader alone: depth, numbers and malformed text.

#include <string>

#include "host/JsonReader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const nlohmann::json tree =
            JsonReader::Parse(std::string(reinterpret_cast<const char*>(data), size));
        (void)tree.dump();
    } catch (const JsonError&) {
    }
    return 0;
}
