#!/usr/bin/env bash
# Installs the Debian 12 packages the project builds and tests with. Only the missing ones are
# installed, so running it twice is cheap and safe. Needs root (or sudo) when something is missing.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config git
  libgtest-dev libgmock-dev libbenchmark-dev
  qt6-base-dev qt6-base-dev-tools libgl-dev libqt6opengl6-dev
  libboost-thread-dev libboost-system-dev
  libopenimageio-dev openimageio-tools zlib1g-dev
  libassimp-dev
  nlohmann-json3-dev libcli11-dev
  libhwy-dev
  pybind11-dev python3-numpy python3-pytest python3-dask python3-distributed
)
# The fuzz run (scripts/fuzz.sh) builds with clang and its libFuzzer runtime.
if [ "${1:-}" = "fuzz" ]; then
  packages+=(clang-14 libclang-rt-14-dev)
fi

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  echo "install-deps: all ${#packages[@]} packages present"
  exit 0
fi

echo "install-deps: installing ${missing[*]}"
sudo=""
if [ "$(id -u)" -ne 0 ]; then sudo="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
