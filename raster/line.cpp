#include <algorithm>
#include <cstdlib>
#include <utility>

#include "raster/spans.h"
#include "raster/surface.h"

// A line of width 1 has one pixel in every column (in every row, where it is steeper than 45 degrees): the one nearest
// to the line, halves downward (to the right). The line does not know which end it was drawn from.
//
// A line of width w, 2 to 64, has the pixels whose centres lie within w / 2 of the segment. For an even w the segment
// lies half a pixel up and to the left of its pixels, so that w rows are covered. Everything is reckoned in half pixels
// and whole numbers: the end A of the segment is (2 x - e, 2 y - e) with e = 1 for an even w and 0 for an odd one, the
// pixel is (2 px, 2 py), and the distance is at most w.

namespace kelvora {
namespace {

constexpr int widestPen = 64;

// The pen's disc row by row from its top: how far the row reaches to the right of the pen's pixel. To the left it
// reaches as far plus e. A disc of width w has w rows.
using Disc = std::array<std::int8_t, widestPen>;

constexpr std::array<Disc, widestPen + 1> makeDiscs() {
  std::array<Disc, widestPen + 1> discs{};
  for (int width = 1; width <= widestPen; ++width) {
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

constexpr std::array<Disc, widestPen + 1> discs = makeDiscs();

// A quotient that moves by the same amount from row to row, rounded down. No branch: its steps are hard to foresee.
class SteppedQuotient {
 public:
  SteppedQuotient(std::int64_t dividend, std::int64_t step, std::int64_t divisor)
      : divisor_(divisor), wholeStep_(floorDivide(step, divisor)), restStep_(step - wholeStep_ * divisor) {
    const std::int64_t quotient = floorDivide(dividend, divisor);
    lack_ = dividend - quotient * divisor - divisor;
    value_ = static_cast<int>(quotient);
  }
  int value() const { return value_; }
  void advance() {
    lack_ += restStep_;
    const std::int64_t stay = lack_ >> 63;  // -1 while the rest lacks something to the next whole, else 0
    lack_ -= divisor_ & ~stay;
    value_ += static_cast<int>(wholeStep_ + 1 + stay);
  }

 private:
  std::int64_t divisor_;
  std::int64_t wholeStep_;
  std::int64_t restStep_;
  std::int64_t lack_;  // rest - divisor: -divisor to -1
  int value_;
};

// The side of a disc, a row at a time.
class Arc {
 public:
  // `rowsDown` counts from the top of the disc, `middle` is the pixel the reach is counted from, sign -1 is left.
  Arc(const Disc& disc, int rowsDown, int middle, int sign)
      : reach_(&disc[static_cast<std::size_t>(rowsDown)]), middle_(middle), sign_(sign) {}
  int value() const { return middle_ + sign_ * *reach_; }
  void advance() { ++reach_; }

 private:
  const std::int8_t* reach_;
  int middle_;
  int sign_;
};

// Rows of an image that are filled from one side to the other; the sides are Arc or SteppedQuotient.
class RowFiller {
 public:
  RowFiller(Pixel* pixels, int width, Pixel pixel) : pixels_(pixels), width_(width), filler_(pixel) {}

  template <class Left, class Right>
  void fill(int firstRow, int endRow, Left& left, Right& right) const {
    Left leftSide = left;  // local copies, so that the stores cannot be taken to change them
    Right rightSide = right;
    const SpanFiller filler = filler_;
    const int lastColumn = static_cast<int>(width_) - 1;
    Pixel* line = pixels_ + std::ptrdiff_t{firstRow} * width_;
    for (int row = firstRow; row < endRow; ++row, line += width_) {
      const int start = std::max(0, leftSide.value());
      const int end = std::min(lastColumn, rightSide.value());
      if (start <= end) filler.fill(line + start, end - start + 1);
      leftSide.advance();
      rightSide.advance();
    }
    left = leftSide;
    right = rightSide;
  }

 private:
  Pixel* pixels_;
  std::ptrdiff_t width_;
  SpanFiller filler_;
};

// One axis of a thin line's walk: along it the line takes a step a pixel ("major") or now and then ("minor").
struct Axis {
  std::int64_t start;
  std::int64_t end;
  std::int64_t size;      // of the image, pixels
  std::ptrdiff_t stride;  // pixels in memory from one coordinate to the next
};

void drawThin(Pixel* pixels, Pixel pixel, Axis major, Axis minor) {
  if (major.end < major.start) {
    std::swap(major.start, major.end);
    std::swap(minor.start, minor.end);
  }
  const std::int64_t length = major.end - major.start;
  const std::int64_t rise = minor.end - minor.start;
  const std::int64_t steepness = std::abs(rise);
  // After t steps the minor coordinate is minor.start + floor((2 t rise + length) / (2 length)). The visible steps:
  std::int64_t first = std::max<std::int64_t>(0, -major.start);
  std::int64_t last = std::min(length, major.size - 1 - major.start);
  if (rise == 0) {
    if (minor.start < 0 || minor.start >= minor.size) return;
  } else {
    // In halves of a pixel times length, from the start: the near and the far border of the image.
    const std::int64_t low = -length * (2 * minor.start + 1);
    const std::int64_t high = length * (2 * (minor.size - minor.start) - 1);
    if (rise > 0) {
      first = std::max(first, -floorDivide(-low, 2 * steepness));
      last = std::min(last, floorDivide(high - 1, 2 * steepness));
    } else {
      first = std::max(first, floorDivide(-high, 2 * steepness) + 1);
      last = std::min(last, floorDivide(-low, 2 * steepness));
    }
  }
  if (first > last) return;
  const std::int64_t unit = std::max<std::int64_t>(1, 2 * length);
  const std::int64_t dividend = 2 * first * rise + length;
  const std::int64_t offset = floorDivide(dividend, unit);
  Pixel* target = pixels + (major.start + first) * major.stride + (minor.start + offset) * minor.stride;
  const std::int64_t count = last - first + 1;
  if (rise == 0 && major.stride == 1) {
    SpanFiller(pixel).fill(target, count);
    return;
  }
  // How far the walk is from its next minor step; a falling line counts the same way from the other side.
  std::int64_t error = dividend - offset * unit;
  if (rise < 0) error = unit - 1 - error;
  const std::ptrdiff_t minorStep = rise < 0 ? -minor.stride : minor.stride;
  for (std::int64_t i = 0; i < count; ++i) {
    *target = pixel;
    error += 2 * steepness;
    const bool isStep = error >= unit;
    error -= isStep ? unit : 0;
    target += major.stride + (isStep ? minorStep : 0);
  }
}

}  // namespace

void Surface::Line(float x1, float y1, float x2, float y2) {
  PixelPoint from{toPixels(x1), toPixels(y1)};
  PixelPoint to{toPixels(x2), toPixels(y2)};
  const int width = std::clamp(DrawWidth, 1, widestPen);
  const Pixel pixel = toPixel(ForeColor);
  const int above = width / 2;
  const int below = width - 1 - above;
  if (std::max(from.x, to.x) + below < 0 || std::min(from.x, to.x) - above >= width_) return;
  if (std::max(from.y, to.y) + below < 0 || std::min(from.y, to.y) - above >= height_) return;
  touch(std::min(from.x, to.x) - above, std::min(from.y, to.y) - above, std::max(from.x, to.x) + below,
        std::max(from.y, to.y) + below);
  if (width > 1) {
    drawThick(from, to, width, pixel);
    return;
  }
  const Axis across{from.x, to.x, width_, 1};
  const Axis down{from.y, to.y, height_, width_};
  const bool isFlat = std::abs(to.x - from.x) >= std::abs(to.y - from.y);
  if (isFlat) {
    drawThin(pixels_.data(), pixel, across, down);
  } else {
    drawThin(pixels_.data(), pixel, down, across);
  }
}

// Each side of the shape is, from top to bottom, an arc of the upper disc, a straight edge and an arc of the lower
// disc. The edge lies at the normal n of length w; it starts beside the upper end at height n.y and ends beside the
// lower one.
void Surface::drawThick(PixelPoint from, PixelPoint to, int width, Pixel pixel) {
  if (to.y < from.y || (to.y == from.y && to.x < from.x)) std::swap(from, to);
  const int e = 1 - width % 2;
  const int above = width / 2;
  const int below = width - 1 - above;
  const int firstRow = std::max(0, from.y - above);
  const int lastRow = std::min(height_ - 1, to.y + below);
  const Disc& disc = discs[static_cast<std::size_t>(width)];
  const std::int64_t run = to.x - from.x;
  const std::int64_t rise = to.y - from.y;

  // The height of the left normal, -w to w: w run / length. A level line's edges are its top and bottom rows, which the
  // arcs hold already.
  int normalFloor = width;
  int normalCeiling = width;
  std::int64_t limit = 0;
  if (rise > 0) {
    const std::int64_t square = run * run + rise * rise;
    const std::int64_t widthSquare = std::int64_t{width} * width;
    // The whole numbers on either side of it. Where it is whole itself, arc and edge agree on its row.
    const auto low = static_cast<int>(wholeRoot(widthSquare * run * run / square));
    const int high = low + 1;
    normalFloor = run >= 0 ? low : -high;
    normalCeiling = run >= 0 ? high : -low;
    // |cross product| <= w |segment|, squared, in half pixels.
    limit = wholeRoot(4 * widthSquare * square);
  }

  // Where the arcs of the two sides end and start, and the edges between them.
  struct Side {
    int sign;      // -1 left, 1 right
    int straight;  // first row of the edge
    int lower;     // first row of the lower arc
    SteppedQuotient edge;
  };
  const auto makeSide = [&](int sign, int floorHeight, int ceilingHeight) {
    const int straight = from.y + static_cast<int>(floorDivide(floorHeight - e, 2)) + 1;
    const int lower = to.y - static_cast<int>(floorDivide(e - ceilingHeight, 2));
    if (rise == 0 || straight > lastRow) return Side{sign, straight, lower, SteppedQuotient(0, 0, 1)};
    const std::int64_t down = 2 * (std::int64_t{std::max(straight, firstRow)} - from.y) + e;
    const std::int64_t roundUp = sign < 0 ? 4 * rise - 1 : 0;
    const std::int64_t dividend = down * 2 * run + sign * limit - 2 * rise * e + roundUp + 4 * rise * from.x;
    return Side{sign, straight, lower, SteppedQuotient(dividend, 4 * run, 4 * rise)};
  };
  Side left = makeSide(-1, normalFloor, normalCeiling);
  Side right = makeSide(1, -normalCeiling, -normalFloor);

  const RowFiller rows(pixels_.data(), width_, pixel);
  for (int row = firstRow; row <= lastRow;) {
    int end = lastRow + 1;
    for (const int border : {left.straight, left.lower, right.straight, right.lower}) {
      if (border > row) end = std::min(end, border);
    }
    const auto arc = [&](const Side& side) {
      const PixelPoint centre = row < side.lower ? from : to;
      return Arc(disc, row - centre.y + above, centre.x - (side.sign < 0 ? e : 0), side.sign);
    };
    const auto isStraight = [&](const Side& side) { return row >= side.straight && row < side.lower; };
    const auto fillTo = [&](auto&& rightSide) {
      if (isStraight(left)) {
        rows.fill(row, end, left.edge, rightSide);
      } else {
        Arc leftSide = arc(left);
        rows.fill(row, end, leftSide, rightSide);
      }
    };
    if (isStraight(right)) {
      fillTo(right.edge);
    } else {
      fillTo(arc(right));
    }
    row = end;
  }
}

}  // namespace kelvora
