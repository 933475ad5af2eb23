#include "raster/opaqueRows.h"

namespace kelvora {
namespace {

constexpr Pixel opaque = 0xFF000000;

}  // namespace

void copyOpaque(const Rows& rows) {
  const Pixel* source = rows.source;
  Pixel* target = rows.target;
  for (int row = 0; row < rows.height; ++row, source += rows.sourcePitch, target += rows.targetPitch) {
    for (int column = 0; column < rows.width; ++column) target[column] = source[column] | opaque;
  }
}

bool isOpaqueCopy(const Rows& rows) {
  const Pixel* source = rows.source;
  const Pixel* target = rows.target;
  Pixel difference = 0;
  for (int row = 0; row < rows.height; ++row, source += rows.sourcePitch, target += rows.targetPitch) {
    for (int column = 0; column < rows.width; ++column) difference |= (source[column] | opaque) ^ target[column];
  }
  return difference == 0;
}

}  // namespace kelvora
