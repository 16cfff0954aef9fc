#!/usr/bin/env bash
# Sets everything up and runs every test: the release build and the sanitizer build
# (address and undefined behaviour), then the fuzzers for about a minute (scripts/fuzz.sh,
# which installs clang for them). Pass "release" or "sanitize" to run just one of them,
# "fuzz" for the fuzzers alone, or "tsan" for the threaded suites under the thread sanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh

presets=("${@:-release sanitize fuzz}")
# shellcheck disable=SC2206
presets=(${presets[*]})
jobs=$(nproc)

# Qt is not built with the thread sanitizer, so its own locks look like races to it: only the
# suites of the engine, the host and the render nodes run under it.
tsan_suites=(noisepp_core_tests noisepp_fractal_tests noisepp_line_tests noisepp_cellular_tests
             noisepp_modifier_tests host_tests uv_scene_tests render_node_tests)

for preset in "${presets[@]}"; do
  if [[ $preset == fuzz ]]; then
    echo "== fuzz: build, run"
    bash scripts/fuzz.sh
    continue
  fi
  echo "== $preset: configure, build, test"
  cmake --preset "$preset" >/dev/null
  if [[ $preset == tsan ]]; then
    cmake --build --preset tsan -j "$jobs" --target "${tsan_suites[@]}"
    for suite in "${tsan_suites[@]}"; do
      TSAN_OPTIONS="halt_on_error=1" "build/tsan/bin/$suite" --gtest_brief=1
    done
    continue
  fi
  cmake --build --preset "$preset" -j "$jobs"
  ctest --preset "$preset" -j "$jobs"
done
