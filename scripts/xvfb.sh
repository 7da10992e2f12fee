# Sourced: starts a private Xvfb on a free display and sets DISPLAY.
# Screen 0 is 24-bit with GLX, screen 1 is 8-bit PseudoColor. Stop with orv_xvfb_stop.
# -noreset: without it the server resets whenever its last client leaves, and a
# client that connects during the reset (the next test process) is refused.
orv_xvfb_start() {
  local fifo fp
  fp=/usr/share/fonts/X11/misc,/usr/share/fonts/X11/75dpi/:unscaled,/usr/share/fonts/X11/100dpi/:unscaled,built-ins
  fifo=$(mktemp -u /tmp/orv-xvfb.XXXXXX)
  mkfifo "$fifo"
  Xvfb -displayfd 3 -screen 0 1280x1024x24 -screen 1 1280x1024x8 -nolisten tcp -noreset \
       -fp "$fp" 3>"$fifo" >/dev/null 2>&1 &
  ORV_XVFB_PID=$!
  local num
  read -r -t 20 num <"$fifo" || { echo "Xvfb did not start" >&2; rm -f "$fifo"; return 1; }
  rm -f "$fifo"
  export DISPLAY=":$num.0"
  export ORV_TEST_DISPLAY8=":$num.1"
}
orv_xvfb_stop() {
  if [ -n "${ORV_XVFB_PID:-}" ]; then
    kill "$ORV_XVFB_PID" 2>/dev/null || true
    wait "$ORV_XVFB_PID" 2>/dev/null || true
    ORV_XVFB_PID=""
  fi
}
