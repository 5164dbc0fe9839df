#!/usr/bin/env bash
# Installs every Debian package the project needs, when any is missing.
set -euo pipefail

# One list for the whole project: add a package here when new code needs it.
PACKAGES=(
  g++ make cmake pkg-config libgtest-dev
  libsdl1.2-compat-dev libgl-dev libglu1-mesa-dev libgl1-mesa-dri
  xvfb xauth xdotool
  zlib1g-dev libpng-dev libjpeg-dev libtiff-dev
  libfreetype-dev libftgl-dev fonts-dejavu-core
  libopenmpt-dev ffmpeg gnuplot-nox
  clang libclang-rt-14-dev
)

missing=()
for p in "${PACKAGES[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)
  [[ "$status" == "install ok installed" ]] || missing+=("$p")
done

if [[ ${#missing[@]} -eq 0 ]]; then
  exit 0
fi

line="apt-get install -y --no-install-recommends ${missing[*]}"
if [[ $(id -u) -ne 0 ]]; then
  echo "setup: these Debian packages are missing: ${missing[*]}" >&2
  echo "setup: install them as root with:" >&2
  echo "  apt-get update && $line" >&2
  exit 1
fi

echo "setup: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq
apt-get install -y -qq --no-install-recommends "${missing[@]}"
