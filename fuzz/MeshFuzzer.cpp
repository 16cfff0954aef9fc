// Model files through the scene loader; the first byte picks the format, the rest is the file.

#include <stdexcept>
#include <string>

#include "fuzz/FuzzInput.h"
#include "host/SceneLoader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const char* const kExtensions[] = {".obj", ".ply", ".gltf", ".stl"};
    if (size == 0)
        return 0;
    const std::string path = fuzz::WriteInput(data + 1, size - 1, kExtensions[data[0] % 4]);
    try {
        SceneLoader::Load(path);
    } catch (const std::runtime_error&) {
    }
    SceneLoader::ClearCache();
    return 0;
}
