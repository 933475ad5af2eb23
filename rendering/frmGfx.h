#pragma once

#include "platform/form.h"
#include "platform/widgets.h"

namespace kelvora {

/// A sheet for the paint code: a picture with its size in twips, 15 per pixel.
class SheetImage : public Image {
 public:
  /// Loads "<name>.png" from the program's assets. The control gets the picture's size.
  SheetImage(Control* container, const std::string& name);
  /// The pixels. Never missing, because the sheets are part of the program.
  const kelvora::Picture& cells() const { return *Picture.get(); }
};

/// The sprite sheets, on a form that is never shown. Mattes are white outside a sprite's shape and black inside. Images
/// are black outside.
class FrmGfx : public Form {
 public:
  FrmGfx();

  ControlArray<SheetImage, 6> imgPlayer;
  SheetImage imgPlayerMatte{this, "playerMatte"};
  SheetImage imgShield{this, "shield"};
  ControlArray<SheetImage, 6> imgOpponentArrow;
  SheetImage imgOpponentArrowMatte{this, "opponentArrowMatte"};
  SheetImage imgBalls{this, "balls"};
  SheetImage imgBallMatte{this, "ballMatte"};
  SheetImage imgArrows{this, "arrows"};
  SheetImage imgRadarBlips{this, "radarBlips"};
  SheetImage imgCaps{this, "caps"};
  ControlArray<SheetImage, 7> imgAction;
  ControlArray<SheetImage, 2> imgBtnPlay;
  ControlArray<SheetImage, 2> imgBtnStore;
  SheetImage imgNull{this, "null"};
};

extern FormSlot<FrmGfx> frmGfx;

}  // namespace kelvora
