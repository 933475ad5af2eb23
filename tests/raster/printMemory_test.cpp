#include <gtest/gtest.h>

#include <string>

#include "raster/surface.h"
#include "tests/support/allocatedBytes.h"

namespace kelvora {
namespace {

/// Every character is 2 by 2 pixels.
class SquareFace : public GlyphSource {
 public:
  SquareFace() { Surface::setGlyphSource(this); }
  ~SquareFace() override { Surface::setGlyphSource(nullptr); }

  Glyph glyph(const FontSpec&, unsigned char) override { return {0, 0, 2, 2, 3, {255, 255, 255, 255}}; }
  int lineHeight(const FontSpec&) override { return 5; }
};

TEST(PrintMemory, HoldsABoundedNumberOfLines) {
  SquareFace face;
  Surface surface;
  surface.resize(10, 8);
  const auto print = [&surface](int first) {
    for (int i = first; i < first + 2000; ++i) surface.Print(std::to_string(i) + std::string(200, 'a'));
  };
  print(10000);
  const std::size_t before = allocatedBytes();
  print(20000);
  print(30000);
  // A line of 205 letters of 2 by 2 pixels takes about 5 KiB. At most 64 lines are kept.
  EXPECT_LT(allocatedBytes(), before + 64 * 8192);
}

}  // namespace
}  // namespace kelvora
