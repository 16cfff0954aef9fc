#!/usr/bin/env bash
# Renders every example document (examples/*.texture.json) to docs/gallery/<name>.png.
# Usage: scripts/render-examples.sh [TEXTURE_COMMAND]
# The command defaults to the release build's build/release/bin/texture (build it first with
# `cmake --preset release && cmake --build --preset release`). Stops at the first failure.
set -euo pipefail
cd "$(dirname "$0")/.."

texture=${1:-build/release/bin/texture}
if [[ ! -x "$texture" ]]; then
  echo "error: $texture not found; build the release tree first or pass the command's path" >&2
  exit 2
fi

mkdir -p docs/gallery
count=0
for document in examples/*.texture.json; do
  name=$(basename "$document" .texture.json)
  "$texture" render "$document" -q -o "docs/gallery/$name.png"
  count=$((count + 1))
done
echo "rendered $count examples to docs/gallery/"
