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
run gadget_dialog --shot "$OUT/gadget_dialog.ppm"
run mesh_normals "$OUT/mesh_normals.orv" "$OUT/mesh_normals.txt"
# A torus of 24 x 12 quads as Wavefront OBJ, imported, smoothed and saved.
awk 'BEGIN { pi = atan2(0, -1); n = 24; m = 12
  for (i = 0; i < n; i++) for (j = 0; j < m; j++) {
    u = 2 * pi * i / n; v = 2 * pi * j / m; r = 2 + 0.6 * cos(v)
    printf "v %.6f %.6f %.6f\n", r * cos(u), r * sin(u), 0.6 * sin(v) }
  for (i = 0; i < n; i++) for (j = 0; j < m; j++) {
    a = i * m + j; b = ((i + 1) % n) * m + j; c = ((i + 1) % n) * m + (j + 1) % m; d = i * m + (j + 1) % m
    printf "f %d %d %d %d\n", a + 1, b + 1, c + 1, d + 1 } }' >"$OUT/torus.obj"
run mesh_import "$OUT/torus.obj" "$OUT/mesh_import.orv" 40
run frames --shots "$OUT"
run scene_hello --shot "$OUT/scene_hello.ppm"
run theater_editor --script "$OUT"
topng
echo "screenshots:"; ls -1 "$OUT" 2>/dev/null || true
