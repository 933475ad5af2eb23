#include <algorithm>
#include <cstddef>
#include <cstring>

#include "raster/copyRows.h"
#include "raster/spans.h"
#include "raster/surface.h"

namespace kelvora {
namespace {

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

// By reference, because each machine returns wide values differently.
template <RasterOperation operation, class Value>
[[gnu::always_inline]] inline void join(Value& result, const Pixel* target, const Pixel* source) {
  std::memcpy(&result, source, sizeof(Value));
  if constexpr (operation == SRCCOPY) return;
  Value below;
  std::memcpy(&below, target, sizeof(Value));
  if constexpr (operation == SRCAND) result &= below;
  if constexpr (operation == SRCPAINT) result |= below;
}

// Copies whole blocks, the last of which overlaps the one before. Combining the shared pixels twice changes nothing.
// The last block is read before the row is written, because reading across two recent stores stalls.
template <RasterOperation operation, class Block>
[[gnu::always_inline]] inline void joinBlocks(Rows rows) {
  constexpr auto blockWidth = static_cast<std::ptrdiff_t>(sizeof(Block) / sizeof(Pixel));
  const std::ptrdiff_t last = rows.width - blockWidth;
  for (; rows.height > 0; --rows.height, rows.target += rows.targetPitch, rows.source += rows.sourcePitch) {
    Block end;
    join<operation>(end, rows.target + last, rows.source + last);
    for (std::ptrdiff_t i = 0; i < last; i += blockWidth) {
      Block block;
      join<operation>(block, rows.target + i, rows.source + i);
      std::memcpy(rows.target + i, &block, sizeof(Block));
    }
    std::memcpy(rows.target + last, &end, sizeof(Block));
  }
}

#if defined(__x86_64__)
using WideBlock [[gnu::vector_size(2 * sizeof(Block))]] = Pixel;
const bool hasWidestRegisters = __builtin_cpu_supports("avx512f") != 0;

template <RasterOperation operation>
[[gnu::target("avx512f")]] void joinWidest(const Rows& rows) {
  joinBlocks<operation, WideBlock>(rows);
}
template <RasterOperation operation>
[[gnu::target("avx2")]] void joinWide(const Rows& rows) {
  joinBlocks<operation, Block>(rows);
}
#endif

template <RasterOperation operation>
void joinRows(const Rows& rows) {
#if defined(__x86_64__)
  if (hasWidestRegisters && rows.width >= 2 * blockWidth) return joinWidest<operation>(rows);
  if (hasWideRegisters && rows.width >= blockWidth) return joinWide<operation>(rows);
#endif
  if (rows.width >= blockWidth) return joinBlocks<operation, Block>(rows);
  for (int row = 0; row < rows.height; ++row) {
    for (int i = 0; i < rows.width; ++i) {
      Pixel* const target = rows.target + row * rows.targetPitch + i;
      Pixel pixel;
      join<operation>(pixel, target, rows.source + row * rows.sourcePitch + i);
      *target = pixel;
    }
  }
}

}  // namespace

void copyRows(const Rows& rows) { joinRows<SRCCOPY>(rows); }

void Surface::PaintPicture(const Picture& source, float x, float y, float w, float h, float sx, float sy,
                           RasterOperation operation) {
  const Stretch across = clipped({toPixels(x), toPixels(sx), toPixels(w)}, width_, source.width);
  const Stretch down = clipped({toPixels(y), toPixels(sy), toPixels(h)}, height_, source.height);
  if (across.count <= 0 || down.count <= 0) return;
  touch(across.target, down.target, across.target + across.count - 1, down.target + down.count - 1);
  const Rows rows{pixels_.data() + std::ptrdiff_t{down.target} * width_ + across.target,
                  width_,
                  source.pixels.data() + std::ptrdiff_t{down.source} * source.width + across.source,
                  source.width,
                  across.count,
                  down.count};
  switch (operation) {
    case SRCAND:
      return joinRows<SRCAND>(rows);
    case SRCPAINT:
      return joinRows<SRCPAINT>(rows);
    case SRCCOPY:
      return copyRows(rows);
  }
}

}  // namespace kelvora
