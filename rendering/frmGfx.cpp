#include "rendering/frmGfx.h"

#include "platform/backend.h"
#include "raster/twips.h"

namespace kelvora {

FormSlot<FrmGfx> frmGfx;

SheetImage::SheetImage(Control* container, const std::string& name) : Image(container, {}) {
  Picture = LoadPicture(applicationPath() + "/assets/" + name + ".png");
  Width = static_cast<float>(cells().width * twipsPerPixel);
  Height = static_cast<float>(cells().height * twipsPerPixel);
}

FrmGfx::FrmGfx()
    : Form("", {}),
      imgPlayer([this](int i) {
        return SheetImage{this, "player" + std::to_string(i)};
      }),
      imgOpponentArrow([this](int i) {
        return SheetImage{this, "opponentArrow" + std::to_string(i)};
      }),
      imgAction([this](int i) {
        return SheetImage{this, "action" + std::to_string(i)};
      }),
      imgBtnPlay([this](int i) {
        return SheetImage{this, "btnPlay" + std::to_string(i)};
      }),
      imgBtnStore([this](int i) {
        return SheetImage{this, "btnStore" + std::to_string(i)};
      }) {
  // An icon's control is one pixel wider than the icon on every side.
  imgNull.Width = 510;
  imgNull.Height = 510;
}

}  // namespace kelvora
