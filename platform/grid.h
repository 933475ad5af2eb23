#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/control.h"

namespace kelvora {

/// A table of texts. Fixed rows and columns are at its top and left and look like headings. The current cell is the
/// user's last choice, or the first cell that isn't fixed. A double-click anywhere raises DblClick, and changes the
/// current cell only if it hits another one. Values out of range raise RuntimeFault.
class Grid : public Control {
 public:
  static constexpr int automaticAlignment = 9;

  /// One of the grid's numbers. Assigning it is checked and takes effect at once.
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

  Number Rows;       ///< initially 2; 0 empties the grid
  Number Cols;       ///< initially 2
  Number FixedRows;  ///< initially 1; 0 or 1, always fewer than Rows
  Number FixedCols;  ///< initially 1, always fewer than Cols
  Number Row;        ///< of the current cell; -1 in a grid without rows
  Number Col;        ///< of the current cell; -1 in a grid without columns

  /// The current cell's text. RuntimeFault if there is no current cell.
  const std::string& Text() const { return TextMatrix(Row, Col); }
  const std::string& TextMatrix(int row, int column) const;

  /// In twips.
  float ColWidth(int column) const { return columnAt(column).width; }
  void ColWidth(int column, float twips);
  /// 0 to 2 left (top, middle, bottom), 3 to 5 centre, 6 to 8 right, or `automaticAlignment`.
  int ColAlignment(int column) const { return columnAt(column).alignment; }
  void ColAlignment(int column, int alignment);

  /// Appends a row of cells separated by tabs. Cells beyond the last column are dropped.
  void AddItem(std::string_view text);

  /// Called by the peer when the user moves to another cell. The peer isn't notified.
  void adoptCell(int row, int column);

 private:
  static constexpr float designWidth = 1080;  // twips; fits "REQUIRED", the longest word in a list
  struct Column {
    float width = designWidth;
    int alignment = automaticAlignment;
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
