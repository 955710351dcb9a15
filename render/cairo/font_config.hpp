#pragma once
// The fontconfig set-up every process that draws text makes once: the
// system's font directories and caches, and only the rules that choose
// fallback faces and rendering defaults. Depends on fontconfig alone, so the
// benchmarks' Pango start-up floor can make the same one.

#include <fontconfig/fontconfig.h>

namespace mw::render {

// Builds the configuration and makes it fontconfig's current one; the
// system's full configuration when it cannot be built. Called once per
// process (see widgetFontConfig in engine.hpp).
FcConfig* loadWidgetFontConfig();

}  // namespace mw::render
