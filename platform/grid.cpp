#include "platform/grid.h"

#include <algorithm>

namespace kelvora {

namespace {

constexpr int designRows = 2;
constexpr int designCols = 2;

bool isWithin(int value, std::size_t count) { return 0 <= value && static_cast<std::size_t>(value) < count; }

void require(bool valid) {
  if (!valid) raiseInvalidPropertyValue();
}

}  // namespace

Grid::Grid(Control* container, Place place)
    : Control(container, place),
      Rows(*this, &Grid::setRows, designRows),
      Cols(*this, &Grid::setCols, designCols),
      FixedRows(*this, &Grid::setFixedRows, 1),
      FixedCols(*this, &Grid::setFixedCols, 1),
      Row(*this, &Grid::setRow, 1),
      Col(*this, &Grid::setCol, 1),
      cells_(designRows, std::vector<std::string>(designCols)),
      columns_(designCols) {}

const std::string& Grid::TextMatrix(int row, int column) const {
  if (!isWithin(row, cells_.size()) || !isWithin(column, columns_.size())) raiseSubscriptOutOfRange();
  return cells_[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)];
}

const Grid::Column& Grid::columnAt(int column) const {
  if (!isWithin(column, columns_.size())) raiseSubscriptOutOfRange();
  return columns_[static_cast<std::size_t>(column)];
}

void Grid::ColWidth(int column, float twips) {
  require(twips >= 0);
  Column changed = columnAt(column);
  changed.width = twips;
  columns_[static_cast<std::size_t>(column)] = changed;
  notifyPeer(*this, PropertyId::Cells);
}

void Grid::ColAlignment(int column, int alignment) {
  require(0 <= alignment && alignment <= automaticAlignment);
  Column changed = columnAt(column);
  changed.alignment = alignment;
  columns_[static_cast<std::size_t>(column)] = changed;
  notifyPeer(*this, PropertyId::Cells);
}

void Grid::AddItem(std::string_view text) {
  std::vector<std::string> row(columns_.size());
  for (std::string& cell : row) {
    const std::size_t tab = std::min(text.find('\t'), text.size());
    cell = text.substr(0, tab);
    text.remove_prefix(std::min(tab + 1, text.size()));
  }
  cells_.push_back(std::move(row));
  ++Rows.value_;
  keepCellInside();
  notifyPeer(*this, PropertyId::Cells);
}

void Grid::adoptCell(int row, int column) {
  if (!isWithin(row, cells_.size()) || !isWithin(column, columns_.size())) return;
  Row.value_ = row;
  Col.value_ = column;
  noteAdoption(*this, PropertyId::CurrentCell);
}

void Grid::setRows(int value) {
  require(value >= 0);
  cells_.resize(static_cast<std::size_t>(value), std::vector<std::string>(columns_.size()));
  Rows.value_ = value;
  FixedRows.value_ = std::clamp(value - 1, 0, FixedRows.value_);
  keepCellInside();
  notifyPeer(*this, PropertyId::Cells);
}

void Grid::setCols(int value) {
  require(value >= 0);
  columns_.resize(static_cast<std::size_t>(value));
  for (std::vector<std::string>& row : cells_) row.resize(columns_.size());
  Cols.value_ = value;
  FixedCols.value_ = std::clamp(value - 1, 0, FixedCols.value_);
  keepCellInside();
  notifyPeer(*this, PropertyId::Cells);
}

void Grid::setFixedRows(int value) {
  require(value == 0 || (value == 1 && Rows > 1));
  FixedRows.value_ = value;
  keepCellInside();
  notifyPeer(*this, PropertyId::Cells);
}

void Grid::setFixedCols(int value) {
  require(value == 0 || (value > 0 && value < Cols));
  FixedCols.value_ = value;
  keepCellInside();
  notifyPeer(*this, PropertyId::Cells);
}

void Grid::setRow(int value) {
  require(isWithin(value, cells_.size()));
  Row.value_ = value;
  notifyPeer(*this, PropertyId::CurrentCell);
}

void Grid::setCol(int value) {
  require(isWithin(value, columns_.size()));
  Col.value_ = value;
  notifyPeer(*this, PropertyId::CurrentCell);
}

/// The current cell is not a fixed one, unless the program chose a fixed one afterwards.
void Grid::keepCellInside() {
  Row.value_ = Rows == 0 ? -1 : std::clamp(Row.value_, FixedRows.value_, Rows.value_ - 1);
  Col.value_ = Cols == 0 ? -1 : std::clamp(Col.value_, FixedCols.value_, Cols.value_ - 1);
}

}  // namespace kelvora
