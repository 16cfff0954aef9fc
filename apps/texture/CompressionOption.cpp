#include "apps/texture/CompressionOption.h"

#include <string>

CLI::Option* AddCompressionOption(CLI::App& command, FileCompression& compression) {
    return command
        .add_option_function<std::string>(
            "--compression",
            [&compression](const std::string& given) {
                if (!FileCompression::Parse(given, &compression))
                    throw CLI::ValidationError(
                        "--compression",
                        "expects 0 to 9, none, fast or small, not '" + given + "'");
            },
            "lossless, the pixels the same whatever is chosen: none, fast (the default: zip "
            "level 1, for PNG matching runs only; PIZ for EXR), small (zip level 9; PIZ for float "
            "EXR) or a zip level 0 (stored, as none) to 9")
        ->option_text("0-9|none|fast|small");
}
