#pragma once
// The Focus content decision is made below the drawing layer, so the status
// bar line and the widget cannot disagree.
#include "timeline/focus_content.hpp"
