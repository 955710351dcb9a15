#!/usr/bin/env bash
# The desktop host at rest: resident memory with all five widgets placed, and
# how often it wakes up over an idle stretch between entry dates (expected:
# never). Runs the host on a virtual X server with a private session bus.
#
#   bench/host/idle.sh [BUILD_DIR] [IDLE_SECONDS]     (defaults: build, 60)
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
build="${1:-$root/build}"
idle="${2:-60}"
cli="$build/app/meterwick-widgets"
host="$build/app/host/meterwick-widget-host"
for tool in xvfb-run dbus-run-session gdbus; do
  command -v "$tool" >/dev/null || { echo "idle.sh: $tool is not installed" >&2; exit 77; }
done
[ -x "$host" ] && [ -x "$cli" ] || { echo "idle.sh: build $build first" >&2; exit 1; }

if [ -z "${MW_IDLE_SESSION:-}" ]; then
  exec timeout -k 5 $((idle + 120)) xvfb-run -a -s '-screen 0 1920x1200x24' \
    dbus-run-session -- env MW_IDLE_SESSION=1 NO_AT_BRIDGE=1 "$0" "$build" "$idle"
fi

work="$(mktemp -d)"
trap 'kill "$pid" 2>/dev/null; wait "$pid" 2>/dev/null; rm -rf "$work"' EXIT
export XDG_CONFIG_HOME="$work/config" METERWICK_CONTAINER="$work/demo/container"
"$cli" demo --output "$work/demo" >/dev/null          # the sample payload: fresh, several tools
"$cli" place focus --at 0,0 >/dev/null
"$cli" place accounts --family systemLarge --at 180,0 >/dev/null
"$cli" place accounts-limit --family systemMedium --at 560,0 >/dev/null
"$cli" place sparkline --at 560,180 >/dev/null
"$cli" place dashboard --family systemExtraLarge --at 0,400 >/dev/null

"$host" 2>"$work/host.log" &
pid=$!
status() {
  gdbus call --session --dest app.meterwick.WidgetHost --object-path /app/meterwick/WidgetHost \
    --method app.meterwick.WidgetHost.Status
}
field() { sed -n "s/.*'$1': <\(uint[0-9]* \)\{0,1\}\([0-9]*\)>.*/\2/p"; }
for _ in $(seq 100); do
  [ "$(status 2>/dev/null | field widgets)" = 5 ] && break
  sleep 0.1
done
sleep 2  # let the first frames settle

before="$(status)"
ticks_before="$(awk '{print $14 + $15}' "/proc/$pid/stat")"
switches_before="$(awk '/voluntary_ctxt_switches/ && !/non/ {print $2}' "/proc/$pid/status")"
sleep "$idle"
after="$(status)"
ticks_after="$(awk '{print $14 + $15}' "/proc/$pid/stat")"
switches_after="$(awk '/voluntary_ctxt_switches/ && !/non/ {print $2}' "/proc/$pid/status")"

rss_kb="$(awk '/VmRSS/ {print $2}' "/proc/$pid/status")"
hwm_kb="$(awk '/VmHWM/ {print $2}' "/proc/$pid/status")"
timers=$(( $(echo "$after" | field timerWakeUps) - $(echo "$before" | field timerWakeUps) ))
files=$(( $(echo "$after" | field fileWakeUps) - $(echo "$before" | field fileWakeUps) ))
builds=$(( $(echo "$after" | field timelineBuilds) - $(echo "$before" | field timelineBuilds) ))
cpu_ms=$(( (ticks_after - ticks_before) * 1000 / $(getconf CLK_TCK) ))

echo "widgets placed:                 $(echo "$after" | field widgets)"
echo "resident memory (VmRSS):        $((rss_kb / 1024)) MB ($rss_kb kB), peak $((hwm_kb / 1024)) MB"
echo "idle seconds:                   $idle"
echo "timer wake-ups while idle:      $timers"
echo "file-change reloads while idle: $files"
echo "timeline builds while idle:     $builds"
echo "voluntary context switches:     $((switches_after - switches_before))"
echo "CPU time while idle:            ${cpu_ms} ms"
pss_kb="$(awk '/^Pss:/ {print $2}' "/proc/$pid/smaps_rollup" 2>/dev/null || echo 0)"
echo "proportional memory (Pss):      $((pss_kb / 1024)) MB ($pss_kb kB; shared libraries counted by share)"
ok=0
[ "$timers" -eq 0 ] || { echo "target missed: no timer wake-ups between entry dates" >&2; ok=1; }
[ "$rss_kb" -lt $((30 * 1024)) ] || { echo "target missed: resident memory under 30 MB" >&2; ok=1; }
exit "$ok"
