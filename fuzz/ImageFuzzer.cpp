// Picture files through our reader; the first byte picks the format, the rest is the file.

#include <string>

#include "fuzz/FuzzInput.h"
#include "host/Image.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const char* const kExtensions[] = {".png", ".jpg", ".exr", ".tif",
                                              ".bmp", ".pgm", ".hdr", ".tga"};
    if (size == 0)
        return 0;
    const std::string path = fuzz::WriteInput(data + 1, size - 1, kExtensions[data[0] % 8]);
    std::string error;
    if (Image* image = Image::ReadFile(path, &error)) {
        image->AddRef();
        image->Release();
    }
    return 0;
}
