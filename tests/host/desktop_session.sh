#!/usr/bin/env bash
# desktop_session.sh DESKTOP COMMAND [ARG…]
#
# Runs COMMAND inside a headless desktop with a private session bus and
# prints nothing of its own unless the desktop fails to start, in which case
# it exits 1 with the compositor's own messages. DESKTOP is one of
#   openbox  Xvfb with openbox (X11)
#   sway     sway on the headless wlroots backend (layer-shell)
#   mutter   GNOME's mutter headless, Wayland without layer-shell, XWayland
#   xfwm4    Xvfb with Xfce's window manager (X11)
#   kwin     Xvfb with KDE's KWin as an X11 window manager
# COMMAND finds DISPLAY / WAYLAND_DISPLAY / SWAYSOCK set as a client of that
# desktop would, XDG_CURRENT_DESKTOP naming it, and MW_DESKTOP_DIR a private
# directory it may use. sway refuses to run as root, so when started as root
# the desktop and COMMAND run as the unprivileged user "nobody".
set -euo pipefail

stage=outer
if [ "${1:-}" = --as-user ] || [ "${1:-}" = --in-session ]; then stage=${1#--}; shift; fi
desktop=${1:?desktop: openbox, sway, mutter, xfwm4 or kwin}; shift
self=$(readlink -f "$0")

fail() { echo "desktop_session: $*" >&2; exit 1; }

case "$stage" in
outer)
    case "$desktop" in openbox|sway|mutter|xfwm4|kwin) ;; *) fail "unknown desktop \"$desktop\"" ;; esac
    work=$(mktemp -d /tmp/mw-desktop.XXXXXX)
    trap 'rm -rf "$work"' EXIT
    chmod 755 "$work"
    as_user=()
    if [ "$(id -u)" -eq 0 ]; then
        chown 65534:65534 "$work"
        as_user=(setpriv --reuid=65534 --regid=65534 --clear-groups)
    fi
    set +e
    "${as_user[@]}" env MW_DESKTOP_DIR="$work" "$self" --as-user "$desktop" "$@"
    exit $?
    ;;
as-user)
    export HOME="$MW_DESKTOP_DIR" XDG_RUNTIME_DIR="$MW_DESKTOP_DIR/run" XDG_CONFIG_HOME="$MW_DESKTOP_DIR/config"
    export XDG_DATA_HOME="$MW_DESKTOP_DIR/data" XDG_CACHE_HOME="$MW_DESKTOP_DIR/cache"
    mkdir -p -m 700 "$XDG_RUNTIME_DIR" "$XDG_CONFIG_HOME" "$XDG_DATA_HOME" "$XDG_CACHE_HOME"
    unset DISPLAY WAYLAND_DISPLAY SWAYSOCK GDK_BACKEND XDG_SESSION_TYPE DBUS_SESSION_BUS_ADDRESS
    command -v dbus-run-session >/dev/null || fail "dbus-run-session is not installed"
    exec dbus-run-session -- "$self" --in-session "$desktop" "$@"
    ;;
esac

# In the session: start the desktop, wait until it answers, run the command.
log="$MW_DESKTOP_DIR/$desktop.log"
pids=()
cleanup() {
    local pid
    for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
    for pid in "${pids[@]}"; do wait "$pid" 2>/dev/null || true; done
}
trap cleanup EXIT

# wait_for SECONDS PID COMMAND…: polls COMMAND until it succeeds; fails with
# the desktop's log when PID dies or time runs out.
wait_for() {
    local seconds=$1 pid=$2; shift 2
    local deadline=$((SECONDS + seconds))
    until "$@" >/dev/null 2>&1; do
        if ! kill -0 "$pid" 2>/dev/null; then
            fail "$desktop exited while starting:"$'\n'"$(tail -n 30 "$log")"
        fi
        [ "$SECONDS" -lt "$deadline" ] || fail "$desktop did not start within ${seconds}s:"$'\n'"$(tail -n 30 "$log")"
        sleep 0.1
    done
}

need() { command -v "$1" >/dev/null || fail "$desktop needs $1, which is not installed (scripts/test installs it)"; }

case "$desktop" in
openbox|xfwm4|kwin)
    window_manager=$desktop
    [ "$desktop" = kwin ] && window_manager=kwin_x11
    need Xvfb; need "$window_manager"; need xprop
    exec 3>"$MW_DESKTOP_DIR/display"
    Xvfb -displayfd 3 -screen 0 1920x1080x24 -nolisten tcp >"$log" 2>&1 &
    pids+=($!)
    exec 3>&-
    wait_for 20 "${pids[0]}" test -s "$MW_DESKTOP_DIR/display"
    export DISPLAY=":$(head -n 1 "$MW_DESKTOP_DIR/display")"
    # Services the bus starts for the window manager (KDE's shortcut daemon)
    # need the display too.
    dbus-update-activation-environment DISPLAY >>"$log" 2>&1 || true
    case "$desktop" in
    openbox) openbox --sm-disable >>"$log" 2>&1 & ;;
    xfwm4) xfwm4 --compositor=off --sm-client-disable >>"$log" 2>&1 & ;;
    kwin) QT_QPA_PLATFORM=xcb KWIN_COMPOSE=N kwin_x11 >>"$log" 2>&1 & ;;
    esac
    pids+=($!)
    wait_for 30 "${pids[1]}" sh -c 'xprop -root _NET_SUPPORTING_WM_CHECK | grep -q "window id"'
    case "$desktop" in
    openbox) export XDG_CURRENT_DESKTOP=openbox ;;
    xfwm4) export XDG_CURRENT_DESKTOP=XFCE ;;
    kwin) export XDG_CURRENT_DESKTOP=KDE ;;
    esac
    export XDG_SESSION_TYPE=x11
    ;;
sway)
    need sway; need swaymsg
    cat >"$MW_DESKTOP_DIR/sway.conf" <<'CONF'
output HEADLESS-1 mode 1920x1080 position 0 0 background #3a5f7d solid_color
xwayland disable
default_border none
CONF
    WLR_BACKENDS=headless WLR_LIBINPUT_NO_DEVICES=1 WLR_RENDERER=pixman \
        sway -c "$MW_DESKTOP_DIR/sway.conf" >"$log" 2>&1 &
    pids+=($!)
    find_sway() {
        SWAYSOCK=$(ls "$XDG_RUNTIME_DIR"/sway-ipc.*.sock 2>/dev/null | head -n 1)
        [ -n "$SWAYSOCK" ] && SWAYSOCK="$SWAYSOCK" swaymsg -t get_version
    }
    wait_for 30 "${pids[0]}" find_sway
    find_sway >/dev/null
    export SWAYSOCK
    WAYLAND_DISPLAY=$(cd "$XDG_RUNTIME_DIR" && ls wayland-* | grep -v '\.lock$' | head -n 1)
    export WAYLAND_DISPLAY XDG_CURRENT_DESKTOP=sway XDG_SESSION_TYPE=wayland
    ;;
mutter)
    need mutter; need Xwayland; need xprop
    mutter --headless --wayland --virtual-monitor 1920x1080 --wayland-display mw-wayland >"$log" 2>&1 &
    pids+=($!)
    wait_for 30 "${pids[0]}" test -S "$XDG_RUNTIME_DIR/mw-wayland"
    # mutter starts its XWayland on a display number of its choosing with
    # its own authority file; the child's command line names both.
    find_xwayland() {
        local child arguments
        child=$(pgrep -P "${pids[0]}" -x Xwayland | head -n 1)
        [ -n "$child" ] || return 1
        mapfile -d '' arguments <"/proc/$child/cmdline"
        DISPLAY=${arguments[1]}
        XAUTHORITY=$(printf '%s\n' "${arguments[@]}" | grep -A1 -x -- -auth | tail -n 1)
        export DISPLAY XAUTHORITY
        xprop -root _NET_SUPPORTING_WM_CHECK | grep -q "window id"
    }
    wait_for 30 "${pids[0]}" find_xwayland
    find_xwayland
    export DISPLAY WAYLAND_DISPLAY=mw-wayland XDG_CURRENT_DESKTOP=GNOME XDG_SESSION_TYPE=wayland
    ;;
esac

set +e
"$@"
status=$?
set -e
exit "$status"
