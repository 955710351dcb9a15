#include "render/cairo/font_config.hpp"

namespace mw::render {
namespace {

// The system's font directories and caches, its user configuration, and of
// the shared rules only those that pick fallback faces for scripts and
// symbols Inter lacks (CJK, Arabic, emoji) and the rendering defaults. The
// dozens of alias and per-family rules in conf.d are for other programs'
// font names; reading them cost most of fontconfig's start-up.
constexpr const char* kFontConfig = R"(<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "urn:fontconfig:fonts.dtd">
<fontconfig>
  <dir>/usr/share/fonts</dir>
  <dir>/usr/local/share/fonts</dir>
  <dir prefix="xdg">fonts</dir>
  <dir>~/.fonts</dir>
  <cachedir>/var/cache/fontconfig</cachedir>
  <cachedir prefix="xdg">fontconfig</cachedir>
  <cachedir>~/.fontconfig</cachedir>
  <include ignore_missing="yes">/etc/fonts/conf.d/10-hinting-slight.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/10-yes-antialias.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/11-lcdfilter-default.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/40-nonlatin.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/45-generic.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/45-latin.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/49-sansserif.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/50-user.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/51-local.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/60-generic.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/60-latin.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/65-nonlatin.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/69-unifont.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/70-no-bitmaps.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/90-synthetic.conf</include>
</fontconfig>
)";

}  // namespace

// Set up once per process and made the current configuration, so that
// Pango's own start-up (which initialises fontconfig on a thread of its
// own) finds it instead of reading the system's in full; the system's full
// configuration when this one cannot be built.
FcConfig* loadWidgetFontConfig() {
    if (FcConfig* config = FcConfigCreate()) {
        if (FcConfigParseAndLoadFromMemory(config, reinterpret_cast<const FcChar8*>(kFontConfig), FcFalse) &&
            FcConfigBuildFonts(config) && FcConfigSetCurrent(config))
            return config;
        FcConfigDestroy(config);
    }
    return FcConfigReference(nullptr);
}

}  // namespace mw::render
