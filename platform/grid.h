#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/control.h"

namespace kelvora {

/// A table of texts. Fixed rows and columns stand at its top and left and look like headings; the current cell is what
/// the user chose last, or the first cell that is not fixed. DblClick comes from anywhere on it and leaves the current
/// cell alone unless it met another one. A value out of range is RuntimeFault.
class Grid : public Control {
 public:
  /// One of the grid's numbers. Assigning it is checked and carried out at once.
  class Number {
   public:
    using Setter = void (Grid::*)(int);
    Number(Grid& grid, Setter set, int value) : grid_(grid), set_(set), value_(value) {}
    Number(const Number&) = delete;
    Number& operator=(const Number&) = delete;
    Number& operator=(int value) {
      (grid_.*set_)(value);
      return *this;
    }
    operator int() const { return value_; }

   private:
    friend class Grid;
    Grid& grid_;
    Setter set_;
    int value_;
  };

  Grid(Control* container, Place place);

  Number Rows;       ///< 2 at first; 0 empties the grid
  Number Cols;       ///< 2 at first
  Number FixedRows;  ///< 1 at first; 0 or 1, always fewer than Rows
  Number FixedCols;  ///< 1 at first, always fewer than Cols
  Number Row;        ///< of the current cell; -1 in a grid without rows
  Number Col;        ///< of the current cell; -1 in a grid without columns

  /// Of the current cell; without one RuntimeFault.
  const std::string& Text() const { return TextMatrix(Row, Col); }
  const std::string& TextMatrix(int row, int column) const;

  /// Twips.
  float ColWidth(int column) const { return columnAt(column).width; }
  void ColWidth(int column, float twips);
  /// 0 to 2 left (top, middle, bottom), 3 to 5 centre, 6 to 8 right, 9 as the text lies by itself.
  int ColAlignment(int column) const { return columnAt(column).alignment; }
  void ColAlignment(int column, int alignment);

  /// A new last row of cells divided by tabs; what goes beyond the last column is dropped.
  void AddItem(std::string_view text);

  /// The user moved to another cell; the peer shows it already and is not told.
  void adoptCell(int row, int column);

 private:
  static constexpr float designWidth = 1080;  // twips; the longest word of a list, "REQUIRED", fits
  static constexpr int designAlignment = 9;
  struct Column {
    float width = designWidth;
    int alignment = designAlignment;
  };

  void setRows(int value);
  void setCols(int value);
  void setFixedRows(int value);
  void setFixedCols(int value);
  void setRow(int value);
  void setCol(int value);
  void keepCellInside();
  const Column& columnAt(int column) const;

  std::vector<std::vector<std::string>> cells_;
  std::vector<Column> columns_;
};

}  // namespace kelvora
