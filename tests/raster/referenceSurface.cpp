#include "tests/raster/referenceSurface.h"

#include <cstdlib>

namespace kelvora {
namespace {

// Squares of products of far coordinates need more than 64 bits.
__extension__ using Wide = __int128;

struct Point {
  Wide x;
  Wide y;
};

Wide dot(Point a, Point b) { return a.x * b.x + a.y * b.y; }
Wide cross(Point a, Point b) { return a.x * b.y - a.y * b.x; }
Point minus(Point a, Point b) { return {a.x - b.x, a.y - b.y}; }

// True, all in half pixels, if the distance of p from the segment a b is at most `distance`.
bool isNear(Point p, Point a, Point b, Wide distance) {
  const Point along = minus(b, a);
  const Point fromA = minus(p, a);
  const Point fromB = minus(p, b);
  if (dot(fromA, along) <= 0) return dot(fromA, fromA) <= distance * distance;
  if (dot(fromB, along) >= 0) return dot(fromB, fromB) <= distance * distance;
  const Wide product = cross(fromA, along);
  return product * product <= distance * distance * dot(along, along);
}

// Width 1, at most 45 degrees: above column x the line's height is y1 + (x - x1) dy / dx. The pixel is the nearest one
// if 2 (height - y) is at least -1 and below 1: halves belong to the pixel below.
bool isNearestInColumn(Wide x, Wide y, Point a, Point b) {
  if (a.x > b.x) std::swap(a, b);
  if (x < a.x || x > b.x) return false;
  if (a.x == b.x) return y == a.y;
  const Wide run = b.x - a.x;
  const Wide doubled = 2 * ((a.y - y) * run + (x - a.x) * (b.y - a.y));
  return doubled >= -run && doubled < run;
}

}  // namespace

ReferenceSurface::ReferenceSurface(int width, int height, Pixel background)
    : width_(width), height_(height), pixels_(static_cast<std::size_t>(width * height), background) {}

Pixel& ReferenceSurface::at(int x, int y) { return pixels_.at(static_cast<std::size_t>(y * width_ + x)); }

void ReferenceSurface::line(int x1, int y1, int x2, int y2, int width, Pixel pixel) {
  const int shift = width % 2 == 0 ? 1 : 0;
  const Point a{2 * x1 - shift, 2 * y1 - shift};
  const Point b{2 * x2 - shift, 2 * y2 - shift};
  const bool isFlat = std::abs(x2 - x1) >= std::abs(y2 - y1);
  for (int y = 0; y < height_; ++y) {
    for (int x = 0; x < width_; ++x) {
      bool covers = false;
      if (width > 1) {
        covers = isNear({2 * x, 2 * y}, a, b, width);
      } else if (isFlat) {
        covers = isNearestInColumn(x, y, {x1, y1}, {x2, y2});
      } else {
        covers = isNearestInColumn(y, x, {y1, x1}, {y2, x2});
      }
      if (covers) at(x, y) = pixel;
    }
  }
}

void ReferenceSurface::circle(int x, int y, int radius, Pixel outline, Pixel inside) {
  // dx dx + dy dy < (radius + 1/2) squared, times four.
  const auto covers = [&](Wide column, Wide row) {
    const Wide dx = column - x;
    const Wide dy = row - y;
    const Wide reach = 2 * Wide{radius} + 1;
    return radius >= 0 && 4 * (dx * dx + dy * dy) < reach * reach;
  };
  for (int row = 0; row < height_; ++row) {
    for (int column = 0; column < width_; ++column) {
      if (!covers(column, row)) continue;
      const bool isSurrounded =
          covers(column - 1, row) && covers(column + 1, row) && covers(column, row - 1) && covers(column, row + 1);
      at(column, row) = isSurrounded ? inside : outline;
    }
  }
}

void ReferenceSurface::copy(const Picture& source, int x, int y, int w, int h, int sx, int sy,
                            RasterOperation operation) {
  for (int row = 0; row < height_; ++row) {
    for (int column = 0; column < width_; ++column) {
      const int cellX = column - x;
      const int cellY = row - y;
      if (cellX < 0 || cellX >= w || cellY < 0 || cellY >= h) continue;
      const int fromX = sx + cellX;
      const int fromY = sy + cellY;
      if (fromX < 0 || fromX >= source.width || fromY < 0 || fromY >= source.height) continue;
      const Pixel from = source.pixels.at(static_cast<std::size_t>(fromY * source.width + fromX));
      Pixel& to = at(column, row);
      if (operation == SRCAND) to &= from;
      if (operation == SRCPAINT) to |= from;
      if (operation == SRCCOPY) to = from;
    }
  }
}

std::string drawing(const Surface& surface) {
  std::string text;
  const auto width = static_cast<std::size_t>(surface.pixelWidth());
  for (std::size_t i = 0; i < surface.pixels().size(); ++i) {
    text += surface.pixels()[i] == 0 ? '.' : '#';
    if ((i + 1) % width == 0) text += '\n';
  }
  return text;
}

std::string difference(const Surface& surface, const ReferenceSurface& reference) {
  const auto pixels = surface.pixels();
  if (pixels.size() != reference.pixels().size()) return "other size";
  const auto width = static_cast<std::size_t>(reference.width());
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    if (pixels[i] == reference.pixels()[i]) continue;
    return "pixel " + std::to_string(i % width) + ", " + std::to_string(i / width) + " is " +
           std::to_string(pixels[i]) + " and should be " + std::to_string(reference.pixels()[i]);
  }
  return "";
}

}  // namespace kelvora
