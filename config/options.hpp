#pragma once
// The option enumerations the configurable widgets offer in their edit sheets.
// They are defined with the model (the limit board ranks by them); this is the
// configuration layer's door to them.

#include "model/options.hpp"  // IWYU pragma: export
