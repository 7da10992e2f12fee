#!/usr/bin/env bash
# Installs what is missing, builds the library and the examples, and runs the gallery.
# With a DISPLAY the windows appear there; without one they run on a private Xvfb,
# drive themselves with synthetic input, and leave their screenshots in out/.
set -euo pipefail
cd "$(dirname "$0")/.."
ROOT=$PWD
bash scripts/deps.sh
cmake -S "$ROOT" -B "$ROOT/build/demo" -DCMAKE_BUILD_TYPE=Release -DORV_TESTS=OFF -DORV_EXAMPLES=ON >/dev/null
cmake --build "$ROOT/build/demo" -j "$(nproc)"
OUT="$ROOT/out"
mkdir -p "$OUT"
export ORVHOME="$ROOT" MESA_SHADER_CACHE_DISABLE=true
. scripts/xvfb.sh
if [ -z "${DISPLAY:-}" ]; then
  trap orv_xvfb_stop EXIT
  orv_xvfb_start
  echo "no DISPLAY: running on a private Xvfb at $DISPLAY; screenshots go to out/"
fi
BIN="$ROOT/build/demo"

# Turns every PPM an example wrote into a PNG a person can open.
topng() {
  for f in "$OUT"/*.ppm; do
    [ -e "$f" ] || continue
    pnmtopng "$f" >"${f%.ppm}.png" 2>/dev/null && rm -f "$f"
  done
}

run() {
  local name=$1; shift
  if [ -x "$BIN/$name" ]; then
    echo "== $name $*"
    timeout 60 "$BIN/$name" "$@" || echo "($name exited with $?)"
  fi
}

run containers
run geometry
run window --selftest "$OUT/window.ppm"
run drawing_sheet --shot "$OUT/drawing_sheet.ppm"
run stage_demo --shots "$OUT"
run editor --script "$OUT"
run frames --shots "$OUT"
topng
echo "screenshots:"; ls -1 "$OUT" 2>/dev/null || true
