#!/usr/bin/env bash
# Installs every Debian package the project builds, tests or runs with.
# apt-get runs only when something is missing; without root it prints the command instead.
set -euo pipefail

packages=(
  # toolchain
  build-essential g++ cmake ninja-build make pkg-config git
  clang lld libclang-rt-14-dev clang-format
  # tests and benchmarks
  libgtest-dev libgmock-dev libbenchmark-dev
  # libraries
  zlib1g-dev libminizip-dev nettle-dev libtinyxml2-dev rapidjson-dev libutfcpp-dev
  libglfw3-dev libfreetype-dev libstb-dev libimgui-dev libdw-dev
  # headless OpenGL: EGL on Mesa's software rasteriser
  libegl-dev libgl-dev libegl-mesa0 libgl1-mesa-dri
  # the OpenGL back end: its function loader, and the GLSL reference compiler its tests use
  libepoxy-dev glslang-tools
  # the default font packed into the core resource archive
  fonts-dejavu-core
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

[ ${#missing[@]} -eq 0 ] && exit 0

if [ "$(id -u)" -ne 0 ]; then
  echo "These Debian packages are missing: ${missing[*]}" >&2
  echo "Install them as root with:" >&2
  echo "  sudo apt-get update && sudo apt-get install -y --no-install-recommends ${missing[*]}" >&2
  exit 1
fi

export DEBIAN_FRONTEND=noninteractive
apt-get update
apt-get install -y --no-install-recommends "${missing[@]}"
