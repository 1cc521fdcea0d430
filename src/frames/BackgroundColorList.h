#pragma once

#include "platform/Color.h"

#include <vector>

// The 51 background colours of the classic collage's colour tray, in tray order, made once on first use.
// Components are kept as the list gives them: eight reds lie above 1 and are clamped only when drawn.
const std::vector<Color>& backgroundColorList();
