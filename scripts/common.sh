# Shared by the scripts: installs what is missing from Debian's packages and
# configures/builds one build tree.
set -euo pipefail

MW_ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"

MW_PACKAGES=(
  g++ cmake make pkg-config ccache
  zlib1g-dev   # only the tests: an independent inflater for the PNG encoder's streams
  nlohmann-json3-dev libcli11-dev
  libcairo2-dev libpango1.0-dev fonts-inter libdeflate-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  libgtk-3-dev libgtk-layer-shell-dev libglib2.0-bin
  libgtkmm-3.0-dev   # only the benchmarks' gtkmm floor; the host uses GTK's C API
  xvfb xauth xdotool dbus-daemon dbus-x11 conky-std libx11-dev
  waybar   # only the benchmarks: a status-bar peer of the host on sway
  openbox sway grim mutter xwayland x11-utils imagemagick libwayland-dev libwayland-bin
  xfwm4 kwin-x11 wmctrl wayland-protocols
  clang libclang-rt-14-dev
  python3-jsonschema
  at-spi2-core python3-pyatspi   # the accessibility end-to-end tests read the tree over AT-SPI
  libgtk-3-bin python3-gi   # gtk-launch and a settings portal for the installed host's end-to-end test
  scdoc lintian appstream desktop-file-utils systemd dpkg-dev fakeroot
)

mw_install_missing() {
  local missing=() pkg
  for pkg in "${MW_PACKAGES[@]}" "$@"; do
    if ! dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null | grep -q 'install ok installed'; then
      missing+=("$pkg")
    fi
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  echo "Installing: ${missing[*]}" >&2
  local sudo=()
  [ "$(id -u)" -ne 0 ] && sudo=(sudo)
  "${sudo[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y --no-install-recommends "${missing[@]}"
}

# mw_build DIR [cmake options…]: configure once, then build everything.
mw_build() {
  local dir="$1"; shift
  cmake -S "$MW_ROOT" -B "$dir" "$@" >/dev/null
  cmake --build "$dir" -j "$(nproc)"
}
