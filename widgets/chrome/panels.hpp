#pragma once
// The shared panels are decided below the drawing layer, so commands that
// draw nothing can show the same texts.
#include "timeline/panels.hpp"
