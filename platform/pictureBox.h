#pragma once

#include "platform/control.h"
#include "raster/surface.h"

namespace kelvora {

/// A control with a picture that the game draws. Drawing goes to a hidden image, which `Refresh` presents. Width and
/// Height are the control's outer size in twips. The image has as many whole pixels as fit.
class PictureBox : public Control, public Surface {
 public:
  struct Design {
    Colour back = RGB(0, 0, 0);
    FontSpec font = {};
    const char* name = "";  ///< for screen readers
  };
  PictureBox(Control* container, Place place, Design design);
  PictureBox(Control* container, Place place) : PictureBox(container, place, Design{}) {}

  const char* const name;

  Property<int> MousePointer;  ///< 0 the system's arrow, 99 invisible

  /// Sets the picture that `Cls` restores; null for none. Shown at once.
  void setPicture(PicturePointer picture);

  /// Presents the hidden image at once.
  void Refresh();

  /// Resizes the image to the control's size. Called by the peer and when Width or Height change.
  void fitImage();
};

}  // namespace kelvora
