#pragma once

#include "platform/control.h"
#include "raster/surface.h"

namespace kelvora {

/// A control with a picture of its own that the game draws: everything drawn goes to the hidden image and reaches the
/// screen at `Refresh`. Width and Height are the control's outer size in twips; the image has as many whole pixels.
class PictureBox : public Control, public Surface {
 public:
  struct Design {
    Colour back = RGB(0, 0, 0);
    FontSpec font = {};
  };
  PictureBox(Control* container, Place place, Design design);
  PictureBox(Control* container, Place place) : PictureBox(container, place, Design{}) {}

  Property<int> MousePointer;  ///< 0 the system's arrow, 99 an invisible pointer

  /// The picture that `Cls` restores; null for none. Shown at once.
  void setPicture(PicturePointer picture);

  /// Shows the hidden image at once.
  void Refresh();

  /// Called by the peer, or by a change of Width or Height, to give the image the control's size.
  void fitImage();
};

}  // namespace kelvora
