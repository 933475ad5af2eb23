#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

#include "raster/copyRows.h"
#include "raster/spans.h"
#include "raster/surface.h"

namespace kelvora {
namespace {

struct SourceRows {
  const Pixel* first;
  std::ptrdiff_t pitch;
};

struct TargetRows {
  Pixel* first;
  std::ptrdiff_t pitch;
  int width;
  int height;
};

// The rows that each operation copies.
template <RasterOperation... operations>
using Sources = std::array<SourceRows, sizeof...(operations)>;

// By reference, because each machine returns wide values differently.
template <RasterOperation operation, class Value>
[[gnu::always_inline]] inline void combine(Value& result, const Pixel* source) {
  Value pixels;
  std::memcpy(&pixels, source, sizeof(Value));
  if constexpr (operation == SRCCOPY) result = pixels;
  if constexpr (operation == SRCAND) result &= pixels;
  if constexpr (operation == SRCPAINT) result |= pixels;
}

template <RasterOperation... operations, class Value>
[[gnu::always_inline]] inline void combineAll(Value& result, const Pixel* target, const Sources<operations...>& sources,
                                              std::ptrdiff_t column) {
  std::memcpy(&result, target + column, sizeof(Value));
  std::size_t i = 0;
  (combine<operations>(result, sources[i++].first + column), ...);
}

// Copies whole blocks, the last of which overlaps the one before. It is read before the row is written, because reading
// across two recent stores stalls. There must be at least a block in a row.
template <class Block, RasterOperation... operations>
[[gnu::always_inline]] inline void copyBlocks(TargetRows target, Sources<operations...> sources) {
  constexpr auto width = static_cast<std::ptrdiff_t>(sizeof(Block) / sizeof(Pixel));
  const std::ptrdiff_t last = target.width - width;
  for (; target.height > 0; --target.height) {
    Block end;
    combineAll<operations...>(end, target.first, sources, last);
    for (std::ptrdiff_t i = 0; i < last; i += width) {
      Block block;
      combineAll<operations...>(block, target.first, sources, i);
      std::memcpy(target.first + i, &block, sizeof(Block));
    }
    std::memcpy(target.first + last, &end, sizeof(Block));
    target.first += target.pitch;
    for (SourceRows& source : sources) source.first += source.pitch;
  }
}

using OnePixel [[gnu::vector_size(sizeof(Pixel))]] = Pixel;

#if defined(__x86_64__)
using WideBlock [[gnu::vector_size(2 * sizeof(Block))]] = Pixel;
const bool hasWidestRegisters = __builtin_cpu_supports("avx512f") != 0;

template <RasterOperation... operations>
[[gnu::target("avx512f")]] void copyWidest(const TargetRows& target, const Sources<operations...>& sources) {
  copyBlocks<WideBlock, operations...>(target, sources);
}
template <RasterOperation... operations>
[[gnu::target("avx2")]] void copyWide(const TargetRows& target, const Sources<operations...>& sources) {
  copyBlocks<Block, operations...>(target, sources);
}
#endif

template <RasterOperation... operations>
void copy(const TargetRows& target, const Sources<operations...>& sources) {
#if defined(__x86_64__)
  if (hasWidestRegisters && target.width >= 2 * blockWidth) return copyWidest<operations...>(target, sources);
  if (hasWideRegisters && target.width >= blockWidth) return copyWide<operations...>(target, sources);
#endif
  if (target.width >= blockWidth) return copyBlocks<Block, operations...>(target, sources);
  copyBlocks<OnePixel, operations...>(target, sources);
}

// One axis of a copy: the start on either side and the number of pixels.
struct Stretch {
  int target;
  int source;
  int count;
};

Stretch clipped(Stretch stretch, int targetSize, int sourceSize) {
  const int cut = std::max({0, -stretch.target, -stretch.source});
  stretch.target += cut;
  stretch.source += cut;
  stretch.count = std::min({stretch.count - cut, targetSize - stretch.target, sourceSize - stretch.source});
  return stretch;
}

// A copy after clipping. Its area is empty if nothing is left.
struct Clip {
  PixelArea area{};
  SourceRows source{};
};

Clip clipped(const Surface& surface, const PixelArea& place, const Picture& source, float left, float top) {
  const Stretch across = clipped({place.x, toPixels(left), place.width}, surface.pixelWidth(), source.width);
  const Stretch down = clipped({place.y, toPixels(top), place.height}, surface.pixelHeight(), source.height);
  if (across.count <= 0 || down.count <= 0) return {};
  return {{across.target, down.target, across.count, down.count},
          {source.pixels.data() + std::ptrdiff_t{down.source} * source.width + across.source, source.width}};
}

}  // namespace

void copyRows(const Rows& rows) {
  copy<SRCCOPY>({rows.target, rows.targetPitch, rows.width, rows.height}, {{{rows.source, rows.sourcePitch}}});
}

void Surface::PaintPicture(const Picture& source, float x, float y, float w, float h, float sx, float sy,
                           RasterOperation operation) {
  const auto [area, rows] = clipped(*this, {toPixels(x), toPixels(y), toPixels(w), toPixels(h)}, source, sx, sy);
  if (area.width == 0) return;
  touch(area.x, area.y, area.x + area.width - 1, area.y + area.height - 1);
  const TargetRows target{pixels_.data() + std::ptrdiff_t{area.y} * width_ + area.x, width_, area.width, area.height};
  switch (operation) {
    case SRCAND:
      return copy<SRCAND>(target, {{rows}});
    case SRCPAINT:
      return copy<SRCPAINT>(target, {{rows}});
    case SRCCOPY:
      return copy<SRCCOPY>(target, {{rows}});
  }
}

void Surface::PaintSprite(const SpriteCopy& matte, const SpriteCopy& image, float x, float y, float w, float h) {
  const PixelArea place{toPixels(x), toPixels(y), toPixels(w), toPixels(h)};
  const Clip first = clipped(*this, place, matte.source, matte.left, matte.top);
  const Clip second = clipped(*this, place, image.source, image.left, image.top);
  const bool isNormal = matte.operation == SRCAND && image.operation == SRCPAINT;
  const bool isExchanged = matte.operation == SRCPAINT && image.operation == SRCAND;
  if (first.area != second.area || !(isNormal || isExchanged)) {
    PaintPicture(matte.source, x, y, w, h, matte.left, matte.top, matte.operation);
    PaintPicture(image.source, x, y, w, h, image.left, image.top, image.operation);
    return;
  }
  const PixelArea& area = first.area;
  if (area.width == 0) return;
  touch(area.x, area.y, area.x + area.width - 1, area.y + area.height - 1);
  const TargetRows target{pixels_.data() + std::ptrdiff_t{area.y} * width_ + area.x, width_, area.width, area.height};
  const auto copyBoth = isNormal ? copy<SRCAND, SRCPAINT> : copy<SRCPAINT, SRCAND>;
  copyBoth(target, {first.source, second.source});
}

}  // namespace kelvora
