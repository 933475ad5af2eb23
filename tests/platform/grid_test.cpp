#include "platform/grid.h"

#include <gtest/gtest.h>

#include "base/fault.h"
#include "platform/form.h"
#include "platform/widgets.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

class GridForm : public Form {
 public:
  GridForm() : Form("Table", {.clientWidth = 6000, .clientHeight = 3000}) {}
  Grid grid{this, {0, 0, 6000, 3000}};
  CheckBox box{this, {0, 0, 1500, 255}, "Tick", 1};
};

class GridControl : public GameTest {
 protected:
  GridForm form_;
  Grid& grid_ = form_.grid;
};

TEST_F(GridControl, StartsAsTwoByTwoEmptyCellsWithHeadings) {
  EXPECT_EQ(grid_.Rows, 2);
  EXPECT_EQ(grid_.Cols, 2);
  EXPECT_EQ(grid_.FixedRows, 1);
  EXPECT_EQ(grid_.FixedCols, 1);
  EXPECT_EQ(grid_.Row, 1);
  EXPECT_EQ(grid_.Col, 1);
  EXPECT_EQ(grid_.Text(), "");
}

TEST_F(GridControl, AddsRowsOfCellsSeparatedByTabs) {
  grid_.Rows = 0;
  grid_.Cols = 3;
  grid_.AddItem("a\tb\tc");
  grid_.AddItem("d\t\tf\tdropped");
  grid_.AddItem("g");
  EXPECT_EQ(grid_.Rows, 3);
  EXPECT_EQ(grid_.TextMatrix(0, 2), "c");
  EXPECT_EQ(grid_.TextMatrix(1, 0), "d");
  EXPECT_EQ(grid_.TextMatrix(1, 1), "");
  EXPECT_EQ(grid_.TextMatrix(1, 2), "f");
  EXPECT_EQ(grid_.TextMatrix(2, 0), "g");
  EXPECT_EQ(grid_.TextMatrix(2, 1), "");
}

TEST_F(GridControl, AnEmptiedGridHasNoCurrentCell) {
  grid_.Rows = 0;
  EXPECT_EQ(grid_.Row, -1);
  EXPECT_EQ(grid_.FixedRows, 0);
  EXPECT_THROW(grid_.Text(), RuntimeFault);
  grid_.AddItem("a");
  EXPECT_EQ(grid_.Row, 0);
}

TEST_F(GridControl, FixedRowsMoveTheCurrentCellOutOfThem) {
  grid_.Rows = 0;
  grid_.AddItem("a");
  grid_.AddItem("b");
  EXPECT_EQ(grid_.Row, 0);
  grid_.FixedRows = 1;
  EXPECT_EQ(grid_.Row, 1);
}

TEST_F(GridControl, TextBelongsToTheCurrentCell) {
  grid_.Rows = 0;
  grid_.AddItem("a\tb");
  grid_.AddItem("c\td");
  grid_.Col = 0;
  grid_.Row = 1;
  EXPECT_EQ(grid_.Text(), "c");
  grid_.Col = 1;
  EXPECT_EQ(grid_.Text(), "d");
  grid_.adoptCell(0, 0);
  EXPECT_EQ(grid_.Text(), "a");
  grid_.adoptCell(2, 0);
  EXPECT_EQ(grid_.Row, 0) << "a cell that has been removed meanwhile";
}

TEST_F(GridControl, RefusesValuesOutOfRange) {
  EXPECT_THROW(grid_.Rows = -1, RuntimeFault);
  EXPECT_THROW(grid_.Cols = -1, RuntimeFault);
  EXPECT_THROW(grid_.Row = 2, RuntimeFault);
  EXPECT_THROW(grid_.Col = -1, RuntimeFault);
  EXPECT_THROW(grid_.FixedRows = 2, RuntimeFault);
  EXPECT_THROW(grid_.FixedCols = 2, RuntimeFault);
  EXPECT_THROW(grid_.ColWidth(2), RuntimeFault);
  EXPECT_THROW(grid_.ColWidth(0, -1), RuntimeFault);
  EXPECT_THROW(grid_.ColAlignment(-1, 1), RuntimeFault);
  EXPECT_THROW(grid_.ColAlignment(0, 10), RuntimeFault);
  EXPECT_THROW(grid_.TextMatrix(0, 2), RuntimeFault);
  grid_.Rows = 1;
  EXPECT_THROW(grid_.FixedRows = 1, RuntimeFault) << "at least one row is not fixed";
  EXPECT_EQ(grid_.Cols, 2);
  EXPECT_EQ(grid_.Col, 1);
}

TEST_F(GridControl, ColumnsHaveWidthAndAlignment) {
  EXPECT_EQ(grid_.ColWidth(1), 1080);
  EXPECT_EQ(grid_.ColAlignment(1), 9);
  grid_.ColWidth(1, 2000);
  grid_.ColAlignment(1, 1);
  grid_.Cols = 3;
  EXPECT_EQ(grid_.ColWidth(1), 2000);
  EXPECT_EQ(grid_.ColAlignment(1), 1);
  EXPECT_EQ(grid_.ColWidth(2), 1080);
}

TEST_F(GridControl, RemovingColumnsKeepsTheCellInside) {
  grid_.Cols = 5;
  grid_.FixedCols = 4;
  EXPECT_EQ(grid_.Col, 4);
  grid_.Cols = 1;
  EXPECT_EQ(grid_.FixedCols, 0);
  EXPECT_EQ(grid_.Col, 0);
  grid_.Cols = 0;
  EXPECT_EQ(grid_.Col, -1);
}

TEST_F(GridControl, CheckBoxIsDesignedCheckedOrNot) {
  EXPECT_EQ(form_.box.Value.get(), 1);
  EXPECT_EQ(form_.box.Caption.get(), "Tick");
}

}  // namespace
}  // namespace kelvora
