#include <memory>
#include <string>

#include "platform/pictureBox.h"
#include "platform/web/page.h"
#include "platform/web/webPeer.h"
#include "platform/web/webPixels.h"
#include "platform/windowing/handlerCall.h"
#include "raster/twips.h"

namespace kelvora {

namespace {

int (*touchedKey)(float x, float y) = nullptr;

/// A picture box's background in front of it. The page shows the whole picture as large as fits into the box.
class FrontPicture : public PageObject {
 public:
  FrontPicture(const Picture& picture, int box) {
    page_create(id(), box, "Image");
    showPicture(id(), picture);
  }
  ~FrontPicture() override { page_remove(id()); }
  void take(const PageEvent&) override {}
};

class PictureBoxPeer : public WebPeer {
 public:
  PictureBoxPeer(PictureBox& box, int parent) : WebPeer(box, parent, "PictureBox"), box_(box) {
    if (isView()) set("View", 1);
    if (*box.name != '\0') set("Name", std::string(box.name));
    show(PropertyId::MousePointer);
    box_.fitImage();
    present();
  }

  void present() override {
    if (isView() && box_.background() != front_) showFront();
    pixels_.show(id(), box_.pixels(), box_.pixelWidth(), box_.pixelHeight(), box_.takeChanges());
  }

  void take(const PageEvent& event) override {
    if (event.kind == PageEventKind::Touched) {
      const auto x = static_cast<float>(event.x * twipsPerPixel);
      const auto y = static_cast<float>(event.y * twipsPerPixel);
      const int key = touchedKey != nullptr ? touchedKey(x, y) : 0;
      isTouchHandled_ = key != 0;
      if (key != 0) raiseEvent(box_, box_.KeyDown, key, 0);
    }
    if (event.kind == PageEventKind::Released) isTouchHandled_ = false;
    if (event.kind == PageEventKind::MouseMove && isTouchHandled_) return;
    // Quirk Q-020: no moves outside the picture's edges, even while a button is held.
    if (event.kind == PageEventKind::MouseMove && !event.isInside) return;
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
  bool isView() const { return box_.KeyDown || box_.KeyPress; }

  // The game's start picture has one size, and pages have any.
  void showFront() {
    front_ = box_.background();
    frontPicture_.reset();
    if (front_) frontPicture_ = std::make_unique<FrontPicture>(*front_, id());
    set("FrontWidth", front_ ? front_->width : 0);
    set("FrontHeight", front_ ? front_->height : 0);
  }

  PictureBox& box_;
  PicturePointer front_;
  std::unique_ptr<FrontPicture> frontPicture_;
  WebPixels pixels_;
  bool isTouchHandled_ = false;
};

}  // namespace

void setTouchHandler(int (*keyAt)(float x, float y)) { touchedKey = keyAt; }

void makePeer(PictureBox& box, int parent) { box.peer = std::make_unique<PictureBoxPeer>(box, parent); }

}  // namespace kelvora
