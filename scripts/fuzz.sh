#!/usr/bin/env bash
# Builds the libFuzzer targets with clang and the address and undefined-behaviour sanitizers,
# then runs each one for a bounded time on a seed corpus made from the examples. Any crash,
# hang (over 10 s for one input) or sanitizer report fails the run; the input that caused it
# is left in build/fuzz/ as crash-*, timeout-* or leak-*.
#
#   scripts/fuzz.sh            about a minute in all (12 s per target)
#   FUZZ_SECONDS=120 scripts/fuzz.sh   longer per target
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh fuzz
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --target Texture fuzz_document fuzz_json fuzz_value_codec fuzz_image \
  fuzz_mesh

# Everything links clang's shared sanitizer runtime (see cmake/CompilerFlags.cmake).
runtime=$(dirname "$(clang++-14 -print-file-name=libclang_rt.asan-x86_64.so)")
export LD_LIBRARY_PATH="$runtime${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}"
export ASAN_OPTIONS="verify_asan_link_order=0${ASAN_OPTIONS:+:$ASAN_OPTIONS}"
seconds=${FUZZ_SECONDS:-12}
bin=build/fuzz/bin
corpus=build/fuzz/corpus
seeds=build/fuzz/seeds
rm -rf "$seeds"
mkdir -p "$seeds"/{document,image,mesh}
cp examples/*.texture.json "$seeds/document/"
# The image and mesh fuzzers take the format from the first byte (see fuzz/*Fuzzer.cpp).
for image in examples/images/*.png; do
  { printf '\000'; cat "$image"; } >"$seeds/image/$(basename "$image")"
done
for model in host/models/*.obj; do
  { printf '\000'; cat "$model"; } >"$seeds/mesh/$(basename "$model")"
done

run() {
  local target=$1 seed=$2
  shift 2
  mkdir -p "$corpus/$target"
  echo "fuzz: $target for ${seconds}s"
  (cd build/fuzz && "../../$bin/$target" -max_total_time="$seconds" -timeout=10 \
     -rss_limit_mb=4096 -print_final_stats=1 "$@" "../../$corpus/$target" "../../$seed")
}
run fuzz_document "$seeds/document"
run fuzz_json "$seeds/document"
run fuzz_value_codec "$seeds/document"
# The image and mesh libraries keep a few bytes per reader they have opened, reported as leaks
# without a frame of ours; leaks are not looked for there (crashes and undefined behaviour are).
ASAN_OPTIONS="$ASAN_OPTIONS:detect_leaks=0" run fuzz_image "$seeds/image"
ASAN_OPTIONS="$ASAN_OPTIONS:detect_leaks=0" run fuzz_mesh "$seeds/mesh"
echo "fuzz: no crash"
