#include "rendering/sprites.h"

namespace kelvora {

void paintSprite(Surface& surface, const Cell& matte, const Cell& image, const Place& place,
                 SpriteOperations operations) {
  surface.PaintSprite({matte.sheet.cells(), matte.left, matte.top, operations.matte},
                      {image.sheet.cells(), image.left, image.top, operations.image}, place.left, place.top,
                      place.width, place.height);
}

}  // namespace kelvora
