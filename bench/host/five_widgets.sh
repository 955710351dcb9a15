# Sourced by the host measurements: the same five widgets wherever the host
# is measured, and a wait until it shows them all.

# place_five_widgets CLI: places them in widgets.json (XDG_CONFIG_HOME).
place_five_widgets() {
  "$1" place focus --at 0,0 >/dev/null
  "$1" place accounts --family systemLarge --at 180,0 >/dev/null
  "$1" place accounts-limit --family systemMedium --at 560,0 >/dev/null
  "$1" place sparkline --at 560,180 >/dev/null
  "$1" place dashboard --family systemExtraLarge --at 0,400 >/dev/null
}

# The running host's status over the session bus.
host_status() {
  gdbus call --session --dest app.meterwick.WidgetHost --object-path /app/meterwick/WidgetHost \
    --method app.meterwick.WidgetHost.Status
}

# field NAME: a number from the status on stdin.
field() { sed -n "s/.*'$1': <\(uint[0-9]* \)\{0,1\}\([0-9]*\)>.*/\2/p"; }
