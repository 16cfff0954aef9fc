// Graph documents through the whole loader: reading, parsing, node creation, attribute values
// and links, with the plug-in that ships beside the fuzzer.

#include <cstdio>
#include <cstdlib>

#include "fuzz/FuzzInput.h"
#include "host/Document.h"
#include "host/Engine.h"
#include "host/PluginLoader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static PluginLoader* catalogue = [] {
        auto* loader = new PluginLoader;
        std::string error;
        if (!loader->Load({}, &error)) {
            std::fprintf(stderr, "%s\n", error.c_str());
            std::abort();
        }
        return loader;
    }();
    Engine engine;
    Document document;
    std::string error;
    document.Load(fuzz::WriteInput(data, size, ".texture.json"), engine, *catalogue, &error);
    engine.Clear();
    return 0;
}
