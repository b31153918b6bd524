#!/usr/bin/env bash
# Installs the Debian packages that building, running and testing need, when
# any of them is missing. Shared by tools/run.sh and tools/test.sh.
set -eu
packages=(cmake ninja-build g++ clang python3 g++-mingw-w64-x86-64-posix wine wine64 xvfb socat
          xdotool imagemagick fonts-wine proj-bin nsis)
missing=()
for p in "${packages[@]}"; do
  dpkg -s "$p" >/dev/null 2>&1 || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  sudo_cmd=""
  if [ "$(id -u)" != 0 ]; then sudo_cmd="sudo"; fi
  $sudo_cmd apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y -qq "${missing[@]}" >/dev/null
fi
