#include "noisepp/utils/Builder.h"

#include "noisepp/core/Exception.h"

namespace noisepp::utils {

void Builder::checkParameters() const {
    NOISEPP_REQUIRE(mDest != nullptr, "mDest");
    NOISEPP_REQUIRE(mWidth > 0, "mWidth");
    NOISEPP_REQUIRE(mHeight > 0, "mHeight");
}

}  // namespace noisepp::utils
