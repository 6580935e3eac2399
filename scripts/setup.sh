#!/usr/bin/env bash
# Installs the Debian packages that building, running and testing Tolvane
# need, skipping those already installed. Uses sudo when not root.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config git
  qt6-base-dev libqt6sql6-sqlite libsqlite3-dev qt6-declarative-dev qt6-serialport-dev qt6-speech-dev qt6-multimedia-dev
  qt6-speech-flite-plugin gstreamer1.0-plugins-base
  libgtest-dev libgmock-dev libbenchmark-dev nlohmann-json3-dev libsndfile1-dev libudev-dev libfontconfig-dev
  xvfb xauth fonts-dejavu-core clang-format clang libclang-rt-14-dev
  desktop-file-utils appstream
  libhamlib-utils qtkeychain-qt6-dev
  dbus-daemon dbus-bin at-spi2-core python3-dbus python3-gi
  orca speech-dispatcher xdotool
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then sudo_cmd=(sudo); fi
echo "Installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -q
"${sudo_cmd[@]}" apt-get install -y -q --no-install-recommends "${missing[@]}"
