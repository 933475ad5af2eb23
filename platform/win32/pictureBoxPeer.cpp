#include "platform/pictureBox.h"
#include "platform/win32/controlPeer.h"
#include "platform/win32/formPeer.h"

namespace kelvora {

namespace {

class PictureBoxPeer : public ControlPeer {
 public:
  PictureBoxPeer(PictureBox& box, FormPeer& form) : ControlPeer(box, form), box_(box) { box_.fitImage(); }

  // Quirk Q-020: no moves outside the picture's edges, even while a button is held. So a fast mouse escapes the canvas,
  // which confines the pointer in this event.
  bool takesMovesOutside() const override { return false; }
  bool isOpaque() const override { return true; }
  bool takesKeys() const override { return box_.KeyDown || box_.KeyPress; }
  HWND window() const override { return box_.TabIndex >= 0 || takesKeys() ? form().window() : nullptr; }

  void changed(PropertyId id) override {
    if (id == PropertyId::Width || id == PropertyId::Height) box_.fitImage();
    if (id != PropertyId::MousePointer) ControlPeer::changed(id);
  }

  void paint(const Painter& painter, const Box& place) override {
    painter.picture(place.left, place.top, box_.pixels(), box_.pixelWidth(), box_.pixelHeight());
  }

  void paintParts(const Painter& painter, const Box& place, std::span<const PixelArea> areas) override {
    painter.pictureParts(place.left, place.top, box_.pixels(), box_.pixelWidth(), box_.pixelHeight(), areas);
  }

  /// Presents at once: the next frame begins before the event loop runs.
  void present() override {
    const auto changes = box_.takeChanges();
    if (!changes.empty() && isShown() && form().isShown()) form().presentNow(*this, changes);
  }

 private:
  PictureBox& box_;
};

}  // namespace

std::unique_ptr<ControlPeer> makePeer(PictureBox& box, FormPeer& form) {
  return std::make_unique<PictureBoxPeer>(box, form);
}

}  // namespace kelvora
