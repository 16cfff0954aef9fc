#include "host/ImageLibraryError.h"

#include <OpenImageIO/imageio.h>

std::string ImageLibraryError(const std::string& objectError) {
    const std::string global = OIIO::geterror();
    std::string text = !objectError.empty() ? objectError : global;
    while (!text.empty() && (text.back() == '\n' || text.back() == ' '))
        text.pop_back();
    return text.empty() ? std::string("unknown error") : text;
}
