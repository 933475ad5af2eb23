#include "platform/web/webGrid.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "platform/grid.h"
#include "platform/web/webPeer.h"
#include "platform/windowing/gridCells.h"
#include "platform/windowing/handlerCall.h"
#include "raster/twips.h"

namespace kelvora {

namespace {

std::string quoted(const std::string& text) {
  std::string result = "\"";
  for (const char letter : text) {
    if (letter == '"' || letter == '\\') result += '\\';
    result += letter;
  }
  return result + '"';
}

const char* alignmentName(int alignment) {
  if (alignment == Grid::automaticAlignment || alignment <= 2) return "\"left\"";
  return alignment <= 5 ? "\"center\"" : "\"right\"";
}

template <class Item>
std::string list(int count, Item&& item) {
  std::string text = "[";
  for (int i = 0; i < count; ++i) text += (i > 0 ? "," : "") + std::string(item(i));
  return text + "]";
}

std::string number(const std::string& name, int value) { return ",\"" + name + "\":" + std::to_string(value); }

class GridPeer;
std::vector<GridPeer*> staleGrids;

class GridPeer : public WebPeer {
 public:
  GridPeer(Grid& grid, int parent) : WebPeer(grid, parent, "Grid"), grid_(grid) {
    showTabIndex();
    showCells();
  }
  ~GridPeer() override { std::erase(staleGrids, this); }

  void changed(PropertyId id) override {
    // A list that comes in is added row by row and shown once.
    if (id == PropertyId::Cells) {
      if (std::find(staleGrids.begin(), staleGrids.end(), this) == staleGrids.end()) staleGrids.push_back(this);
      return;
    }
    WebPeer::changed(id);
  }

  void showCells() {
    const bool blank = isBlank(grid_);
    const int rows = blank ? 0 : grid_.Rows;
    const int columns = blank ? 0 : grid_.Cols;
    const auto cells = list(
        rows, [&](int row) { return list(columns, [&](int column) { return quoted(cellLine(grid_, row, column)); }); });
    const auto widths = list(columns, [&](int column) { return std::to_string(toPixels(grid_.ColWidth(column))); });
    const auto alignments = list(columns, [&](int column) { return alignmentName(grid_.ColAlignment(column)); });
    set("Cells", "{\"rows\":" + cells + ",\"widths\":" + widths + ",\"alignments\":" + alignments +
                     number("fixedRows", grid_.FixedRows) + number("fixedColumns", grid_.FixedCols) +
                     number("row", grid_.Row) + number("column", grid_.Col) + "}");
  }

  void take(const PageEvent& event) override {
    if (event.kind != PageEventKind::CellChosen) return WebPeer::take(event);
    grid_.adoptCell(event.y, event.x);
    showChosen();
  }

 protected:
  void show(PropertyId id) override {
    if (id == PropertyId::CurrentCell) showChosen();
  }

 private:
  void showChosen() {
    set("Col", grid_.Col);
    set("Row", grid_.Row);
  }

  Grid& grid_;
};

}  // namespace

void makePeer(Grid& grid, int parent) { grid.peer = std::make_unique<GridPeer>(grid, parent); }

void showStaleGrids() {
  for (GridPeer* grid : staleGrids) grid->showCells();
  staleGrids.clear();
}

}  // namespace kelvora
