#include "platform/windowing/gridCells.h"

#include <gtest/gtest.h>

#include "platform/form.h"

namespace kelvora {
namespace {

class GridCells : public ::testing::Test {
 protected:
  Form form_{"Grid", {.clientWidth = 1500, .clientHeight = 1500}};
  Grid grid_{&form_, {0, 0, 1500, 1500}};
};

TEST_F(GridCells, AreBlankWithoutAnyText) {
  EXPECT_TRUE(isBlank(grid_)) << "two by two empty cells";
  grid_.AddItem("\t ");
  EXPECT_FALSE(isBlank(grid_)) << "a blank is a text";
  grid_.Rows = 0;
  EXPECT_TRUE(isBlank(grid_));
}

TEST_F(GridCells, HaveOneLineWithoutControlCharacters) {
  grid_.AddItem("a\r\nb\x01\x1F \x7F\xFF");
  EXPECT_EQ(cellLine(grid_, 2, 0), "a  b   \x7F\xFF");
  EXPECT_EQ(grid_.TextMatrix(2, 0), "a\r\nb\x01\x1F \x7F\xFF");
}

}  // namespace
}  // namespace kelvora
