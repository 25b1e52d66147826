#!/usr/bin/env bash
# Installs the Debian packages that building, testing, benchmarking and the demo need.
# Does nothing when every package is already there.
set -euo pipefail
packages=(
  cmake make g++ pkg-config
  openjdk-17-jdk
  libgtest-dev libbenchmark-dev
  junit5
  libx11-dev xvfb x11-utils
  libpixman-1-dev libosmesa6-dev
  uuid-dev lldb
  dpkg-dev file
)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
echo "installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
