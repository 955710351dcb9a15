#!/usr/bin/env bash
# Resident memory of the desktop host with all five widgets placed and drawn,
# its timer wake-ups over a short idle stretch, and the same memory figures for
# a minimal GTK program with five windows (bench/floor/gtk_windows.cpp), on
# one virtual X server with a private session bus. Prints "key value" lines
# for the benchmark report:
#
#   host_rss_kb host_hwm_kb host_anon_kb host_file_kb host_pss_kb
#   idle_seconds timer_wakeups file_wakeups timeline_builds idle_cpu_ms idle_switches
#   floor_rss_kb floor_hwm_kb floor_anon_kb floor_file_kb   (when the floor is built)
#   gtkc_… and xlib_… (the same, plus pss_kb, for the other two floors)
#   conky_rss_kb conky_anon_kb conky_pss_kb conky_switches   (when conky is installed)
#
#   bench/host/rss.sh BUILD_DIR [IDLE_SECONDS]     (default idle: 5)
#
# METERWICK_CONTAINER, when set to a directory, is the container the widgets
# read (it should hold a fresh payload); otherwise `demo` writes one.
# MW_RSS_NO_FLOOR=1 leaves the floor out; MW_RSS_SMAPS=FILE keeps a copy of
# the host's /proc/PID/smaps, to see what its memory is. Exit status 77 when xvfb-run or
# dbus-run-session is missing.
set -euo pipefail

build="${1:?usage: rss.sh BUILD_DIR [IDLE_SECONDS]}"
idle="${2:-5}"
cli="$build/app/meterwick-widgets"
host="$build/app/host/meterwick-widget-host"
floor="$build/bench/floor/mw_floor_gtk"
for tool in xvfb-run dbus-run-session gdbus; do
  command -v "$tool" >/dev/null || { echo "rss.sh: $tool is not installed" >&2; exit 77; }
done
[ -x "$host" ] && [ -x "$cli" ] || { echo "rss.sh: build $build first" >&2; exit 1; }

if [ -z "${MW_RSS_SESSION:-}" ]; then
  exec timeout -k 5 $((2 * idle + 120)) xvfb-run -a -s '-screen 0 1920x1200x24' \
    dbus-run-session -- env MW_RSS_SESSION=1 NO_AT_BRIDGE=1 "$0" "$build" "$idle"
fi

work="$(mktemp -d)"
pid=""
trap '[ -n "$pid" ] && { kill "$pid" 2>/dev/null; wait "$pid" 2>/dev/null; }; rm -rf "$work"' EXIT
export XDG_CONFIG_HOME="$work/config"
if [ -z "${METERWICK_CONTAINER:-}" ] || [ ! -d "$METERWICK_CONTAINER" ]; then
  export METERWICK_CONTAINER="$work/demo/container"
  "$cli" demo --output "$work/demo" >/dev/null
fi
source "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/five_widgets.sh"
place_five_widgets "$cli"

"$host" 2>"$work/host.log" &
pid=$!
status() { host_status; }
for _ in $(seq 150); do
  [ "$(status 2>/dev/null | field widgets)" = 5 ] && break
  sleep 0.1
done
[ "$(status 2>/dev/null | field widgets)" = 5 ] || { echo "rss.sh: the host did not show five widgets" >&2; cat "$work/host.log" >&2; exit 1; }
sleep 2  # let the first frames settle

ticks() { awk '{print $14 + $15}' "/proc/$pid/stat"; }
switches() { awk '/^voluntary_ctxt_switches/ {print $2}' "/proc/$pid/status"; }
before="$(status)" ticks_before="$(ticks)" switches_before="$(switches)"
sleep "$idle"
after="$(status)" ticks_after="$(ticks)" switches_after="$(switches)"
grown() { echo $(( $(echo "$after" | field "$1") - $(echo "$before" | field "$1") )); }
echo "host_rss_kb $(awk '/^VmRSS/ {print $2}' "/proc/$pid/status")"
echo "host_hwm_kb $(awk '/^VmHWM/ {print $2}' "/proc/$pid/status")"
echo "host_anon_kb $(awk '/^RssAnon/ {print $2}' "/proc/$pid/status")"
echo "host_file_kb $(awk '/^RssFile/ {print $2}' "/proc/$pid/status")"
echo "host_pss_kb $(awk '/^Pss:/ {print $2}' "/proc/$pid/smaps_rollup" 2>/dev/null || echo 0)"
[ -n "${MW_RSS_SMAPS:-}" ] && cp "/proc/$pid/smaps" "$MW_RSS_SMAPS"
echo "idle_seconds $idle"
echo "timer_wakeups $(grown timerWakeUps)"
echo "file_wakeups $(grown fileWakeUps)"
echo "timeline_builds $(grown timelineBuilds)"
echo "idle_cpu_ms $(( (ticks_after - ticks_before) * 1000 / $(getconf CLK_TCK) ))"
echo "idle_switches $((switches_after - switches_before))"
kill "$pid"; wait "$pid" 2>/dev/null || true; pid=""

# The floors run alone on the same display, after the host has gone: the
# gtkmm program, the same on GTK's C API, and Xlib + Cairo + Pango.
if [ -z "${MW_RSS_NO_FLOOR:-}" ]; then
  [ -x "$floor" ] && "$floor" | sed 's/^/floor_/'
  [ -x "$build/bench/floor/mw_floor_gtk_c" ] && "$build/bench/floor/mw_floor_gtk_c" | sed 's/^/gtkc_/'
  [ -x "$build/bench/floor/mw_floor_xlib" ] && "$build/bench/floor/mw_floor_xlib" | sed 's/^/xlib_/'
fi

# A peer: Conky drawing text and bars in its own desktop window, updated every
# second, measured like the host after the same idle stretch. Its wake-ups
# are counted as context switches (it has no counters of its own); the
# host's switches over the same stretch are idle_switches above.
if command -v conky >/dev/null && [ -z "${MW_RSS_NO_PEERS:-}" ]; then
  cat >"$work/conky.conf" <<'CONF'
conky.config = {
  out_to_x = true, own_window = true, own_window_type = 'desktop', double_buffer = true,
  update_interval = 1, use_xft = true, font = 'Inter:size=9', minimum_width = 364, minimum_height = 382,
  background = false, out_to_console = false,
}
conky.text = [[
Claude   5h ${cpu}% ${cpubar 6,120}
Claude   week ${memperc}% ${membar 6,120}
Codex    5h ${fs_used_perc /}% ${fs_bar 6,120 /}
Copilot  month ${swapperc}% ${swapbar 6,120}
Gemini   ${loadavg 1} ${time %H:%M:%S}
Resets in ${uptime_short}
]]
CONF
  conky -c "$work/conky.conf" >/dev/null 2>&1 &
  pid=$!
  sleep 3
  conky_switches() { awk '/^voluntary_ctxt_switches/ {print $2}' "/proc/$pid/status"; }
  if kill -0 "$pid" 2>/dev/null; then
    s0="$(conky_switches)"
    sleep "$idle"
    s1="$(conky_switches)"
    echo "conky_rss_kb $(awk '/^VmRSS/ {print $2}' "/proc/$pid/status")"
    echo "conky_anon_kb $(awk '/^RssAnon/ {print $2}' "/proc/$pid/status")"
    echo "conky_pss_kb $(awk '/^Pss:/ {print $2}' "/proc/$pid/smaps_rollup" 2>/dev/null || echo 0)"
    echo "conky_switches $((s1 - s0))"
    kill "$pid"; wait "$pid" 2>/dev/null || true
  fi
  pid=""
fi
