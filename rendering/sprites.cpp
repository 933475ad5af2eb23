#include "rendering/sprites.h"

namespace kelvora {

void paintSprite(Surface& surface, const Cell& matte, const Cell& image, const Place& place,
                 SpriteOperations operations) {
  surface.PaintPicture(matte.sheet.cells(), place.left, place.top, place.width, place.height, matte.left, matte.top,
                       operations.matte);
  surface.PaintPicture(image.sheet.cells(), place.left, place.top, place.width, place.height, image.left, image.top,
                       operations.image);
}

}  // namespace kelvora
