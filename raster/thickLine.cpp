#include "raster/thickLine.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include "raster/spans.h"

// A line of width w, 2 to 64, has the pixels whose centres lie within w / 2 of the segment. For an even w the segment
// is half a pixel up and to the left of its pixels, so that it covers w rows. All arithmetic is in whole half pixels:
// the end A of the segment is (2 x - e, 2 y - e) with e = 1 for an even w and 0 for an odd one, the pixel is (2 px, 2
// py), and the distance is at most w.

namespace kelvora {
namespace {

// Rows of an arc or edge computed at a time. One block is nearly always enough, so the branch is predictable. A
// browser's narrow registers take too long for a block of 32.
#if defined(__wasm_simd128__)
constexpr int blockRows = 8;
#else
constexpr int blockRows = 32;
#endif

// The pen's disc, row by row from its top: how far the row extends to the right of the pen's pixel. To the left it
// extends as far plus e. A disc of width w has w rows, followed by zeros up to a whole block.
using Disc = std::array<std::int8_t, maxPenWidth + blockRows>;

constexpr std::array<Disc, maxPenWidth + 1> makeDiscs() {
  std::array<Disc, maxPenWidth + 1> discs{};
  for (int width = 1; width <= maxPenWidth; ++width) {
    const int e = 1 - width % 2;
    for (int row = 0; row < width; ++row) {
      const int down = 2 * (row - width / 2) + e;
      int reach = 0;
      while ((2 * (reach + 1) + e) * (2 * (reach + 1) + e) + down * down <= width * width) ++reach;
      discs.at(static_cast<std::size_t>(width)).at(static_cast<std::size_t>(row)) = static_cast<std::int8_t>(reach);
    }
  }
  return discs;
}

constexpr std::array<Disc, maxPenWidth + 1> discs = makeDiscs();

// Rows of a thick line computed before they are filled, with room after them for the rest of a block.
constexpr int bandRows = 128;
using BandSide = std::array<int, bandRows + blockRows>;

// A straight edge. In row r it is at (start + (r - firstRow) step) / divisor, rounded down. It is tracked with 32
// fractional bits, whose error stays below 129 units in a band of rows. Adding 256 units ensures that no whole number
// is missed. None is reached too early either: the divisor is below 2^23, so a fraction is at least 512 units below the
// next whole number.
class Edge {
 public:
  Edge() = default;
  Edge(int firstRow, std::int64_t start, std::int64_t step, std::int64_t divisor)
      : firstRow_(firstRow),
        start_(start),
        step_(step),
        divisor_(divisor),
        inverse_(1.0 / static_cast<double>(divisor)) {
    placesPerRow_ = places(step);
  }

  /// Writes whole blocks.
  void trace(int row, int endRow, int* column) const {
    constexpr std::int64_t lift = 256;
    auto value = static_cast<std::uint64_t>(places(start_ + (row - firstRow_) * step_) + lift);
    const auto step = static_cast<std::uint64_t>(placesPerRow_);
    for (; row < endRow; row += blockRows, column += blockRows) {
      for (int i = 0; i < blockRows; ++i) {
        column[i] = static_cast<int>(static_cast<std::uint32_t>(value >> 32));
        value += step;
      }
    }
  }

 private:
  // dividend / divisor in units of 2^-32, at most one unit too low.
  std::int64_t places(std::int64_t dividend) const {
    auto quotient = static_cast<std::int64_t>(static_cast<double>(dividend) * inverse_);
    std::int64_t rest = dividend - quotient * divisor_;
    while (rest < 0) {
      rest += divisor_;
      --quotient;
    }
    while (rest >= divisor_) {
      rest -= divisor_;
      ++quotient;
    }
    constexpr double one = 0x1p32;
    return quotient * (std::int64_t{1} << 32) + static_cast<std::int64_t>(static_cast<double>(rest) * inverse_ * one);
  }

  int firstRow_ = 0;
  std::int64_t start_ = 0;
  std::int64_t step_ = 0;
  std::int64_t divisor_ = 1;
  double inverse_ = 1;
  std::int64_t placesPerRow_ = 0;
};

// One side of a thick line. From top to bottom: an arc of the upper disc, a straight edge and an arc of the lower disc.
struct Side {
  int straight;  // first row of the edge
  int lower;     // first row of the lower arc
  // The tops of the discs, and the column from which their widths count. Sign -1 is left.
  int upperTop;
  int lowerTop;
  int upperMiddle;
  int lowerMiddle;
  int sign;
  Edge edge;

  // The columns where the rows end. Whatever a block writes beyond its end is overwritten later.
  void trace(const Disc& disc, int firstRow, int endRow, BandSide& columns) const {
    const auto arc = [&](int first, int end, int top, int middle) {
      for (int row = first; row < end; row += blockRows) {
        const std::int8_t* const reach = disc.data() + (row - top);
        int* const column = columns.data() + (row - firstRow);
        for (int i = 0; i < blockRows; ++i) column[i] = middle + sign * reach[i];
      }
    };
    arc(firstRow, std::min({straight, lower, endRow}), upperTop, upperMiddle);
    const int edgeStart = std::max(firstRow, straight);
    const int edgeEnd = std::min(lower, endRow);
    if (edgeStart < edgeEnd) edge.trace(edgeStart, edgeEnd, columns.data() + (edgeStart - firstRow));
    arc(std::max(firstRow, lower), endRow, lowerTop, lowerMiddle);
  }
};

// Compiled twice, with and without wide registers. A tail consists of thousands of short, different lines, and branch
// mispredictions used to dominate. So the ends of all rows are computed first, in blocks without branches, and then the
// rows are filled. The edges run along the normal n of length w: each starts beside the upper end at height n.y and
// ends beside the lower one.
[[gnu::always_inline]] inline void drawThick(const LineTarget& target, LineEnd from, LineEnd to, int width) {
  if (to.y < from.y || (to.y == from.y && to.x < from.x)) std::swap(from, to);
  const int e = 1 - width % 2;
  const int above = width / 2;
  const int below = width - 1 - above;
  const int firstRow = std::max(0, from.y - above);
  const int endRow = std::min(target.height - 1, to.y + below) + 1;
  const Disc& disc = discs[static_cast<std::size_t>(width)];
  const std::int64_t run = to.x - from.x;
  const std::int64_t rise = to.y - from.y;

  // The height of the left normal, -w to w: w run / length. The edges of a horizontal line are its top and bottom rows,
  // which the arcs already cover.
  int normalFloor = width;
  int normalCeiling = width;
  std::int64_t limit = 0;
  if (rise > 0) {
    const std::int64_t square = run * run + rise * rise;
    const double length = std::sqrt(static_cast<double>(square));
    const std::int64_t product = width * std::abs(run);
    // The whole numbers on either side of it. If it is whole itself, arc and edge agree on its row.
    auto low = static_cast<std::int64_t>(static_cast<double>(product) / length);
    while (low * low * square > product * product) --low;
    while ((low + 1) * (low + 1) * square <= product * product) ++low;
    const auto lowRow = static_cast<int>(low);
    normalFloor = run >= 0 ? lowRow : -lowRow - 1;
    normalCeiling = run >= 0 ? lowRow + 1 : -lowRow;
    // |cross product| <= w |segment|, squared, in half pixels.
    const std::int64_t limitSquare = std::int64_t{4} * width * width * square;
    limit = static_cast<std::int64_t>(2 * width * length);
    while (limit * limit > limitSquare) --limit;
    while ((limit + 1) * (limit + 1) <= limitSquare) ++limit;
  }

  const auto makeSide = [&](int sign, int floorHeight, int ceilingHeight) {
    const int shift = sign < 0 ? e : 0;
    Side side{from.y + static_cast<int>(floorDivide(floorHeight - e, 2)) + 1,
              to.y - static_cast<int>(floorDivide(e - ceilingHeight, 2)),
              from.y - above,
              to.y - above,
              from.x - shift,
              to.x - shift,
              sign,
              {}};
    if (rise == 0 || side.straight >= endRow) return side;
    const std::int64_t down = 2 * (std::int64_t{std::max(side.straight, firstRow)} - from.y) + e;
    const std::int64_t roundUp = sign < 0 ? 4 * rise - 1 : 0;
    const std::int64_t start = down * 2 * run + sign * limit - 2 * rise * e + roundUp + 4 * rise * from.x;
    side.edge = Edge(std::max(side.straight, firstRow), start, 4 * run, 4 * rise);
    return side;
  };
  const Side left = makeSide(-1, normalFloor, normalCeiling);
  const Side right = makeSide(1, -normalCeiling, -normalFloor);

  const SpanFiller filler(target.pixel);
  const int lastColumn = target.width - 1;
  const bool isClipped = std::min(from.x, to.x) - above < 0 || std::max(from.x, to.x) + below > lastColumn;
  BandSide leftColumns;
  BandSide rightColumns;
  Pixel* line = target.pixels + std::ptrdiff_t{firstRow} * target.width;
  for (int row = firstRow; row < endRow; row += bandRows) {
    const int end = std::min(row + bandRows, endRow);
    left.trace(disc, row, end, leftColumns);
    right.trace(disc, row, end, rightColumns);
    if (isClipped) {
      for (int i = 0; i < end - row; ++i) {
        leftColumns[static_cast<std::size_t>(i)] = std::max(leftColumns[static_cast<std::size_t>(i)], 0);
        rightColumns[static_cast<std::size_t>(i)] = std::min(rightColumns[static_cast<std::size_t>(i)], lastColumn);
      }
    }
    const int* leftColumn = leftColumns.data();
    const int* rightColumn = rightColumns.data();
    for (int i = 0; i < end - row; ++i, line += target.width) {
      filler.fill(line + leftColumn[i], std::ptrdiff_t{rightColumn[i]} - leftColumn[i] + 1);
    }
  }
}

#if defined(__x86_64__)
[[gnu::target("avx2")]] void drawThickWide(const LineTarget& target, LineEnd from, LineEnd to, int width) {
  drawThick(target, from, to, width);
}
#else
void drawThickWide(const LineTarget&, LineEnd, LineEnd, int) {}
#endif

void drawThickNarrow(const LineTarget& target, LineEnd from, LineEnd to, int width) {
  drawThick(target, from, to, width);
}

}  // namespace

void drawThickLine(const LineTarget& target, LineEnd from, LineEnd to, int width) {
  const auto draw = hasWideRegisters ? drawThickWide : drawThickNarrow;
  draw(target, from, to, width);
}

}  // namespace kelvora
