#pragma once

#include <string>

#include "platform/grid.h"

namespace kelvora {

/// True if no cell has a text. Such a grid is shown as an empty field, because its list hasn't arrived yet.
bool isBlank(const Grid& grid);

/// A cell's text in one line: control characters are blanks.
std::string cellLine(const Grid& grid, int row, int column);

}  // namespace kelvora
