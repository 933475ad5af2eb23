#pragma once

#include "platform/form.h"
#include "platform/widgets.h"

namespace kelvora {

/// A sheet as the paint code sees it: a picture and its size in twips, 15 to a pixel.
class SheetImage : public Image {
 public:
  /// Loads "<name>.png" from the program's assets; the control takes the picture's size.
  SheetImage(Control* container, const std::string& name);
  /// The pixels. The sheets are part of the program, so there always are some.
  const kelvora::Picture& cells() const { return *Picture.get(); }
};

/// The sprite sheets, on a form that is never shown. Mattes are white outside a sprite's shape and black inside, images
/// black outside.
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
