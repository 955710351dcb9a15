#pragma once
// The desktop host's D-Bus face on the session bus, shared by the host and
// the commands that call it.

namespace mw {

inline constexpr const char* kHostBusName = "app.meterwick.WidgetHost";  // also the application id
inline constexpr const char* kHostObjectPath = "/app/meterwick/WidgetHost";
inline constexpr const char* kHostInterface = "app.meterwick.WidgetHost";

// ReloadTimelines(kind): every placed widget of that kind (kind string or
// kind word) asks its provider again; ReloadAllTimelines(): the placed
// widgets are read again and every one asks again. Status(): counters for
// tests and measurements.
inline constexpr const char* kHostInterfaceXML = R"(<node>
  <interface name="app.meterwick.WidgetHost">
    <method name="ReloadTimelines">
      <arg type="s" name="kind" direction="in"/>
    </method>
    <method name="ReloadAllTimelines"/>
    <method name="Status">
      <arg type="a{sv}" name="status" direction="out"/>
    </method>
  </interface>
</node>)";

inline constexpr const char* kHostUnknownKindError = "app.meterwick.WidgetHost.Error.UnknownKind";

}  // namespace mw
