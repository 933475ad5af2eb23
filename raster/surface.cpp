#include "raster/surface.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <utility>

#include "raster/copyRows.h"
#include "raster/spans.h"

namespace kelvora {

namespace {

// A tile is 16 by 8 pixels. A frame with little on it is mostly untouched, so clearing it costs a small part of a full
// clear.
constexpr int tileWidthBits = std::countr_zero(unsigned{Surface::tileWidth});
constexpr int tileHeightBits = 3;
constexpr int tileHeight = 1 << tileHeightBits;
constexpr int wordTiles = 64;  // tiles per word of bits
constexpr int wordWidthBits = tileWidthBits + 6;

// Pixels that a few stores clear faster than a call of the C library.
constexpr int shortRunLimit = 64;

constexpr int maxScatteredTiles = 16;  // per word

constexpr int roundedUp(int count, int bits) { return (count + (1 << bits) - 1) >> bits; }

struct TileRun {
  int first;
  int count;
};

// The first run of neighbouring tiles, whose bits it clears. There must be one.
TileRun takeRun(std::uint64_t& tiles) {
  const int first = std::countr_zero(tiles);
  const int count = std::countr_one(tiles >> first);
  tiles &= count == wordTiles ? 0 : ~(((std::uint64_t{1} << count) - 1) << first);
  return {first, count};
}

// Pixels in rows, `pitch` apart in memory.
struct Rectangle {
  Pixel* corner;
  std::ptrdiff_t pitch;
  int width;
  int height;
};

#if defined(__x86_64__)
// The compiler's own loop with the widest registers that a desktop is likely to have.
[[gnu::target("avx2")]] void fillWide(Pixel* target, std::ptrdiff_t count, Pixel pixel) {
  for (std::ptrdiff_t i = 0; i < count; ++i) target[i] = pixel;
}
#else
void fillWide(Pixel*, std::ptrdiff_t, Pixel) {}
#endif

#if defined(__wasm_simd128__)
constexpr bool isMemsetFast = false;  // the browser's stores words
#else
constexpr bool isMemsetFast = true;
#endif

void fillLong(Pixel* target, std::ptrdiff_t count, Pixel pixel) {
  if (isMemsetFast && pixel == 0) {
    std::memset(target, 0, static_cast<std::size_t>(count) * sizeof(Pixel));  // black, the usual case
  } else if (hasWideRegisters) {
    fillWide(target, count, pixel);
  } else {
    std::fill_n(target, count, pixel);
  }
}

void clearRows(Rectangle area, Pixel pixel, const SpanFiller& filler) {
  if (area.width == area.pitch) return fillLong(area.corner, std::ptrdiff_t{area.width} * area.height, pixel);
  for (; area.height > 0; --area.height, area.corner += area.pitch) {
    if (area.width <= shortRunLimit) {
      filler.fill(area.corner, area.width);
    } else {
      fillLong(area.corner, area.width, pixel);
    }
  }
}

// Clears whole tiles, one bit each, from `corner` to the right. Particles leave scattered tiles: clearing them one by
// one, always with the same stores, is cheaper than predicting where runs end.
[[gnu::always_inline]] inline void clearTiles(std::uint64_t tiles, Pixel* corner, std::ptrdiff_t pitch, Pixel pixel) {
  const SpanFiller filler(pixel);
  for (; tiles != 0; tiles &= tiles - 1) {
    Pixel* line = corner + (std::ptrdiff_t{std::countr_zero(tiles)} << tileWidthBits);
    for (int row = 0; row < tileHeight; ++row, line += pitch) filler.fill(line, Surface::tileWidth);
  }
}

#if defined(__x86_64__)
[[gnu::target("avx2")]] void clearTilesWide(std::uint64_t tiles, Pixel* corner, std::ptrdiff_t pitch, Pixel pixel) {
  clearTiles(tiles, corner, pitch, pixel);
}
#else
void clearTilesWide(std::uint64_t, Pixel*, std::ptrdiff_t, Pixel) {}
#endif
void clearTilesNarrow(std::uint64_t tiles, Pixel* corner, std::ptrdiff_t pitch, Pixel pixel) {
  clearTiles(tiles, corner, pitch, pixel);
}

// `column` and `row` are the area's position in the image. The picture is at the image's top left corner.
void restoreRows(Rectangle area, int column, int row, const Picture& picture, Pixel pixel, const SpanFiller& filler) {
  const int width = std::clamp(picture.width - column, 0, area.width);
  const int height = width > 0 ? std::clamp(picture.height - row, 0, area.height) : 0;
  if (height > 0) {
    const Pixel* const source = picture.pixels.data() + std::ptrdiff_t{row} * picture.width + column;
    copyRows({area.corner, area.pitch, source, picture.width, width, height});
  }
  clearRows({area.corner + width, area.pitch, area.width - width, height}, pixel, filler);
  clearRows({area.corner + height * area.pitch, area.pitch, area.width, area.height - height}, pixel, filler);
}

}  // namespace

void Surface::resize(int width, int height) {
  width_ = std::max(0, width);
  height_ = std::max(0, height);
  pixels_ = {};  // frees the old image before allocating the new one
  pixels_ = PixelStore(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_));
  clearedTo_ = 0;
  wordsAcross_ = roundedUp(width_, wordWidthBits);
  const auto words =
      static_cast<std::size_t>(wordsAcross_) * static_cast<std::size_t>(roundedUp(height_, tileHeightBits));
  touched_.assign(words, 0);
  taken_.assign(words, ~std::uint64_t{0});
  smallDiscs_.clear();
  showsBackground_ = false;
  if (background_) touchAll();
  Cls();
}

void Surface::setBackground(PicturePointer picture) {
  background_ = std::move(picture);
  smallDiscs_.clear();
  touchAll();
  showsBackground_ = background_ && background_->width == width_ && background_->height == height_;
  if (showsBackground_) {
    const std::size_t size = pixels_.all().size();
    pixels_ = {};  // frees the old image
    pixels_ = PixelStore(size);
    std::fill(touched_.begin(), touched_.end(), 0);
  }
  Cls();
}

void Surface::copyBackground() {
  showsBackground_ = false;
  std::copy(background_->pixels.begin(), background_->pixels.end(), pixels_.data());
}

void Surface::mark(std::vector<std::uint64_t>& tiles, int left, int top, int right, int bottom) const {
  const int firstTile = std::max(0, left) >> tileWidthBits;
  const int lastTile = std::min(right, width_ - 1) >> tileWidthBits;
  const int firstRow = std::max(0, top) >> tileHeightBits;
  const int lastRow = std::min(bottom, height_ - 1) >> tileHeightBits;
  if (lastTile < firstTile || lastRow < firstRow) return;
  const int firstWord = firstTile / wordTiles;
  const int lastWord = lastTile / wordTiles;
  const std::uint64_t fromFirst = ~std::uint64_t{0} << (firstTile % wordTiles);
  const std::uint64_t upToLast = ~std::uint64_t{0} >> (wordTiles - 1 - lastTile % wordTiles);
  std::uint64_t* words = tiles.data() + std::ptrdiff_t{firstRow} * wordsAcross_;
  if (firstWord == lastWord && lastRow - firstRow <= 1) {
    // One or two rows of tiles, as for every particle: no loop to mispredict.
    words[firstWord] |= fromFirst & upToLast;
    words[firstWord + (lastRow - firstRow) * wordsAcross_] |= fromFirst & upToLast;
    return;
  }
  for (int row = firstRow; row <= lastRow; ++row, words += wordsAcross_) {
    if (firstWord == lastWord) {
      words[firstWord] |= fromFirst & upToLast;
      continue;
    }
    words[firstWord] |= fromFirst;
    std::fill(words + firstWord + 1, words + lastWord, ~std::uint64_t{0});
    words[lastWord] |= upToLast;
  }
}

// Also sets bits beyond the image's last tile. Their pixels are clipped.
void Surface::touchAll() {
  std::fill(touched_.begin(), touched_.end(), ~std::uint64_t{0});
  std::fill(taken_.begin(), taken_.end(), ~std::uint64_t{0});
}

std::span<const PixelArea> Surface::takeChanges() {
  drawn_ = touched_;
  for (const SmallDisc& disc : smallDiscs_) {
    const int x = disc.centre % width_;
    const int y = disc.centre / width_;
    mark(drawn_, x - disc.radius, y - disc.radius, x + disc.radius, y + disc.radius);
  }
  changes_.clear();
  const std::uint64_t* drawn = drawn_.data();
  const std::uint64_t* taken = taken_.data();
  for (int row = 0; row < height_; row += tileHeight) {
    for (int firstTile = 0; firstTile << tileWidthBits < width_; firstTile += wordTiles) {
      std::uint64_t tiles = *drawn++ | *taken++;
      while (tiles != 0) {
        const TileRun run = takeRun(tiles);
        const int x = (firstTile + run.first) << tileWidthBits;
        const int end = std::min(x + (run.count << tileWidthBits), width_);
        if (end <= x) break;
        joinOrAppend(changes_, {x, row, end - x, std::min(tileHeight, height_ - row)});
      }
    }
  }
  std::swap(drawn_, taken_);
  return changes_;
}

void Surface::clearTouched(int row, std::uint64_t* words) {
  const int height = std::min(tileHeight, height_ - row);
  Pixel* const line = pixels_.data() + std::ptrdiff_t{row} * width_;
  for (int firstTile = 0; firstTile << tileWidthBits < width_; firstTile += wordTiles) {
    std::uint64_t tiles = std::exchange(*words++, 0);
    if (tiles == 0) continue;
    const int endTile = firstTile + wordTiles - std::countl_zero(tiles);
    const bool areWhole = endTile << tileWidthBits <= width_ && height == tileHeight;
    if (!background_ && areWhole && std::popcount(tiles) <= maxScatteredTiles) {
      const auto clear = hasWideRegisters ? clearTilesWide : clearTilesNarrow;
      clear(tiles, line + (firstTile << tileWidthBits), width_, clearedTo_);
      continue;
    }
    const SpanFiller filler(clearedTo_);
    while (tiles != 0) {
      const TileRun run = takeRun(tiles);
      const int column = (firstTile + run.first) << tileWidthBits;
      const Rectangle area{line + column, width_, std::min(run.count << tileWidthBits, width_ - column), height};
      if (background_) {
        restoreRows(area, column, row, *background_, clearedTo_, filler);
      } else {
        clearRows(area, clearedTo_, filler);
      }
    }
  }
}

void Surface::Cls() {
  if (const Pixel pixel = toPixel(BackColor); pixel != clearedTo_) {
    clearedTo_ = pixel;
    touchAll();
  }
  const auto isFull = [this](const std::uint64_t* words) {
    const std::uint64_t beyond = ~std::uint64_t{1} << (roundedUp(width_, tileWidthBits) - 1) % wordTiles;
    return std::all_of(words, words + wordsAcross_ - 1, [](std::uint64_t tiles) { return ~tiles == 0; }) &&
           ~(words[wordsAcross_ - 1] | beyond) == 0;
  };
  for (int row = 0; row < height_ && width_ > 0;) {
    std::uint64_t* words = touched_.data() + std::ptrdiff_t{row >> tileHeightBits} * wordsAcross_;
    int end = row;
    for (; !background_ && end < height_ && isFull(words); end += tileHeight)
      words = std::fill_n(words, wordsAcross_, 0);
    if (end == row) {
      clearTouched(row, words);
      row += tileHeight;
    } else {
      end = std::min(end, height_);
      fillLong(pixels_.data() + std::ptrdiff_t{row} * width_, std::ptrdiff_t{end - row} * width_, clearedTo_);
      row = end;
    }
  }
  clearSmallDiscs();
  CurrentX = 0;
  CurrentY = 0;
}

}  // namespace kelvora
