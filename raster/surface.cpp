#include "raster/surface.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <utility>

#include "raster/spans.h"

namespace kelvora {

namespace {

// A tile is 16 by 8 pixels: a frame with little on it is mostly untouched, and clearing it costs a small part of a full
// clear.
constexpr int tileWidthBits = 4;
constexpr int tileHeightBits = 3;
constexpr int wordBits = 6;  // of the number of tiles in a word

// Pixels that are cleared faster by a few stores of our own than by a call of the C library.
constexpr int longestShortRun = 64;

constexpr int roundedUp(int count, int bits) { return (count + (1 << bits) - 1) >> bits; }

// Pixels in rows, `pitch` apart in memory.
struct Rectangle {
  Pixel* corner;
  std::ptrdiff_t pitch;
  int width;
  int height;
};

#if defined(__x86_64__)
// The compiler's own loop with the widest registers that a desktop's machine may have.
[[gnu::target("avx2")]] void fillWide(Pixel* target, std::ptrdiff_t count, Pixel pixel) {
  for (std::ptrdiff_t i = 0; i < count; ++i) target[i] = pixel;
}
#else
void fillWide(Pixel*, std::ptrdiff_t, Pixel) {}
#endif

void fillLong(Pixel* target, std::ptrdiff_t count, Pixel pixel) {
  if (pixel == 0) {
    std::memset(target, 0, static_cast<std::size_t>(count) * sizeof(Pixel));  // black, as good as always
  } else if (hasWideRegisters) {
    fillWide(target, count, pixel);
  } else {
    std::fill_n(target, count, pixel);
  }
}

void clearRows(Rectangle area, Pixel pixel, const SpanFiller& filler) {
  if (area.width == area.pitch) return fillLong(area.corner, std::ptrdiff_t{area.width} * area.height, pixel);
  for (; area.height > 0; --area.height, area.corner += area.pitch) {
    if (area.width <= longestShortRun) {
      filler.fill(area.corner, area.width);
    } else {
      fillLong(area.corner, area.width, pixel);
    }
  }
}

// `column` and `row` are the area's place in the image, whose top left corner is the picture's.
void restoreRows(Rectangle area, int column, int row, const Picture& picture, const SpanFiller& filler) {
  for (; area.height > 0; --area.height, area.corner += area.pitch, ++row) {
    const int shown = row < picture.height ? std::clamp(picture.width - column, 0, area.width) : 0;
    if (shown > 0) {
      std::copy_n(picture.pixels.data() + std::ptrdiff_t{row} * picture.width + column, shown, area.corner);
    }
    filler.fill(area.corner + shown, area.width - shown);
  }
}

}  // namespace

void Surface::resize(int width, int height) {
  width_ = std::max(0, width);
  height_ = std::max(0, height);
  pixels_.resize(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_));
  wordsAcross_ = roundedUp(roundedUp(width_, tileWidthBits), wordBits);
  touched_.resize(static_cast<std::size_t>(wordsAcross_) *
                  static_cast<std::size_t>(roundedUp(height_, tileHeightBits)));
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
  if (lastTile < firstTile) return;
  const int firstWord = firstTile >> wordBits;
  const int lastWord = lastTile >> wordBits;
  const std::uint64_t fromFirst = ~std::uint64_t{0} << (firstTile & 63);
  const std::uint64_t upToLast = ~std::uint64_t{0} >> (63 - (lastTile & 63));
  for (int row = std::max(0, top) >> tileHeightBits; row <= lastRow; ++row) {
    std::uint64_t* const words = touched_.data() + std::ptrdiff_t{row} * wordsAcross_;
    if (firstWord == lastWord) {
      words[firstWord] |= fromFirst & upToLast;
      continue;
    }
    words[firstWord] |= fromFirst;
    std::fill(words + firstWord + 1, words + lastWord, ~std::uint64_t{0});
    words[lastWord] |= upToLast;
  }
}

// Bits beyond the image's last tile are set along: what they stand for is clipped away.
void Surface::touchAll() { std::fill(touched_.begin(), touched_.end(), ~std::uint64_t{0}); }

void Surface::Cls() {
  if (const Pixel pixel = toPixel(BackColor); pixel != clearedTo_) {
    clearedTo_ = pixel;
    touchAll();
  }
  const SpanFiller filler(clearedTo_);
  std::uint64_t* word = touched_.data();
  for (int row = 0; row < height_; row += 1 << tileHeightBits) {
    for (int wordNumber = 0; wordNumber < wordsAcross_; ++wordNumber) {
      std::uint64_t tiles = std::exchange(*word++, 0);
      while (tiles != 0) {
        const int first = std::countr_zero(tiles);
        const int count = std::countr_one(tiles >> first);
        tiles &= count == 64 ? 0 : ~(((std::uint64_t{1} << count) - 1) << first);
        const int column = ((wordNumber << wordBits) + first) << tileWidthBits;
        const Rectangle area{pixels_.data() + std::ptrdiff_t{row} * width_ + column, width_,
                             std::min(count << tileWidthBits, width_ - column),
                             std::min(1 << tileHeightBits, height_ - row)};
        if (background_) {
          restoreRows(area, column, row, *background_, filler);
        } else {
          clearRows(area, clearedTo_, filler);
        }
      }
    }
  }
  CurrentX = 0;
  CurrentY = 0;
}

}  // namespace kelvora
