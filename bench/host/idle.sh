#!/usr/bin/env bash
# The desktop host at rest, in words: resident memory with all five widgets
# placed, and how often it wakes up over an idle stretch between entry dates
# (expected: never). The measuring is rss.sh's; this checks the two targets.
#
#   bench/host/idle.sh [BUILD_DIR] [IDLE_SECONDS]     (defaults: build, 60)
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
build="${1:-$root/build}"
idle="${2:-60}"
figures="$(MW_RSS_NO_FLOOR=1 "$root/bench/host/rss.sh" "$build" "$idle")"
value() { echo "$figures" | awk -v k="$1" '$1 == k {print $2}'; }

rss_kb="$(value host_rss_kb)" hwm_kb="$(value host_hwm_kb)" pss_kb="$(value host_pss_kb)"
timers="$(value timer_wakeups)"
echo "widgets placed:                 5"
echo "resident memory (VmRSS):        $((rss_kb / 1024)) MB ($rss_kb kB), peak $((hwm_kb / 1024)) MB"
echo "idle seconds:                   $idle"
echo "timer wake-ups while idle:      $timers"
echo "file-change reloads while idle: $(value file_wakeups)"
echo "timeline builds while idle:     $(value timeline_builds)"
echo "voluntary context switches:     $(value idle_switches)"
echo "CPU time while idle:            $(value idle_cpu_ms) ms"
echo "proportional memory (Pss):      $((pss_kb / 1024)) MB ($pss_kb kB; shared libraries counted by share)"
ok=0
[ "$timers" -eq 0 ] || { echo "target missed: no timer wake-ups between entry dates" >&2; ok=1; }
[ "$rss_kb" -lt $((30 * 1024)) ] || { echo "target missed: resident memory under 30 MB" >&2; ok=1; }
exit "$ok"
