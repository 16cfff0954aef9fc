#!/usr/bin/env bash
# Sets everything up and runs every test: the release build and the sanitizer build
# (address and undefined behaviour). Pass "release" or "sanitize" to run just one of them.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh

presets=("${@:-release sanitize}")
# shellcheck disable=SC2206
presets=(${presets[*]})
jobs=$(nproc)

for preset in "${presets[@]}"; do
  echo "== $preset: configure, build, test"
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" -j "$jobs"
  ctest --preset "$preset" -j "$jobs"
done
