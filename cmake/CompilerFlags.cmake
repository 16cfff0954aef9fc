# Warnings and floating-point rules shared by every target of the project.
#
# Strict floating point is not negotiable: a document must render to the same bits whatever
# the thread count, build type or instruction set, so no fused multiply-add contraction and
# no fast-math anywhere.
add_library(texture_flags INTERFACE)
add_library(Texture::flags ALIAS texture_flags)
target_compile_options(texture_flags INTERFACE
  -Wall -Wextra -Wpedantic
  -ffp-contract=off -fno-fast-math)
# g++ 12's straight-line vectorizer drops the rounding of a pair of doubles narrowed to float
# and widened again (as in `S{static_cast<float>(x), static_cast<float>(y)}` with double
# members) at -O2 and above, so an optimized build would sample other points than a debug one.
# Loops are still vectorized.
target_compile_options(texture_flags INTERFACE $<$<CXX_COMPILER_ID:GNU>:-fno-tree-slp-vectorize>)

if(TEXTURE_SANITIZE)
  target_compile_options(texture_flags INTERFACE -fsanitize=address,undefined -fno-omit-frame-pointer
                                                 -fno-sanitize-recover=undefined)
  target_link_options(texture_flags INTERFACE -fsanitize=address,undefined)
endif()
if(TEXTURE_TSAN)
  target_compile_options(texture_flags INTERFACE -fsanitize=thread -fno-omit-frame-pointer)
  target_link_options(texture_flags INTERFACE -fsanitize=thread)
endif()
if(TEXTURE_FUZZ)
  # Without stack-depth tracing: its counter lives in the fuzzer's runtime, which the plug-in,
  # linked with every symbol resolved, cannot refer to.
  target_compile_options(texture_flags INTERFACE -fsanitize=fuzzer-no-link,address,undefined
                                                 -fno-sanitize-coverage=stack-depth
                                                 -fno-omit-frame-pointer)
  # The shared runtime, so that the plug-in (linked with every symbol resolved) finds it.
  target_link_options(texture_flags INTERFACE -fsanitize=address,undefined -shared-libsan)
endif()
