#!/bin/bash
# Wall time and peak resident memory of a large windowed render against a one-piece render of
# 4096 x 4096, per pixel. Not a test: the numbers go to docs/performance.md.
#
#   bench/large-render.sh [SIDE] [BUILD]     SIDE defaults to 32768, BUILD to build/release
#
# Needs /usr/bin/time (Debian package time) and room for the output: about 8 bytes a pixel
# (half-float RGBA before compression), 8.6 GB at 32768.
set -euo pipefail
side=${1:-32768}
build=${2:-build/release}
texture="$build/bin/texture"
document="$(dirname "$0")/../examples/hello-perlin.texture.json"  # Perlin, 5 octaves
out=$(mktemp -d "${TMPDIR:-/tmp}/large-render.XXXXXX")
trap 'rm -rf "$out"' EXIT

need=$((side * side * 8 / 1024))  # KiB
free=$(df --output=avail -k "$out" | tail -1)
if ((free < need)); then
    echo "not enough room in $out: $((need / 1048576)) GiB wanted, $((free / 1048576)) GiB free" >&2
    exit 1
fi

# Runs the command under /usr/bin/time and prints pixels, seconds, ns/pixel and peak RSS.
measure() {
    local label=$1 pixels=$2
    shift 2
    /usr/bin/time -f "%e %M" -o "$out/time" "$texture" render "$document" -q "$@" >/dev/null
    read -r seconds kib <"$out/time"
    awk -v l="$label" -v p="$pixels" -v s="$seconds" -v k="$kib" 'BEGIN {
        printf "%-28s %6.1f s  %7.2f ns/pixel  peak RSS %6.0f MiB\n", l, s, s * 1e9 / p, k / 1024 }'
}

measure "4096^2 one piece (EXR half)" $((4096 * 4096)) -o "$out/small.exr" --bits 16 \
    --size 4096x4096
measure "${side}^2 windows (EXR half)" $((side * side)) -o "$out/large.exr" --bits 16 \
    --size "${side}x${side}" --max-size "$side"
ls -l "$out/large.exr" | awk '{ printf "output file: %.2f GiB\n", $5 / 1073741824 }'
