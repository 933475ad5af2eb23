#include "platform/windowing/gridCells.h"

#include <algorithm>

namespace kelvora {

bool isBlank(const Grid& grid) {
  for (int row = 0; row < grid.Rows; ++row) {
    for (int column = 0; column < grid.Cols; ++column) {
      if (!grid.TextMatrix(row, column).empty()) return false;
    }
  }
  return true;
}

std::string cellLine(const Grid& grid, int row, int column) {
  std::string line = grid.TextMatrix(row, column);
  std::replace_if(
      line.begin(), line.end(), [](char byte) { return static_cast<unsigned char>(byte) < ' '; }, ' ');
  return line;
}

}  // namespace kelvora
