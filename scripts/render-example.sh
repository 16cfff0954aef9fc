#!/usr/bin/env bash
# Sets everything up, builds the release tree and renders the default example document.
# Usage: scripts/render-example.sh [DOCUMENT] [OUTPUT]
set -euo pipefail
cd "$(dirname "$0")/.."

doc=${1:-examples/default.texture.json}
out=${2:-default.png}

bash scripts/install-deps.sh
cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)"
./build/release/bin/texture render "$doc" -o "$out"
echo "wrote $out"
