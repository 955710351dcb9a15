#!/usr/bin/env bash
# The desktop host beside a peer on headless sway (layer-shell): the host
# with all five widgets placed and drawn, then Waybar with one custom module
# (our own `bar --follow` line), each measured alone after the same settling
# time. Prints "key value" lines for the benchmark report:
#
#   sway_host_rss_kb sway_host_anon_kb sway_host_pss_kb
#   waybar_rss_kb waybar_anon_kb waybar_pss_kb      (when waybar is installed)
#
#   bench/host/sway.sh BUILD_DIR
#
# Runs inside tests/host/desktop_session.sh (sway as an unprivileged user).
# Exit status 77 when sway or the session script cannot be used.
set -euo pipefail

build="$(readlink -f "${1:?usage: sway.sh BUILD_DIR}")"
here="$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")"
session="$here/../../tests/host/desktop_session.sh"
cli="$build/app/meterwick-widgets"
host="$build/app/host/meterwick-widget-host"

if [ -z "${MW_SWAY_SESSION:-}" ]; then
  command -v sway >/dev/null || { echo "sway.sh: sway is not installed" >&2; exit 77; }
  [ -x "$host" ] && [ -x "$cli" ] || { echo "sway.sh: build $build first" >&2; exit 1; }
  exec timeout -k 5 180 env MW_SWAY_SESSION=1 NO_AT_BRIDGE=1 "$session" sway "$(readlink -f "$0")" "$build"
fi

work="$MW_DESKTOP_DIR/bench"
mkdir -p "$work"
pid=""
trap '[ -n "$pid" ] && { kill "$pid" 2>/dev/null; wait "$pid" 2>/dev/null; }; true' EXIT
export METERWICK_CONTAINER="$work/demo/container"
"$cli" demo --output "$work/demo" >/dev/null
source "$here/five_widgets.sh"
place_five_widgets "$cli"

memory() {  # PREFIX: the figures of $pid
  echo "${1}_rss_kb $(awk '/^VmRSS/ {print $2}' "/proc/$pid/status")"
  echo "${1}_anon_kb $(awk '/^RssAnon/ {print $2}' "/proc/$pid/status")"
  echo "${1}_pss_kb $(awk '/^Pss:/ {print $2}' "/proc/$pid/smaps_rollup" 2>/dev/null || echo 0)"
}
stop() { kill "$pid"; wait "$pid" 2>/dev/null || true; pid=""; }

"$host" 2>"$work/host.log" &
pid=$!
shown() { [ "$(host_status 2>/dev/null | field widgets)" = 5 ]; }
for _ in $(seq 150); do
  shown && break
  sleep 0.1
done
shown ||
  { echo "sway.sh: the host did not show five widgets" >&2; cat "$work/host.log" >&2; exit 1; }
sleep 5  # the same settling time as Waybar gets
memory sway_host
stop

if command -v waybar >/dev/null; then
  mkdir -p "$work/waybar"
  cat >"$work/waybar/config" <<CONF
{
  "layer": "top", "position": "top", "height": 28,
  "modules-left": ["custom/meterwick"], "modules-center": [], "modules-right": [],
  "custom/meterwick": {"exec": "$cli bar --follow", "return-type": "json", "format": "{}"}
}
CONF
  printf '* { font-family: Inter; font-size: 13px; }\n' >"$work/waybar/style.css"
  waybar -c "$work/waybar/config" -s "$work/waybar/style.css" >"$work/waybar.log" 2>&1 &
  pid=$!
  sleep 5
  if kill -0 "$pid" 2>/dev/null; then
    memory waybar
  else
    echo "sway.sh: waybar did not start" >&2
    cat "$work/waybar.log" >&2
  fi
  [ -n "$pid" ] && stop
fi
