#pragma once
// The empty panel is decided below the drawing layer, so commands that draw
// nothing can name it too.
#include "timeline/empty_state.hpp"
