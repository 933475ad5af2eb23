#include "platform/grid.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QHeaderView>
#include <QScrollBar>
#include <QTableView>

#include "platform/widgets.h"
#include "tests/platform/qt/desktopTest.h"
#include "tests/platform/qt/formProbe.h"

namespace kelvora {
namespace {

using Notes = std::vector<std::string>;

class TableForm : public Form {
 public:
  TableForm() : Form("Table", {.clientWidth = 6000, .clientHeight = 4500}) {
    grid.DblClick = [this] { notes.push_back("double " + std::to_string(grid.Row) + " " + grid.Text()); };
    box.MouseDown = [this](int Button, int, float, float) {
      notes.push_back("down " + std::to_string(Button) + " value " + std::to_string(box.Value));
    };
    box.Click = [this] { notes.push_back("click value " + std::to_string(box.Value)); };
  }
  Grid grid{this, {0, 600, 6000, 3000}};
  CheckBox box{this, {0, 0, 1500, 255}, "A & B", 0};
  Notes notes;
};

class TablePeer : public ::testing::Test {
 protected:
  TablePeer() {
    fill();
    form_.Show();
  }
  void fill() {
    form_.grid.Rows = 0;
    form_.grid.Cols = 3;
    form_.grid.AddItem("Name\tPort\tNotes");
    form_.grid.AddItem("alpha\t1\tfirst\nline");
    form_.grid.AddItem("beta\t2\tsecond");
    form_.grid.FixedRows = 1;
    form_.grid.FixedCols = 0;
    form_.grid.ColWidth(0, 1500);
    form_.grid.ColAlignment(1, 7);
  }
  QTableView& view() { return dynamic_cast<QTableView&>(widgetOf(form_.grid)); }
  QString cell(int row, int column) { return view().model()->index(row, column).data().toString(); }
  QPoint middleOf(int row, int column) { return view().visualRect(view().model()->index(row, column)).center(); }
  void pressOn(QWidget& widget, QPoint pixel, QEvent::Type type, Qt::MouseButton button = Qt::LeftButton) {
    QMouseEvent event(type, pixel, widget.mapToGlobal(pixel), button,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : button, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
  }
  void clickTable(QPoint pixel) {
    pressOn(*view().viewport(), pixel, QEvent::MouseButtonPress);
    pressOn(*view().viewport(), pixel, QEvent::MouseButtonRelease);
  }

  TableForm form_;
};

TEST_F(TablePeer, TheFixedRowIsTheHeading) {
  EXPECT_TRUE(view().horizontalHeader()->isVisible());
  EXPECT_EQ(view().model()->headerData(0, Qt::Horizontal).toString(), "Name");
  EXPECT_EQ(view().model()->headerData(2, Qt::Horizontal).toString(), "Notes");
  EXPECT_EQ(view().model()->rowCount(), 2);
  EXPECT_EQ(cell(1, 0), "beta");
}

TEST_F(TablePeer, ALineBreakInACellIsABlank) { EXPECT_EQ(cell(0, 2), "first line"); }

TEST_F(TablePeer, ColumnsAreAsWideAsTheGridSays) {
  EXPECT_EQ(view().columnWidth(0), 100);
  EXPECT_EQ(view().columnWidth(1), 72);
  EXPECT_EQ(view().model()->index(0, 1).data(Qt::TextAlignmentRole).toInt(), Qt::AlignRight | Qt::AlignVCenter);
}

TEST_F(TablePeer, TheLastColumnEndsAtTheEdgeIfItsTextsFit) {
  form_.grid.ColWidth(2, 9000);
  EXPECT_TRUE(serveUntil([this] { return view().columnWidth(2) == view().viewport()->width() - 172; }));
  EXPECT_EQ(view().horizontalScrollBar()->maximum(), 0);
}

TEST_F(TablePeer, TheLastColumnKeepsItsWidthForALongText) {
  form_.grid.AddItem("gamma\t3\t" + std::string(80, 'W'));
  form_.grid.ColWidth(2, 9000);
  EXPECT_TRUE(serveUntil([this] { return view().columnWidth(2) == 600; }));
  EXPECT_GT(view().horizontalScrollBar()->maximum(), 0);
}

TEST_F(TablePeer, ClickSelectsTheCell) {
  EXPECT_EQ(form_.grid.Row, 1);
  clickTable(middleOf(1, 1));
  EXPECT_EQ(form_.grid.Row, 2);
  EXPECT_EQ(form_.grid.Col, 1);
  EXPECT_EQ(form_.notes, Notes{});
}

TEST_F(TablePeer, DoubleClickReportsTheSelectedCell) {
  clickTable(middleOf(1, 0));
  pressOn(*view().viewport(), middleOf(1, 0), QEvent::MouseButtonDblClick);
  EXPECT_EQ(form_.notes, Notes{"double 2 beta"});
  pressOn(*view().viewport(), middleOf(1, 0), QEvent::MouseButtonDblClick, Qt::RightButton);
  EXPECT_EQ(form_.notes.size(), 1U);
}

TEST_F(TablePeer, DoubleClickOnTheHeadingOrBelowTheRowsKeepsTheCell) {
  clickTable(middleOf(1, 0));
  pressOn(*view().horizontalHeader()->viewport(), {5, 5}, QEvent::MouseButtonDblClick);
  pressOn(*view().viewport(), {5, view().viewport()->height() - 5}, QEvent::MouseButtonDblClick);
  EXPECT_EQ(form_.notes, (Notes{"double 2 beta", "double 2 beta"}));
}

TEST_F(TablePeer, TheGameMovesTheCurrentCell) {
  form_.grid.Row = 2;
  form_.grid.Col = 2;
  EXPECT_EQ(view().currentIndex().row(), 1);
  EXPECT_EQ(view().currentIndex().column(), 2);
}

TEST_F(TablePeer, NothingIsSelectedInitially) {
  EXPECT_FALSE(view().selectionModel()->hasSelection());
  clickTable(middleOf(0, 1));
  EXPECT_TRUE(view().selectionModel()->isRowSelected(0));
  EXPECT_EQ(form_.grid.Row, 1);
}

TEST_F(TablePeer, ChangesShowAtTheNextTurn) {
  form_.grid.AddItem("gamma\t3\tthird");
  EXPECT_EQ(view().model()->rowCount(), 2);
  EXPECT_TRUE(serveUntil([this] { return view().model()->rowCount() == 3; }));
  EXPECT_EQ(cell(2, 0), "gamma");
}

TEST_F(TablePeer, OutdatedViewShowsNoRemovedCell) {
  form_.grid.Rows = 0;
  EXPECT_EQ(cell(1, 0), "");
  EXPECT_EQ(view().model()->headerData(0, Qt::Horizontal).toString(), "");
  pressOn(*view().viewport(), middleOf(1, 0), QEvent::MouseButtonPress);
  EXPECT_EQ(form_.grid.Row, -1);
}

TEST_F(TablePeer, WithoutAFixedRowTheFirstIsAnOrdinaryRow) {
  form_.grid.Rows = 0;
  form_.grid.AddItem("Name\tPort\tNotes");
  EXPECT_TRUE(serveUntil([this] { return view().model()->rowCount() == 1; }));
  EXPECT_TRUE(view().horizontalHeader()->isHidden());
  EXPECT_EQ(cell(0, 1), "Port");
}

TEST_F(TablePeer, EmptyCellsAreHidden) {
  form_.grid.Rows = 0;
  form_.grid.AddItem("\t\t");
  form_.grid.AddItem("\t\t");
  EXPECT_TRUE(serveUntil([this] { return view().model()->columnCount() == 0; }));
  EXPECT_EQ(view().model()->rowCount(), 0);
  form_.grid.AddItem("\t\tword");
  EXPECT_TRUE(serveUntil([this] { return view().model()->rowCount() == 3; })) << "one word shows them all";
}

TEST_F(TablePeer, ManyRowsAppearAtOnce) {
  for (int i = 0; i < 32'000; ++i) form_.grid.AddItem("x\t1\ty");
  EXPECT_TRUE(serveUntil([this] { return view().model()->rowCount() == 32'002; }));
}

TEST_F(TablePeer, PressOnACheckBoxIsReportedBeforeItsValueChanges) {
  auto& box = dynamic_cast<QCheckBox&>(widgetOf(form_.box));
  pressOn(box, {5, 5}, QEvent::MouseButtonPress);
  EXPECT_EQ(form_.notes, Notes{"down 1 value 0"});
  pressOn(box, {5, 5}, QEvent::MouseButtonRelease);
  EXPECT_EQ(form_.notes, (Notes{"down 1 value 0", "click value 1"}));
  EXPECT_EQ(form_.box.Value.get(), 1);
  pressOn(box, {95, 15}, QEvent::MouseButtonPress);
  pressOn(box, {95, 15}, QEvent::MouseButtonRelease);
  EXPECT_EQ(form_.box.Value.get(), 0);
}

TEST_F(TablePeer, AssigningACheckBoxRaisesNoEvent) {
  auto& box = dynamic_cast<QCheckBox&>(widgetOf(form_.box));
  form_.box.Value = 1;
  EXPECT_TRUE(box.isChecked());
  EXPECT_EQ(form_.notes, Notes{});
  EXPECT_EQ(box.text(), "A && B");
}

}  // namespace
}  // namespace kelvora
