#include <QAbstractTableModel>
#include <QFontMetrics>
#include <QHeaderView>
#include <QMouseEvent>
#include <QTableView>
#include <QTimer>

#include "platform/grid.h"
#include "platform/qt/codePage.h"
#include "platform/qt/qtFonts.h"
#include "platform/qt/widgetPeer.h"
#include "platform/windowing/gridCells.h"
#include "platform/windowing/handlerCall.h"
#include "raster/twips.h"

namespace kelvora {

namespace {

Qt::Alignment toQAlignment(int alignment) {
  constexpr Qt::Alignment across[] = {Qt::AlignLeft, Qt::AlignHCenter, Qt::AlignRight};
  constexpr Qt::Alignment down[] = {Qt::AlignTop, Qt::AlignVCenter, Qt::AlignBottom};
  if (alignment == Grid::automaticAlignment) return Qt::AlignLeft | Qt::AlignVCenter;
  return across[alignment / 3] | down[alignment % 3];
}

/// The grid's cells as last seen by the view. The fixed row is the view's heading, the others are its rows.
class GridModel : public QAbstractTableModel {
 public:
  GridModel(const Grid& grid, QObject* parent) : QAbstractTableModel(parent), grid_(grid) {}

  void reload() {
    beginResetModel();
    const bool blank = isBlank(grid_);
    rows_ = blank ? 0 : grid_.Rows;
    columns_ = blank ? 0 : grid_.Cols;
    fixedRows_ = blank ? 0 : grid_.FixedRows;
    endResetModel();
  }

  int fixedRows() const { return fixedRows_; }
  int rowCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : rows_ - fixedRows_; }
  int columnCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : columns_; }

  QVariant data(const QModelIndex& index, int role) const override {
    const int row = index.row() + fixedRows_;
    if (index.column() < grid_.FixedCols && role == Qt::BackgroundRole) return QPalette().brush(QPalette::Button);
    return cell(row, index.column(), role);
  }

  QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
    return orientation == Qt::Horizontal && fixedRows_ > 0 ? cell(0, section, role) : QVariant();
  }

 private:
  /// The grid may have changed since the view asked for its size.
  QVariant cell(int row, int column, int role) const {
    if (row >= grid_.Rows || column >= grid_.Cols) return {};
    if (role == Qt::DisplayRole) return toQString(cellLine(grid_, row, column));
    if (role == Qt::TextAlignmentRole) return QVariant(toQAlignment(grid_.ColAlignment(column)));
    return {};
  }

  const Grid& grid_;
  int rows_ = 0;
  int columns_ = 0;
  int fixedRows_ = 0;
};

class TableView : public QTableView {
 public:
  TableView(Grid& grid, QWidget* parent) : QTableView(parent), grid_(grid), model_(new GridModel(grid, this)) {
    setFont(toQFont(FontSpec{}));
    setFocusPolicy(grid.TabIndex >= 0 ? Qt::StrongFocus : Qt::ClickFocus);
    setTabKeyNavigation(false);
    setEditTriggers(NoEditTriggers);
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setWordWrap(false);
    setCornerButtonEnabled(false);
    setHorizontalScrollMode(ScrollPerPixel);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(1);
    verticalHeader()->setDefaultSectionSize(QFontMetrics(font()).height() + rowMargin);
    horizontalHeader()->setFont(font());
    horizontalHeader()->setMinimumSectionSize(1);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->viewport()->installEventFilter(this);
    setModel(model_);
    reload();
  }

  /// Updates the view at the next turn of the event loop, once for all changes until then.
  void reloadSoon() {
    if (isReloadQueued_) return;
    isReloadQueued_ = true;
    QTimer::singleShot(0, this, [this] { reload(); });
  }

  void showCurrentCell() {
    if (!isReloadQueued_) moveTo(QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  }

 protected:
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override {
    QTableView::currentChanged(current, previous);
    if (!isShowing_ && !isReloadQueued_ && current.isValid()) {
      grid_.adoptCell(current.row() + model_->fixedRows(), current.column());
    }
  }

  void mouseDoubleClickEvent(QMouseEvent* event) override { raiseDoubleClickOf(*event); }

  void resizeEvent(QResizeEvent* event) override {
    QTableView::resizeEvent(event);
    followWidths();
  }

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (watched == horizontalHeader()->viewport() && event->type() == QEvent::MouseButtonDblClick) {
      raiseDoubleClickOf(static_cast<const QMouseEvent&>(*event));
      return true;
    }
    return QTableView::eventFilter(watched, event);
  }

 private:
  static constexpr int rowMargin = 6;  // pixels

  void raiseDoubleClickOf(const QMouseEvent& event) {
    if (event.button() == Qt::LeftButton) raiseEvent(grid_, grid_.DblClick);
  }

  void reload() {
    isReloadQueued_ = false;
    isShowing_ = true;
    model_->reload();
    isShowing_ = false;
    horizontalHeader()->setVisible(grid_.FixedRows > 0);
    followWidths();
    // Nothing is selected before the user or the game chooses.
    moveTo(QItemSelectionModel::NoUpdate);
  }

  /// Cuts the last column at the edge if its texts still fit, so that no scroll bar is needed.
  void followWidths() {
    const int last = grid_.Cols - 1;
    int room = viewport()->width();
    for (int column = 0; column <= last; ++column) {
      const int width = toPixels(grid_.ColWidth(column));
      const bool isCut = column == last && room < width && sizeHintForColumn(last) <= room;
      setColumnWidth(column, isCut ? room : width);
      room -= width;
    }
  }

  void moveTo(QItemSelectionModel::SelectionFlags marking) {
    isShowing_ = true;
    selectionModel()->setCurrentIndex(model_->index(grid_.Row - model_->fixedRows(), grid_.Col), marking);
    isShowing_ = false;
  }

  Grid& grid_;
  GridModel* model_;
  bool isReloadQueued_ = false;
  bool isShowing_ = false;
};

class GridPeer : public WidgetPeer {
 public:
  GridPeer(Grid& grid, QWidget* parent) : GridPeer(grid, new TableView(grid, parent)) {}

 protected:
  void show(PropertyId id) override {
    if (id == PropertyId::Cells) view_->reloadSoon();
    if (id == PropertyId::CurrentCell) view_->showCurrentCell();
  }

 private:
  GridPeer(Grid& grid, TableView* view) : WidgetPeer(grid, view), view_(view) {}

  TableView* view_;
};

}  // namespace

std::unique_ptr<WidgetPeer> makePeer(Grid& grid, QWidget* parent) { return std::make_unique<GridPeer>(grid, parent); }

}  // namespace kelvora
