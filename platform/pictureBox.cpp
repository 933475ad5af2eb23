#include "platform/pictureBox.h"

#include <utility>

namespace kelvora {

PictureBox::PictureBox(Control* container, Place place, Design design)
    : Control(container, place), name(design.name), MousePointer(*this, PropertyId::MousePointer, 0) {
  BackColor = design.back;
  Font = design.font;
  FontSize = design.font.size;
  fitImage();
}

void PictureBox::setPicture(PicturePointer picture) {
  setBackground(std::move(picture));
  Refresh();
}

void PictureBox::Refresh() {
  const PeerCall call;
  if (peer) peer->present();
}

void PictureBox::fitImage() {
  const int width = toPixels(Width);
  const int height = toPixels(Height);
  if (width == pixelWidth() && height == pixelHeight()) return;
  resize(width, height);
}

}  // namespace kelvora
