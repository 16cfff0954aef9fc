#!/bin/bash
# Whole-command wall and processor time, peak resident memory and file size of `texture render` writing the
# default example at SIDE x SIDE (--size: in one window up to 4096, EXR in tiles of 256) to 8-bit
# PNG, 16-bit PNG, half EXR and float EXR at each --compression, median of RUNS runs each, with the Render 2D node's own
# "Render image" time of the same runs (rendering overlaps writing, so it is not the render
# alone: bench_render_file measures that). Then `oiiotool` writing the same pixels with the same
# compression, read from an uncompressed float EXR, for comparison: its times less those of
# reading alone. On a shared machine the processor time is the steadier figure. Not a test: the numbers go to docs/performance.md.
#
#   bench/render-to-file.sh [SIDE] [RUNS] [THREADS] [BUILD] [COMPRESSIONS]
#       defaults 4096, 5, 2, build/release, "none fast small"
#
# Needs /usr/bin/time (Debian package time); the comparison needs oiiotool (openimageio-tools).
set -euo pipefail
side=${1:-4096}
runs=${2:-5}
threads=${3:-2}
build=${4:-build/release}
compressions=${5:-none fast small}
texture="$build/bin/texture"
document="$(dirname "$0")/../examples/default.texture.json"
out=$(mktemp -d "${TMPDIR:-/tmp}/render-to-file.XXXXXX")
trap 'rm -rf "$out"' EXIT

median() { sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }
# The median wall and processor times of RUNS runs of the command after it, in seconds.
times() {
    : >"$out/wall" && : >"$out/cpu"
    for ((i = 0; i < runs; i++)); do
        /usr/bin/time -f "%e %U %S" -o "$out/time" "$@" >"$out/log" 2>&1
        read -r seconds user system <"$out/time"
        echo "$seconds" >>"$out/wall"
        echo "$user + $system" | bc >>"$out/cpu"
    done
    echo "$(median <"$out/wall") $(median <"$out/cpu")"
}

echo "load: $(cut -d' ' -f1-3 /proc/loadavg), ${side}x${side}, $threads threads, median of $runs"
printf '%-8s %-12s %-9s %8s %8s %14s %9s %10s\n' output compression stored wall_s cpu_s \
    render_image_s peak_MiB file_MiB
for spec in png:8 png:16 exr:16 exr:32; do
    extension=${spec%%:*} bits=${spec##*:}
    for compression in $compressions; do
        : >"$out/wall" && : >"$out/cpu" && : >"$out/render" && : >"$out/peak"
        for ((i = 0; i < runs; i++)); do
            /usr/bin/time -f "%e %U %S %M" -o "$out/time" "$texture" render "$document" \
                --size "${side}x${side}" --threads "$threads" --bits "$bits" \
                --compression "$compression" -o "$out/image.$extension" --json \
                >"$out/report" 2>"$out/log"
            read -r seconds user system kib <"$out/time"
            echo "$seconds" >>"$out/wall"
            echo "$user + $system" | bc >>"$out/cpu"
            echo $((kib / 1024)) >>"$out/peak"
            sed -n 's/.*Render image: \([0-9]*\) ms.*/\1/p' "$out/log" |
                awk '{ print $1 / 1000 }' >>"$out/render"
        done
        stored=$(sed -n 's/.*"compression": "\(.*\)".*/\1/p' "$out/report")
        printf '%-8s %-12s %-9s %8s %8.2f %14s %9s %10.1f\n' "$extension-$bits" "$compression" \
            "$stored" "$(median <"$out/wall")" "$(median <"$out/cpu")" "$(median <"$out/render")" \
            "$(median <"$out/peak")" \
            "$(stat -c %s "$out/image.$extension" | awk '{ print $1 / 1048576 }')"
    done
done

command -v oiiotool >/dev/null || exit 0
"$texture" render "$document" --size "${side}x${side}" --compression none -o "$out/raw.exr" -q >/dev/null
oiio=(oiiotool --threads "$threads")
read -r readingWall readingCpu <<<"$(times "${oiio[@]}" "$out/raw.exr" --stats)"
echo "oiiotool, the same pixels (less reading alone: ${readingWall} s wall, ${readingCpu} s cpu):"
# PNG rows are filtered as `texture` does ("up"); EXR in tiles of 256 as --size writes them.
for job in "png:8:zip:0" "png:8:zip:1" "png:8:zip:9" "png:16:zip:1" "png:16:zip:9" \
    "exr:16:none" "exr:16:piz" "exr:16:zip:9" "exr:32:none" "exr:32:piz" "exr:32:zip:4"; do
    IFS=: read -r extension bits method level <<<"$job"
    if [[ $extension == png ]]; then
        type=$([[ $bits == 8 ]] && echo uint8 || echo uint16)
        settings=(-d "$type" --attrib png:compressionLevel "$level" --attrib png:filter 32)
    else
        type=$([[ $bits == 16 ]] && echo half || echo float)
        settings=(-d "$type" --tile 256 256 --compression "$method${level:+:$level}")
    fi
    read -r seconds cpu <<<"$(times "${oiio[@]}" "$out/raw.exr" "${settings[@]}" \
        -o "$out/oiio.$extension")"
    printf '%-8s %-12s %8.2f %8.2f %10.1f\n' "$extension-$bits" "$method${level:+:$level}" \
        "$(echo "$seconds - $readingWall" | bc)" "$(echo "$cpu - $readingCpu" | bc)" \
        "$(stat -c %s "$out/oiio.$extension" | awk '{ print $1 / 1048576 }')"
done
