#include <memory>

#include "platform/pictureBox.h"
#include "platform/web/webPeer.h"
#include "platform/web/webPixels.h"
#include "raster/twips.h"

namespace kelvora {

namespace {

bool (*touchHandler)(float x, float y) = nullptr;

class PictureBoxPeer : public WebPeer {
 public:
  PictureBoxPeer(PictureBox& box, int parent) : WebPeer(box, parent, "PictureBox"), box_(box) {
    if (box.KeyDown || box.KeyPress) set("TabIndex", 0);
    show(PropertyId::MousePointer);
    box_.fitImage();
    present();
  }

  void present() override {
    pixels_.show(id(), box_.pixels(), box_.pixelWidth(), box_.pixelHeight(), box_.takeChanges());
  }

  void take(const PageEvent& event) override {
    if (event.kind == PageEventKind::Touched) {
      const auto x = static_cast<float>(event.numbers[2] * twipsPerPixel);
      const auto y = static_cast<float>(event.numbers[3] * twipsPerPixel);
      isTouchHandled_ = touchHandler != nullptr && touchHandler(x, y);
    }
    if (event.kind == PageEventKind::Released) isTouchHandled_ = false;
    if (event.kind == PageEventKind::MouseMove && isTouchHandled_) return;
    // Quirk Q-020: no moves outside the picture's edges, even while a button is held.
    const bool isInside = event.numbers[4] != 0;
    if (event.kind == PageEventKind::MouseMove && !isInside) return;
    WebPeer::take(event);
  }

 protected:
  void show(PropertyId id) override {
    if (id == PropertyId::MousePointer) set("MousePointer", box_.MousePointer);
    if (id == PropertyId::Width || id == PropertyId::Height) {
      box_.fitImage();
      present();
    }
  }

 private:
  PictureBox& box_;
  WebPixels pixels_;
  bool isTouchHandled_ = false;
};

}  // namespace

void setTouchHandler(bool (*handler)(float x, float y)) { touchHandler = handler; }

void makePeer(PictureBox& box, int parent) { box.peer = std::make_unique<PictureBoxPeer>(box, parent); }

}  // namespace kelvora
