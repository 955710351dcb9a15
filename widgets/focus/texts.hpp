#pragma once
// The Focus widget's percent and countdown texts live with the usage model,
// so commands that draw nothing write them the same way.
#include "model/usage_texts.hpp"
