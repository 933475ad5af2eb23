#include "raster/surface.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

namespace kelvora {

namespace {

// A tile is 32 by 8 pixels: a frame with little on it is mostly untouched, and clearing it costs a tenth of a full
// clear.
constexpr int tileWidthBits = 5;
constexpr int tileHeightBits = 3;

constexpr int tilesFor(int pixels, int bits) { return (pixels + (1 << bits) - 1) >> bits; }

void fillSpan(Pixel* target, std::ptrdiff_t count, Pixel pixel) {
  // Black, as good as always: the C library's stores are twice as wide as those a compiler may count on.
  if (pixel == 0) {
    std::memset(target, 0, static_cast<std::size_t>(count) * sizeof(Pixel));
  } else {
    std::fill_n(target, count, pixel);
  }
}

}  // namespace

void Surface::resize(int width, int height) {
  width_ = std::max(0, width);
  height_ = std::max(0, height);
  pixels_.resize(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_));
  tilesAcross_ = tilesFor(width_, tileWidthBits);
  touched_.resize(static_cast<std::size_t>(tilesAcross_) * static_cast<std::size_t>(tilesFor(height_, tileHeightBits)));
  touchAll();
  Cls();
}

void Surface::setBackground(PicturePointer picture) {
  background_ = std::move(picture);
  touchAll();
  Cls();
}

void Surface::touch(int left, int top, int right, int bottom) {
  const int firstTile = std::max(0, left) >> tileWidthBits;
  const int lastTile = std::min(right, width_ - 1) >> tileWidthBits;
  const int lastRow = std::min(bottom, height_ - 1) >> tileHeightBits;
  for (int row = std::max(0, top) >> tileHeightBits; row <= lastRow; ++row) {
    std::uint8_t* const tiles = touched_.data() + std::ptrdiff_t{row} * tilesAcross_;
    for (int tile = firstTile; tile <= lastTile; ++tile) tiles[tile] = 1;
  }
}

void Surface::touchAll() { std::fill(touched_.begin(), touched_.end(), std::uint8_t{1}); }

void Surface::clearRows(int firstRow, int endRow, int firstColumn, int endColumn) {
  const int pictureEnd = background_ ? std::min(endColumn, background_->width) : 0;
  for (int row = firstRow; row < endRow; ++row) {
    Pixel* const line = pixels_.data() + std::ptrdiff_t{row} * width_;
    int column = firstColumn;
    if (column < pictureEnd && row < background_->height) {
      const Pixel* const source = background_->pixels.data() + std::ptrdiff_t{row} * background_->width;
      std::copy(source + column, source + pictureEnd, line + column);
      column = pictureEnd;
    }
    if (column < endColumn) fillSpan(line + column, endColumn - column, clearedTo_);
  }
}

void Surface::Cls() {
  if (const Pixel pixel = toPixel(BackColor); pixel != clearedTo_) {
    clearedTo_ = pixel;
    touchAll();
  }
  std::uint8_t* tiles = touched_.data();
  for (int row = 0; row < height_; row += 1 << tileHeightBits, tiles += tilesAcross_) {
    const int endRow = std::min(row + (1 << tileHeightBits), height_);
    for (int tile = 0; tile < tilesAcross_;) {
      if (tiles[tile] == 0) {
        ++tile;
        continue;
      }
      const int first = tile;
      while (tile < tilesAcross_ && tiles[tile] != 0) tiles[tile++] = 0;
      clearRows(row, endRow, first << tileWidthBits, std::min(tile << tileWidthBits, width_));
    }
  }
  CurrentX = 0;
  CurrentY = 0;
}

}  // namespace kelvora
