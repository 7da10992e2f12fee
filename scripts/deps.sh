#!/usr/bin/env bash
# Installs, with apt-get, only the Debian packages that are missing.
set -euo pipefail
PKGS="g++ make cmake pkg-config libx11-dev libxext-dev libxtst-dev libgl-dev libglu1-mesa-dev
libgtest-dev libbenchmark-dev xvfb xauth x11-utils x11-apps x11-xserver-utils mesa-utils
libgl1-mesa-dri xdotool xfonts-base xfonts-75dpi ghostscript netpbm imagemagick xpmutils
clang-format libassimp-dev"
missing=()
for p in $PKGS; do
  [ "$(dpkg-query -W -f='${db:Status-Status}' "$p" 2>/dev/null)" = installed ] || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "installing: ${missing[*]}"
  SUDO=""; [ "$(id -u)" -ne 0 ] && SUDO=sudo
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -qq
  $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi
