#!/bin/bash
# Whole-command wall time and peak resident memory of `texture render` writing the default
# example at SIDE x SIDE to PNG, float EXR and 16-bit PNG, median of RUNS runs each, with the
# Render 2D node's own "Render image" time of the same runs (rendering overlaps writing, so it
# is not the render alone: bench_render_file measures that). Not a test: the numbers go to
# docs/performance.md.
#
#   bench/render-to-file.sh [SIDE] [RUNS] [THREADS] [BUILD]    defaults 4096, 5, 2, build/release
#
# Needs /usr/bin/time (Debian package time).
set -euo pipefail
side=${1:-4096}
runs=${2:-5}
threads=${3:-2}
build=${4:-build/release}
texture="$build/bin/texture"
document="$(dirname "$0")/../examples/default.texture.json"
out=$(mktemp -d "${TMPDIR:-/tmp}/render-to-file.XXXXXX")
trap 'rm -rf "$out"' EXIT

median() { sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

echo "load: $(cut -d' ' -f1-3 /proc/loadavg), ${side}x${side}, $threads threads, median of $runs"
printf '%-10s %10s %14s %10s %12s\n' output wall_s render_image_s peak_MiB file_MiB
for spec in png:8 exr:32 png:16; do
    extension=${spec%%:*} bits=${spec##*:}
    bitsOption=()
    [[ $extension == png ]] && bitsOption=(--bits "$bits")
    : >"$out/wall" && : >"$out/render" && : >"$out/peak"
    for ((i = 0; i < runs; i++)); do
        /usr/bin/time -f "%e %M" -o "$out/time" "$texture" render "$document" \
            --size "${side}x${side}" --threads "$threads" "${bitsOption[@]}" \
            -o "$out/image.$extension" >"$out/log" 2>&1
        read -r seconds kib <"$out/time"
        echo "$seconds" >>"$out/wall"
        echo $((kib / 1024)) >>"$out/peak"
        sed -n 's/.*Render image: \([0-9]*\) ms.*/\1/p' "$out/log" |
            awk '{ print $1 / 1000 }' >>"$out/render"
    done
    printf '%-10s %10s %14s %10s %12s\n' "$extension-$bits" "$(median <"$out/wall")" \
        "$(median <"$out/render")" "$(median <"$out/peak")" \
        "$(($(stat -c %s "$out/image.$extension") / 1048576))"
done
